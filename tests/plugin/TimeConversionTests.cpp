#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <memory>
#include <string>

#include "host/CTimerUtil.h"
#include "set/middleware/LocalZone.h"
#include "tests/plugin/AdapterTest.h"
#include "tests/set/middleware/ProcessZone.h"
#include "tests/support/FailingAllocations.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr long long unreadable = -1;

/// The time of a text that stands in exactly as many bytes as it needs, so that reading on is seen.
long long unixOf(const std::string& text) {
    const auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, copy.get());
    return t_get_UNIX_from_ISO8601(copy.get());
}

// Printing --------------------------------------------------------------------------------------------

class TimeText : public AdapterTest {};

TEST_F(TimeText, IsIso8601WithTheZone) {
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(0)), "1970-01-01T00:00:00+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(1367835072)), "2013-05-06T10:11:12+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(951782400)), "2000-02-29T00:00:00+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(4294967295)), "2106-02-07T06:28:15+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(-1)), "1969-12-31T23:59:59+00:00");
}

TEST_F(TimeText, KnowsTheCalendarWhereverTheTimesOfTheCLibraryEnd) {
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(2147483647)), "2038-01-19T03:14:07+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(2147483648)), "2038-01-19T03:14:08+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(4107542399)), "2100-02-28T23:59:59+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(4107542400)), "2100-03-01T00:00:00+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(12622780800)), "2370-01-01T00:00:00+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(-2147483649)), "1901-12-13T20:45:51+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(-12622780801)), "1569-12-31T23:59:59+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(-62167219200)), "0000-01-01T00:00:00+00:00");
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(1200129868800)), "40000-08-08T00:00:00+00:0");
}

TEST_F(TimeText, IsInTheSetsZone) {
    const struct {
        int minutesEast;
        const char* text;
    } examples[] = {
        {540, "1970-01-01T09:00:00+09:00"}, {345, "1970-01-01T05:45:00+05:45"},
        {-60, "1969-12-31T23:00:00-01:00"}, {-210, "1969-12-31T20:30:00-03:30"},
        {-1, "1969-12-31T23:59:00-00:01"},  {840, "1970-01-01T14:00:00+14:00"},
    };
    for (const auto& [minutesEast, text] : examples) {
        clock.setZone(minutesEast, false);
        EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(0)), text);
    }
}

TEST_F(TimeText, HasDaylightSavingInItsDigitsButNotInItsZone) {
    clock.setZone(540, true);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(0)), "1970-01-01T10:00:00+09:00");
    clock.setZone(0, true);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(0)), "1970-01-01T01:00:00+00:00");
    clock.setZone(-210, true);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(0)), "1969-12-31T21:30:00-03:30");
}

TEST_F(TimeText, ReadBackUnderDaylightSavingIsAnHourLate) {
    clock.setZone(540, true);
    const HeapText text(t_get_ISO8601_from_UNIX(1'000'000));
    EXPECT_EQ(t_get_UNIX_from_ISO8601(text.get()), 1'003'600);
}

TEST_F(TimeText, IsTheSameForBothHoursThatTheClockShowsAtTheEndOfDaylightSaving) {
    const epgset::ProcessZone berlin("Europe/Berlin");
    constexpr long long change = 1'792'890'000;  // 2026-10-25T01:00:00Z, when 03:00 becomes 02:00
    const auto setNow = [this](long long now) {
        clock.setNow(now);
        const epgset::ZoneOffset zone = epgset::localZoneAt(now);
        clock.setZone(zone.minutesEast, zone.daylightSaving);
    };
    constexpr long long halfAnHour = 1'800;
    const char* const shown = "2026-10-25T02:30:00+01:00";

    setNow(change - halfAnHour);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change - halfAnHour)), shown);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change + halfAnHour)), "2026-10-25T03:30:00+01:00");
    EXPECT_EQ(unixOf(shown), change + halfAnHour) << "read back, an hour late";
    EXPECT_EQ(t_get_current_UNIX_time(), change - halfAnHour);

    setNow(change - 1);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change - 1)), "2026-10-25T02:59:59+01:00");
    setNow(change);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change)), "2026-10-25T02:00:00+01:00");

    setNow(change + halfAnHour);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change + halfAnHour)), shown);
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(change - halfAnHour)), "2026-10-25T01:30:00+01:00");
    EXPECT_EQ(t_get_current_UNIX_time(), change + halfAnHour);
}

TEST_F(TimeText, IsCutToTwentyFiveCharacters) {
    EXPECT_EQ(taken(t_get_ISO8601_from_UNIX(253402300800)), "10000-01-01T00:00:00+00:0");
}

TEST_F(TimeText, OfATimeBeyondTheCalendarDoesNoHarm) {
    clock.setZone(540, true);
    for (const long long time : {LLONG_MAX - 36000, LLONG_MIN}) {
        const auto text = taken(t_get_ISO8601_from_UNIX(time));
        EXPECT_LE(text.value_or("").size(), 25U);
    }
}

