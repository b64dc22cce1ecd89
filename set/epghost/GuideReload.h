// Reads the guides again while the set runs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "set/epghost/GuideSource.h"
#include "set/guide/Guide.h"

namespace epgset {

/// Loads from a source on a thread of its own, so that the set hears its signals meanwhile: a guide may be
/// large, or be a pipe into which nobody writes. Used by one thread, which keeps off the source while a load
/// goes on.
class GuideReload {
public:
    /// What a load came to.
    struct Outcome {
        std::shared_ptr<const Guide> guide;  ///< null: it failed
        std::string error;                   ///< why it failed
    };

    /// The source must outlive the object.
    explicit GuideReload(GuideSource& source) : source_(source) {}

    /// A load that goes on can be neither waited for nor broken off. Where there is one, the process ends
    /// here, with status 0: let the object outlive all that needs cleaning when the set stops.
    ~GuideReload();
    GuideReload(const GuideReload&) = delete;
    GuideReload& operator=(const GuideReload&) = delete;

    /// Begins to load; only while no load goes on. `askServers`: guides that are named by a URL are fetched.
    void begin(bool askServers);

    /// Whether there is a load whose outcome has not been taken.
    bool running() const { return thread_.joinable(); }

    /// What the load came to that has ended since; nothing when none has.
    std::optional<Outcome> takeOutcome();

private:
    struct Load;

    GuideSource& source_;
    std::shared_ptr<Load> load_;
    std::thread thread_;
};

}  // namespace epgset
