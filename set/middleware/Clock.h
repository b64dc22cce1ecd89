// The set's clock and zone.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "set/middleware/LocalZone.h"

namespace epgset {

/// Where the set's time comes from. Used by any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Current UNIX time in seconds.
    virtual std::int64_t now() const = 0;

    /// Minutes east of UTC that the middleware counts in, daylight saving left aside.
    virtual int zoneMinutes() const = 0;

    /// Whether daylight saving is in force in the middleware's count.
    virtual bool daylightSaving() const = 0;

    /// Seconds that the middleware's local seconds are ahead of UNIX time now.
    int localOffset() const { return zoneMinutes() * 60 + (daylightSaving() ? 3600 : 0); }
};

/// The clock in use: at first the system's, in UTC.
const Clock& clock();

/// Replaces the clock in use; null brings the first one back. The caller keeps it alive until then.
void useClock(const Clock* clock);

/// Which zone the middleware counts in.
enum class Zone { Utc, Local };

/// A clock that runs on from `start` (UNIX seconds) with the system's monotonic clock, or follows the
/// system's clock when none is given. With Zone::Local the zone is the process's TZ, by localZoneAt.
class RunningClock : public Clock {
public:
    explicit RunningClock(Zone zone);
    RunningClock(Zone zone, std::int64_t start);

    std::int64_t now() const override;
    int zoneMinutes() const override;
    bool daylightSaving() const override;

private:
    ZoneOffset zoneNow() const;

    Zone zone_;
    bool follows_;
    std::int64_t start_ = 0;
    std::chrono::steady_clock::time_point began_;  ///< when `start_` was

    /// The zone at one second, packed into one word; a fill of the plug-in's table asks some 100,000 times.
    mutable std::atomic<std::uint64_t> zoneCache_;
};

}  // namespace epgset
