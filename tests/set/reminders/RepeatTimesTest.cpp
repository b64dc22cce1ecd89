#include "set/reminders/RepeatTimes.h"

#include <gtest/gtest.h>

#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/Times.h"

namespace epgset {
namespace {

TEST(RepeatTimes, AreReckonedOnTheWallClock) {
    const ProcessZone zone("Europe/Paris");
    EXPECT_EQ(wallClockAt(march29), march29 + hour);
    EXPECT_EQ(wallClockAt(march29 + 12 * hour), march29 + 14 * hour);
    EXPECT_EQ(unixAtWallClock(march29 - day + 20 * hour), march29 - day + 19 * hour);
    EXPECT_EQ(unixAtWallClock(march29 + 20 * hour), march29 + 18 * hour);
}

TEST(RepeatTimes, AreReckonedBackAndForthInAnyZone) {
    for (const char* name : {"UTC", "Europe/Paris", "America/St_Johns", "Australia/Lord_Howe", "Asia/Tokyo",
                             "Pacific/Kiritimati", "<+14>-14", "<-12>12"}) {
        const ProcessZone zone(name);
        for (std::int64_t time = march29 + 12 * hour; time < march29 + 365 * day; time += day) {
            EXPECT_EQ(unixAtWallClock(wallClockAt(time)), time) << name << " " << time;
        }
    }
}

TEST(RepeatTimes, ComeLaterWhereTheClockSkipsThem) {
    const ProcessZone zone("Europe/Paris");
    EXPECT_EQ(unixAtWallClock(march29 + 2 * hour + 1800), march29 + hour + 1800);  // shown as 03:30
}

TEST(RepeatTimes, ComeTheFirstTimeWhereTheClockShowsThemTwice) {
    const ProcessZone zone("Europe/Paris");
    EXPECT_EQ(unixAtWallClock(october25 + 2 * hour + 1800), october25 + 1800);
    // Whatever was asked before.
    unixAtWallClock(october25 + 30 * day);
    EXPECT_EQ(unixAtWallClock(october25 + 2 * hour + 1800), october25 + 1800);
}

TEST(RepeatTimes, HaveTheDaysOfTheirKind) {
    EXPECT_EQ(repeatDays(CReminder::REPEAT_ONCE, 0x7F), 0U);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_EVERYDAY, 0), 0x7FU);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_WEEKDAYS, 1), 0x3EU);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_WEEKEND, 0), 0x41U);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_MANUAL, 0x24), 0x24U);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_MANUAL, 0x180), 0U);
    EXPECT_EQ(repeatDays(CReminder::REPEAT_INVALID, 0x7F), 0U);
}

TEST(RepeatTimes, BeginOnTheFirstOfTheirDays) {
    const std::int64_t thursday = 20 * hour;  // 1 January 1970, 20:00
    EXPECT_EQ(firstRepeat(thursday, 0), thursday);
    EXPECT_EQ(firstRepeat(thursday, 0x7F), thursday);
    EXPECT_EQ(firstRepeat(thursday, 0x10), thursday);            // THU
    EXPECT_EQ(firstRepeat(thursday, 0x20), thursday + day);      // FRI
    EXPECT_EQ(firstRepeat(thursday, 0x41), thursday + 2 * day);  // SAT, SUN
    EXPECT_EQ(firstRepeat(thursday, 0x01), thursday + 3 * day);  // SUN
    EXPECT_EQ(firstRepeat(thursday, 0x08), thursday + 6 * day);  // WED
}

TEST(RepeatTimes, GoOnToTheNextOfTheirDays) {
    const ProcessZone zone("UTC");
    const std::int64_t friday = day + 20 * hour;
    EXPECT_EQ(nextRepeat(friday, 0x7F, friday), friday + day);
    EXPECT_EQ(nextRepeat(friday, 0x3E, friday), friday + 3 * day);
    EXPECT_EQ(nextRepeat(friday, 0x41, friday), friday + day);
    EXPECT_EQ(nextRepeat(friday, 0x20, friday), friday + 7 * day);
}

TEST(RepeatTimes, PassOverWhatHasGoneByMeanwhile) {
    const ProcessZone zone("UTC");
    const std::int64_t friday = day + 20 * hour;
    EXPECT_EQ(nextRepeat(friday, 0x20, friday + 7 * day - 1), friday + 7 * day);
    EXPECT_EQ(nextRepeat(friday, 0x20, friday + 7 * day), friday + 14 * day);
    EXPECT_EQ(nextRepeat(friday, 0x7F, friday + 20'000 * day + 5), friday + 20'001 * day);
}

TEST(RepeatTimes, StayAtTheirTimeOfDayAcrossDaylightSaving) {
    const ProcessZone zone("Europe/Paris");
    std::int64_t wall = march29 - 2 * day + 2 * hour + 1800;  // 02:30, which is skipped on the 29th
    for (int step = 1; step <= 3; ++step) {
        wall = nextRepeat(wall, 0x7F, unixAtWallClock(wall));
        EXPECT_EQ(wall, march29 + (std::int64_t{step} - 2) * day + 2 * hour + 1800);
    }
    EXPECT_EQ(wallClockAt(unixAtWallClock(wall)) % day, 2 * hour + 1800);
}

}  // namespace
}  // namespace epgset
