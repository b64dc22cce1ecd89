// Tells clients that the guide was loaded again.
#pragma once

#include <chrono>
#include <mutex>
#include <optional>

#include "set/events/EventRing.h"

namespace epgset {

/// Enters an event when clients can see a guide that was loaded: after the plug-in's next maintenance and,
/// since that passes over small changes for a while, once more after the maintenance behind that while. Used
/// by any thread.
class GuideNews {
public:
    using Clock = std::chrono::steady_clock;

    /// The ring must outlive the object. `passedOver` is how long small changes may stay unseen.
    GuideNews(EventRing& ring, std::chrono::seconds passedOver) : ring_(ring), passedOver_(passedOver) {}

    /// A guide was put in use.
    void reloaded(Clock::time_point now = Clock::now());

    /// The plug-in's maintenance came back.
    void maintained(Clock::time_point now = Clock::now());

private:
    EventRing& ring_;
    const std::chrono::seconds passedOver_;
    std::mutex mutex_;
    bool first_ = false;                       ///< guarded by mutex_: the first event is owed
    std::optional<Clock::time_point> second_;  ///< guarded by mutex_: when the second event is
};

}  // namespace epgset
