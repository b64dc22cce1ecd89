#include "set/middleware/Clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>
#include <memory>

#include "host/AppTV.h"
#include "host/CTimerUtil.h"
#include "set/middleware/ManualClock.h"
#include "tests/set/middleware/ProcessZone.h"

namespace epgset {
namespace {

constexpr std::int64_t july2026 = 1784116800;  // 15th, 12:00 UTC
constexpr const char* centralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

/// Puts a clock into use for the length of a test.
class ClockInUse {
public:
    explicit ClockInUse(const Clock& clock) { useClock(&clock); }
    ~ClockInUse() { useClock(nullptr); }
    ClockInUse(const ClockInUse&) = delete;
    ClockInUse& operator=(const ClockInUse&) = delete;
};

int zoneOfTelevision() {
    int reserved = -1;
    int minutesEast = -1;
    g_pAppTV->GetTimeZone(&reserved, &minutesEast);
    return minutesEast;
}

TEST(Clock, IsTheSystemsInUtcAtFirst) {
    const ProcessZone zone(centralEurope);
    const std::int64_t before = std::time(nullptr);
    const std::int64_t now = clock().now();
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::time(nullptr) + 1);
    EXPECT_EQ(clock().zoneMinutes(), 0);
    EXPECT_FALSE(clock().daylightSaving());
}

TEST(Clock, IsReplacedAndBroughtBack) {
    const ManualClock manual(1000);
    {
        const ClockInUse use(manual);
        EXPECT_EQ(clock().now(), 1000);
    }
    EXPECT_GT(clock().now(), 1000);
}

TEST(RunningClock, RunsOnFromItsStart) {
    const RunningClock running(Zone::Utc, july2026);
    const std::int64_t now = running.now();
    EXPECT_GE(now, july2026);
    EXPECT_LE(now, july2026 + 60);
}

TEST(RunningClock, RunsOnFromAnyStart) {
    for (const std::int64_t start : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{4294967295},
                                     std::int64_t{253402300799}, std::int64_t{-62135596800}}) {
        const RunningClock running(Zone::Utc, start);
        EXPECT_GE(running.now(), start);
        EXPECT_LE(running.now(), start + 60);
    }
}

TEST(RunningClock, TakesNoNoticeOfTheProcessesZoneInUtc) {
    const ProcessZone zone(centralEurope);
    const RunningClock running(Zone::Utc, july2026);
    EXPECT_EQ(running.zoneMinutes(), 0);
    EXPECT_FALSE(running.daylightSaving());
    EXPECT_EQ(running.localOffset(), 0);
}

TEST(RunningClock, ReportsTheZoneThatHoldsAtItsOwnTime) {
    const ProcessZone zone(centralEurope);
    const RunningClock summer(Zone::Local, july2026);
    EXPECT_EQ(summer.zoneMinutes(), 60);
    EXPECT_TRUE(summer.daylightSaving());
    EXPECT_EQ(summer.localOffset(), 7200);
    const RunningClock winter(Zone::Local, july2026 - 180 * 86400);
    EXPECT_EQ(winter.zoneMinutes(), 60);
    EXPECT_FALSE(winter.daylightSaving());
    EXPECT_EQ(winter.localOffset(), 3600);
}

TEST(RunningClock, AnswersTheSameZoneAgain) {
    const ProcessZone zone("NST3:30NDT,M3.2.0,M11.1.0");
    const RunningClock running(Zone::Local, july2026);
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(running.zoneMinutes(), -210);
        EXPECT_TRUE(running.daylightSaving());
    }
}

TEST(RunningClock, KnowsItsZoneBefore1970) {
    const ProcessZone zone("<-12>12");
    const RunningClock running(Zone::Local, -100000);
    EXPECT_EQ(running.zoneMinutes(), -720);
    EXPECT_EQ(running.zoneMinutes(), -720);
}

TEST(ManualClock, StandsStillUntilItIsMoved) {
    ManualClock manual(500);
    EXPECT_EQ(manual.now(), 500);
    EXPECT_EQ(manual.now(), 500);
    manual.advance(20);
    EXPECT_EQ(manual.now(), 520);
    manual.setNow(7);
    EXPECT_EQ(manual.now(), 7);
}

TEST(ManualClock, MovesOnWithEachReadingWhenItTicks) {
    ManualClock manual(500);
    manual.setTick(3);
    EXPECT_EQ(manual.now(), 500);
    EXPECT_EQ(manual.now(), 503);
    EXPECT_EQ(manual.now(), 506);
}

TEST(MiddlewareClock, CountsUnixSecondsInUtc) {
    const ManualClock manual(july2026);
    const ClockInUse use(manual);
    EXPECT_EQ(CTimerUtil::GetCurrentEpochTime(), 1784116800U);
    EXPECT_EQ(CTimerUtil::FlagDST(), 0);
    EXPECT_EQ(zoneOfTelevision(), 0);
}

TEST(MiddlewareClock, CountsLocalSecondsWithTheDaylightSavingHour) {
    ManualClock manual(july2026);
    manual.setZone(-210, true);
    const ClockInUse use(manual);
    EXPECT_EQ(CTimerUtil::GetCurrentEpochTime(), 1784116800U - 210 * 60 + 3600);
    EXPECT_NE(CTimerUtil::FlagDST(), 0);
    EXPECT_EQ(zoneOfTelevision(), -210);
}

TEST(MiddlewareClock, IsCutTo32Bits) {
    ManualClock manual(4294967296 + 5);
    const ClockInUse use(manual);
    EXPECT_EQ(CTimerUtil::GetCurrentEpochTime(), 5U);
    manual.setNow(0);
    manual.setZone(-60, false);
    EXPECT_EQ(CTimerUtil::GetCurrentEpochTime(), 4294967296U - 3600);
}

}  // namespace
}  // namespace epgset
