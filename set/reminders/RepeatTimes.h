// When entries repeat, by the wall clock.
#pragma once

#include <cstdint>

#include "host/CReminder.h"

namespace epgset {

/// What the wall clock of the process's TZ shows, in seconds since it showed the first of January 1970.
using WallSeconds = std::int64_t;

/// What the wall clock shows at a UNIX time.
WallSeconds wallClockAt(std::int64_t unixSeconds);

/// When the wall clock shows that. Of a time that it shows twice the first; for one that it skips, as much
/// later as the clock is moved on, so that 02:30 becomes 03:30.
std::int64_t unixAtWallClock(WallSeconds wall);

/// A set of days: SUN 1, MON 2, to SAT 64. Empty: no repetition.
using DaySet = unsigned;

/// The days of a kind of repetition; `manualDays` are those of REPEAT_MANUAL.
DaySet repeatDays(CReminder::REMINDER_REPEAT_TYPE type, int manualDays);

/// The first time on one of these days, at the same time of day, that is not before `wall`; `wall` itself
/// for no days.
WallSeconds firstRepeat(WallSeconds wall, DaySet days);

/// The first time on one of these days, at the same time of day, that is later than `wall` and comes after
/// the UNIX time `after`. `days` is not empty.
WallSeconds nextRepeat(WallSeconds wall, DaySet days, std::int64_t after);

}  // namespace epgset
