// The television's window over the guide cache: what is tuned to.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "host/AppTV.h"
#include "set/guide/Guide.h"

namespace epgset {

/// Keeps the channel tuned to, by its antenna and number, so that it stays tuned to when the guide is loaded
/// again. A change of the channel is published as an event. Used by any thread.
class GuideWindow : public AppWindow {
public:
    /// Tunes to the channel of that number: on the antenna tuned to now, else on the first antenna, in the
    /// order of receptionModes(), that has it. Minor 0 stands for any minor number where the major number
    /// alone is no channel's. Where no antenna has it, that is logged and the window stays where it is.
    void ChangeChannel(int major, int minor) override;

    /// Tunes to exactly that channel and answers whether the line-up has it.
    bool tune(int tvMode, int major, int minor);

    /// The channel tuned to, which shares its guide; null before the first change of channel and while the
    /// line-up does not have it.
    std::shared_ptr<const Channel> channel() const;

    /// Back to tuned to nothing.
    void reset();

private:
    struct Key {
        int tvMode;
        int major;
        int minor;

        bool operator==(const Key&) const = default;
    };

    std::optional<Key> tuned() const;
    void setTuned(const Channel& channel);

    mutable std::mutex mutex_;
    std::optional<Key> tuned_;  ///< guarded by mutex_
};

/// The set's one window.
GuideWindow& guideWindow();

}  // namespace epgset
