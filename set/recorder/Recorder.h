// Records what the reminder store has to be recorded.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "set/recorder/RecordingNote.h"
#include "set/recorder/RecordingOrder.h"
#include "set/recorder/RecordingSession.h"
#include "set/recorder/RecordingsQuota.h"

namespace epgset {

/// The set's recorder. Each recording runs with a thread of its own, stands in recordings() meanwhile, and
/// leaves two files in the recordings folder: the stream and a note of how it went. An order that is refused
/// leaves the note alone.
class Recorder : public OrderTaker {
public:
    struct Settings {
        std::filesystem::path folder;    ///< made when the first recording begins
        int tuners = 2;                  ///< how many recordings may run at once
        std::uint64_t maximumBytes = 0;  ///< that the folder may hold; 0: as much as the disk
        RecordingTimes times;
    };

    /// Told of an occurrence (UID and planned start) that the user stops, by the thread that stops it and
    /// before the stop is answered, so that it can be kept that it is not to be resumed.
    using Stopped = std::function<void(unsigned long uid, std::int64_t start)>;

    /// Puts the notes right that a set which was killed has left in the folder.
    Recorder(Settings settings, Stopped stopped);

    /// Ends what is still recorded as RecordingEnd::SetStops and waits until it is on the disk.
    ~Recorder() override;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    bool begin(const RecordingOrder& order) override;
    void end(unsigned long uid, RecordingEnd why) override;
    bool records(unsigned long uid) const override { return activeRecording(uid).has_value(); }

    int tuners() const { return settings_.tuners; }

    /// For any thread.
    int tunersInUse() const;

private:
    struct Running {
        std::shared_ptr<RecordingSession> session;
        std::uint64_t handle;  ///< in recordings()
    };

    /// Why an order cannot be carried out; empty where it can.
    std::string refusal(const RecordingOrder& order) const;

    bool record(const RecordingOrder& order, RecordingNote note);
    void enter(const Channel& channel, const std::shared_ptr<RecordingSession>& session,
               const std::filesystem::path& file);
    void refuse(const std::string& reason, RecordingNote note);
    std::optional<Running> activeRecording(unsigned long uid) const;
    void forgetFinished();

    const Settings settings_;
    const Stopped stopped_;
    RecordingsQuota quota_;
    mutable std::mutex mutex_;
    std::vector<Running> running_;  ///< guarded by mutex_; changed by the thread that gives orders alone
};

}  // namespace epgset
