#include "set/reminders/RepeatTimes.h"

#include <algorithm>
#include <ctime>

namespace epgset {
namespace {

constexpr std::int64_t day = 86400;

constexpr DaySet allDays = 0x7F;
constexpr DaySet sunday = 0x01;
constexpr DaySet saturday = 0x40;

/// Seconds that the wall clock is ahead of UTC; 0 for a time that has no date.
std::int64_t offsetAt(std::int64_t unixSeconds) {
    const auto time = static_cast<std::time_t>(unixSeconds);
    std::tm parts{};
    return localtime_r(&time, &parts) == nullptr ? 0 : parts.tm_gmtoff;
}

std::int64_t dayOf(WallSeconds wall) {
    return wall / day - (wall % day < 0 ? 1 : 0);
}

bool isOn(std::int64_t dayNumber, DaySet days) {
    constexpr std::int64_t thursday = 4;  // the first of January 1970 was one
    const std::int64_t weekday = ((dayNumber + thursday) % 7 + 7) % 7;
    return (days >> weekday & 1U) != 0;
}

}  // namespace

WallSeconds wallClockAt(std::int64_t unixSeconds) {
    return unixSeconds + offsetAt(unixSeconds);
}

// Not mktime, which for times that come twice or never answers by what it was asked before.
std::int64_t unixAtWallClock(WallSeconds wall) {
    const std::int64_t before = offsetAt(wall - day);
    const std::int64_t after = offsetAt(wall + day);
    if (offsetAt(wall - before) == before) return wall - before;
    if (offsetAt(wall - after) == after) return wall - after;
    return wall - before;
}

DaySet repeatDays(CReminder::REMINDER_REPEAT_TYPE type, int manualDays) {
    switch (type) {
        case CReminder::REPEAT_EVERYDAY:
            return allDays;
        case CReminder::REPEAT_WEEKDAYS:
            return allDays & ~(sunday | saturday);
        case CReminder::REPEAT_WEEKEND:
            return sunday | saturday;
        case CReminder::REPEAT_MANUAL:
            return static_cast<DaySet>(manualDays) & allDays;
        default:
            return 0;
    }
}

WallSeconds firstRepeat(WallSeconds wall, DaySet days) {
    if ((days & allDays) == 0) return wall;
    while (!isOn(dayOf(wall), days))
        wall += day;
    return wall;
}

WallSeconds nextRepeat(WallSeconds wall, DaySet days, std::int64_t after) {
    // Where many days have passed, the count goes on from two days before: closer, an offset could matter.
    const std::int64_t passed = (after - wall) / day - 2;
    WallSeconds next = wall + std::max<std::int64_t>(passed, 0) * day;
    do {
        next = firstRepeat(next + day, days);
    } while (unixAtWallClock(next) <= after);
    return next;
}

}  // namespace epgset
