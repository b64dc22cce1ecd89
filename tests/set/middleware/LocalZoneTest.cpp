#include "set/middleware/LocalZone.h"

#include <gtest/gtest.h>

#include "tests/set/middleware/ProcessZone.h"

namespace epgset {
namespace {

constexpr std::int64_t inJanuary = 1768478400;  // 15th, 12:00 UTC
constexpr std::int64_t inJuly = 1784116800;     // 15th, 12:00 UTC

/// The zones are written as rules, so that the tests need no zone files.
void expectZone(std::int64_t at, int minutesEast, bool daylightSaving) {
    const ZoneOffset zone = localZoneAt(at);
    EXPECT_EQ(zone.minutesEast, minutesEast);
    EXPECT_EQ(zone.daylightSaving, daylightSaving);
}

TEST(LocalZone, IsZeroInUtc) {
    const ProcessZone zone("UTC0");
    expectZone(inJanuary, 0, false);
    expectZone(inJuly, 0, false);
}

TEST(LocalZone, TellsTheStandardOffsetAndDaylightSavingApart) {
    const ProcessZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    expectZone(inJanuary, 60, false);
    expectZone(inJuly, 60, true);
}

TEST(LocalZone, ChangesAtTheVerySecond) {
    const ProcessZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
    const std::int64_t lastSundayOfMarch = 1774746000;  // 2026-03-29T01:00:00Z
    expectZone(lastSundayOfMarch - 1, 60, false);
    expectZone(lastSundayOfMarch, 60, true);
}

TEST(LocalZone, WorksSouthOfTheEquatorAndWestOfGreenwich) {
    {
        const ProcessZone zone("NZST-12NZDT,M9.5.0,M4.1.0/3");
        expectZone(inJanuary, 720, true);
        expectZone(inJuly, 720, false);
    }
    const ProcessZone zone("NST3:30NDT,M3.2.0,M11.1.0");
    expectZone(inJanuary, -210, false);
    expectZone(inJuly, -210, true);
}

TEST(LocalZone, SumsToTheWallClockWhereDaylightSavingIsHalfAnHour) {
    const ProcessZone zone("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0");
    expectZone(inJuly, 630, false);
    expectZone(inJanuary, 600, true);  // 10:00 and an hour are the 11:00 on the wall
}

TEST(LocalZone, ReportsAWinterThatIsShiftedBackAsAPlainOffset) {
    const ProcessZone zone("IST-1GMT0,M10.5.0,M3.5.0/1");
    expectZone(inJanuary, 0, false);
    expectZone(inJuly, 60, false);
}

TEST(LocalZone, KeepsTheHourApartWhereDaylightSavingNeverEnds) {
    const ProcessZone zone("EST5EDT,0/0,J365/25");
    expectZone(inJanuary, -300, true);
    expectZone(inJuly, -300, true);
}

}  // namespace
}  // namespace epgset