TEST_F(TimeText, WithoutMemoryIsNone) {
    expectNoneWithoutMemory([] { return taken(t_get_ISO8601_from_UNIX(0)); });
}

TEST_F(TimeText, IsMadeWithoutALogLine) {
    taken(t_get_ISO8601_from_UNIX(0));
    t_get_time_offset();
    unixOf("nonsense");
    EXPECT_THAT(logged(), IsEmpty());
}

// Reading ---------------------------------------------------------------------------------------------

TEST(TimeReading, TakesTheZoneFromTheText) {
    constexpr long long wallClock = 1367835072;
    const struct {
        const char* zone;
        long long offset;
    } examples[] = {
        {"Z", 0},
        {"z", 0},
        {"+00:00", 0},
        {"-00:00", 0},
        {"+09:00", 32400},
        {" 09:00", 32400},
        {"+0900", 32400},
        {" 0900", 32400},
        {"+09", 32400},
        {"-03:30", -12600},
        {"-0330", -12600},
        {"-03", -10800},
        {"+9:30", 34200},
        {"+09:5", 32700},
        {"+09:", 32400},
        {"+", 0},
        {"-", 0},
        {" ", 0},
        {"+:30", 1800},
        {"+930", 93 * 3600},
        {"+99:99", 99 * 3600 + 99 * 60},
    };
    for (const auto& [zone, offset] : examples)
        EXPECT_EQ(unixOf(std::string("2013-05-06T10:11:12") + zone), wallClock - offset)
            << "'" << zone << "'";
}

TEST(TimeReading, IgnoresWhatFollowsTheZone) {
    EXPECT_EQ(unixOf("2013-05-06T10:11:12Z and more"), 1367835072);
    EXPECT_EQ(unixOf("2013-05-06T10:11:12+09:00[there]"), 1367802672);
    EXPECT_EQ(unixOf("2013-05-06T10:11:12+09:001"), 1367802672);
}

TEST(TimeReading, RefusesAMissingZone) {
    for (const char* zone : {"", "\t09:00", "Y", "U", "*09:00", "0", ":00", "\x80"})
        EXPECT_EQ(unixOf(std::string("2013-05-06T10:11:12") + zone), unreadable) << "'" << zone << "'";
}

TEST(TimeReading, RefusesFractionsOfSeconds) {
    for (const char* rest : {".5Z", ".Z", ".", ".123+09:00", ".5"})
        EXPECT_EQ(unixOf(std::string("2013-05-06T10:11:12") + rest), unreadable) << rest;
}

TEST(TimeReading, TakesAnySeparators) {
    EXPECT_EQ(unixOf("2013/05/06 10:11:12Z"), 1367835072);
    EXPECT_EQ(unixOf("2013x05y06z10:11.12Z"), 1367835072);
    EXPECT_EQ(unixOf("2013005006110011012Z"), 1367835072) << "a digit is as good a separator";
    EXPECT_EQ(unixOf("2013\xFF"
                     "05\x80"
                     "06\x01"
                     "10\n11\t12Z"),
              1367835072);
}

TEST(TimeReading, RefusesWhatIsNoDigitWhereOneBelongs) {
    const std::string good = "2013-05-06T10:11:12Z";
    for (const std::size_t at : {0U, 1U, 2U, 3U, 5U, 6U, 8U, 9U, 11U, 12U, 14U, 15U, 17U, 18U}) {
        for (const char wrong : {' ', '+', '-', 'x', '/', ':', '\xB2', '.'}) {
            std::string text = good;
            text[at] = wrong;
            EXPECT_EQ(unixOf(text), unreadable) << text;
        }
    }
    EXPECT_EQ(unixOf("13-05-06T10:11:12Z"), unreadable);
    EXPECT_EQ(unixOf(" 2013-05-06T10:11:12Z"), unreadable);
}

TEST(TimeReading, RefusesATextThatBreaksOff) {
    EXPECT_EQ(t_get_UNIX_from_ISO8601(nullptr), unreadable);
    const std::string whole = "2013-05-06T10:11:12+09:00";
    for (std::size_t length = 0; length < sizeof "2013-05-06T10:11:12"; ++length)
        EXPECT_EQ(unixOf(whole.substr(0, length)), unreadable) << length;
}

TEST(TimeReading, RefusesAMonthThatIsNone) {
    EXPECT_EQ(unixOf("2013-00-06T10:11:12Z"), unreadable);
    EXPECT_EQ(unixOf("2013-13-06T10:11:12Z"), unreadable);
    EXPECT_EQ(unixOf("2013-99-06T10:11:12Z"), unreadable);
}

