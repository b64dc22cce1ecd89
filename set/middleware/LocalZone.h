// The process's time zone, split as televisions report it.
#pragma once

#include <cstdint>

namespace epgset {

/// An offset from UTC in two parts: `minutesEast`, and one hour more while `daylightSaving`.
struct ZoneOffset {
    int minutesEast = 0;
    bool daylightSaving = false;
};

/// The offset of the process's TZ at a UNIX time. The two parts always sum to the wall clock, cut to whole
/// minutes. So where daylight saving moves the clock by something other than an hour (half an hour on Lord
/// Howe Island), `minutesEast` gives way while it lasts, by the difference; and where a zone's winter is the
/// time that the zone's rules call shifted (Dublin), that is reported as a plain offset.
ZoneOffset localZoneAt(std::int64_t unixSeconds);

}  // namespace epgset
