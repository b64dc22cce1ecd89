// A clock that tests own.
#pragma once

#include <atomic>
#include <cstdint>

#include "set/middleware/Clock.h"

namespace epgset {

/// A clock that stands where it is set. May be set and read from any threads.
class ManualClock : public Clock {
public:
    explicit ManualClock(std::int64_t now) : now_(now) {}

    void setNow(std::int64_t now) { now_ = now; }
    void advance(std::int64_t seconds) { now_ += seconds; }
    void setZone(int minutesEast, bool daylightSaving) {
        zoneMinutes_ = minutesEast;
        daylightSaving_ = daylightSaving;
    }

    /// Moves the clock on by so many seconds after each reading of now().
    void setTick(std::int64_t seconds) { tick_ = seconds; }

    std::int64_t now() const override { return now_.fetch_add(tick_); }
    int zoneMinutes() const override { return zoneMinutes_; }
    bool daylightSaving() const override { return daylightSaving_; }

private:
    mutable std::atomic<std::int64_t> now_;
    std::atomic<std::int64_t> tick_{0};
    std::atomic<int> zoneMinutes_{0};
    std::atomic<bool> daylightSaving_{false};
};

}  // namespace epgset