TEST(TimeReading, CountsDaysAndTimesBeyondTheirRangeOn) {
    EXPECT_EQ(unixOf("2013-05-00T00:00:00Z"), unixOf("2013-04-30T00:00:00Z"));
    EXPECT_EQ(unixOf("2013-02-30T00:00:00Z"), unixOf("2013-03-02T00:00:00Z"));
    EXPECT_EQ(unixOf("2013-05-06T24:00:00Z"), unixOf("2013-05-07T00:00:00Z"));
    EXPECT_EQ(unixOf("2013-05-06T10:99:99Z"), unixOf("2013-05-06T11:40:39Z"));
}

TEST(TimeReading, KnowsLeapYears) {
    constexpr long long day = 86400;
    EXPECT_EQ(unixOf("2012-03-01T00:00:00Z") - unixOf("2012-02-29T00:00:00Z"), day);
    EXPECT_EQ(unixOf("2013-03-01T00:00:00Z") - unixOf("2013-02-28T00:00:00Z"), day);
    EXPECT_EQ(unixOf("2000-03-01T00:00:00Z") - unixOf("2000-02-28T00:00:00Z"), 2 * day);
    EXPECT_EQ(unixOf("2100-03-01T00:00:00Z") - unixOf("2100-02-28T00:00:00Z"), 2 * day)
        << "only the four-year rule";
}

TEST(TimeReading, AgreesWithTheCalendarFrom1901To2099) {
    for (int year = 1901; year <= 2099; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (const int day : {1, 28}) {
                char text[32];
                std::snprintf(text, sizeof text, "%04d-%02d-%02dT12:00:00Z", year, month, day);
                const std::chrono::sys_days date = std::chrono::year(year) / month / day;
                const std::chrono::seconds noon = date.time_since_epoch() + std::chrono::hours(12);
                ASSERT_EQ(unixOf(text), noon.count()) << text;
            }
        }
    }
}

TEST(TimeReading, IsNotBoundTo32Bits) {
    EXPECT_EQ(unixOf("2038-01-19T03:14:08Z"), 2147483648);
    EXPECT_EQ(unixOf("2099-12-31T23:59:59Z"), 4102444799);
    EXPECT_EQ(unixOf("9999-12-31T23:59:59Z"), 253407484799);
}

// Now -------------------------------------------------------------------------------------------------

class SetTime : public AdapterTest {};

TEST_F(SetTime, IsAheadOfUnixTimeByZoneAndDaylightSaving) {
    const struct {
        int minutesEast;
        bool daylightSaving;
        long long offset;
    } examples[] = {{0, false, 0},      {0, true, 3600},       {540, false, 32400},
                    {540, true, 36000}, {-210, false, -12600}, {-210, true, -9000}};
    for (const auto& [minutesEast, daylightSaving, offset] : examples) {
        clock.setZone(minutesEast, daylightSaving);
        EXPECT_EQ(t_get_time_offset(), offset);
    }
}

TEST_F(SetTime, IsUnixTimeWhateverTheZone) {
    EXPECT_EQ(t_get_current_UNIX_time(), startTime);
    clock.setZone(540, true);
    EXPECT_EQ(t_get_current_UNIX_time(), startTime);
    clock.setZone(-210, false);
    EXPECT_EQ(t_get_current_UNIX_time(), startTime);
}

TEST_F(SetTime, IsUnsigned) {
    clock.setNow(3'000'000'000);
    EXPECT_EQ(t_get_current_UNIX_time(), 3'000'000'000);
}

TEST_F(SetTime, IsReadTwiceLoggedOnceAndAnsweredAsReadLast) {
    clock.setTick(10);
    EXPECT_EQ(t_get_current_UNIX_time(), startTime + 10);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Container::Logger::Error,
                                              "Current Time (U) : 2026-08-23T00:00:00+00:00")));
    EXPECT_EQ(log.records()[0].format, "Current Time (U) : %s");
    EXPECT_EQ(t_get_current_UNIX_time(), startTime + 30);
    EXPECT_EQ(logged().size(), 2U) << "each call logs";
}

TEST_F(SetTime, IsLoggedInTheSetsZone) {
    clock.setZone(540, true);
    t_get_current_UNIX_time();
    EXPECT_THAT(adapterLog(), ElementsAre("Current Time (U) : 2026-08-23T10:00:00+09:00"));
}

TEST_F(SetTime, IsAnsweredEvenWithoutMemoryForTheLog) {
    const FailingAllocation noTime(0);
    EXPECT_EQ(t_get_current_UNIX_time(), startTime);
    EXPECT_THAT(adapterLog(), ElementsAre("Current Time (U) : (null)"));
}

TEST_F(SetTime, LetsTheUserSchedule) {
    EXPECT_EQ(t_is_user_scheduling_allowed(), 1);
}

}  // namespace
}  // namespace epgtest
