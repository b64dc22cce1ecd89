// Booking a channel by hand: from the request to the entry.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <utility>

#include "tests/plugin/ManualBookingTest.h"
#include "tests/support/ChannelTypes.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(ManualBooking, FillsTheEntry) {
    info = entry(99);
    info.SetTitle(unitsOf("Left over", std::endian::big));
    info.SetEventId(1234);
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.UID(), 0U) << "begins as an empty entry";
    EXPECT_EQ(info.GetTitle(), CRemindInfo::Text());
    EXPECT_EQ(info.EventId(), 0);
    EXPECT_EQ(info.CreationMethod(), CReminder::CREATED_MANUALLY);
    EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_VIEW);
    EXPECT_EQ(info.Major(), 7);
    EXPECT_EQ(info.Minor(), 2);
    EXPECT_EQ(info.PTC(), 27);
    EXPECT_EQ(info.ChannelType(), 2) << "the digital channel type of AIR";
    EXPECT_EQ(info.ProgramNumber(), 4711);
    EXPECT_EQ(info.StartTime(), comingStart);
    EXPECT_EQ(info.Duration(), 1800U);
    EXPECT_EQ(info.RepeatType(), CReminder::REPEAT_ONCE);
    EXPECT_EQ(info.ManualRepeat(), 0);
    EXPECT_THAT(said(), IsEmpty());
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ManualBooking, NeedsEachField) {
    const std::pair<RequestField, const char*> required[] = {
        {&ws_epg_schedule::status, "status is required"},
        {&ws_epg_schedule::channel_num, "channel_num is required"},
        {&ws_epg_schedule::antenna, "antenna is required"},
        {&ws_epg_schedule::start, "start is required"},
        {&ws_epg_schedule::end, "end is required"},
        {&ws_epg_schedule::repeat, "repeat is required"},
    };
    // From the last on, so that all later fields are missing as well: the first is named.
    for (auto field = std::rbegin(required); field != std::rend(required); ++field) {
        set(field->first, "");
        expectRefused(field->second);
        set(field->first, nullptr);
        expectRefused(field->second);
    }
}

TEST_F(ManualBooking, RefusesAnotherStatus) {
    for (const char* status : {"NONE", "RECORDING", "VIEW ", "watch", "%n%s"}) {
        set(&ws_epg_schedule::status, status);
        expectRefused("Invalid status:" + std::string(status));
    }
}

TEST_F(ManualBooking, ReadsTheStatusIgnoringCase) {
    const std::pair<const char*, int> examples[] = {{"VIEW", CReminder::RESERVE_VIEW},
                                                    {"view", CReminder::RESERVE_VIEW},
                                                    {"RECORD", CReminder::RESERVE_RECORD},
                                                    {"Record", CReminder::RESERVE_RECORD}};
    for (const auto& [status, type] : examples) {
        set(&ws_epg_schedule::status, status);
        EXPECT_EQ(fill(), 0) << status;
        EXPECT_EQ(info.ReserveType(), type) << status;
    }
}

// The channel -------------------------------------------------------------------------------------------

TEST_F(ManualBooking, CutsTheChannelNumberAtItsFirstHyphen) {
    EXPECT_EQ(fill(), 0);
    EXPECT_STREQ(request->channel_num, "7");
    set(&ws_epg_schedule::channel_num, "7-2-9");
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.Minor(), 2);
    EXPECT_STREQ(request->channel_num, "7");
}

TEST_F(ManualBooking, TakesTheFirstChannelOfAMajorNumber) {
    for (const char* number : {"7", "7-", "7-0", "7-x"}) {
        set(&ws_epg_schedule::channel_num, number);
        EXPECT_EQ(fill(), 0) << number;
        EXPECT_EQ(info.Major(), 7);
        EXPECT_EQ(info.Minor(), 2) << "the minor number of the channel that was found";
    }
    set(&ws_epg_schedule::channel_num, "8");
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.Minor(), 0);
}

TEST_F(ManualBooking, ReadsNumbersAsFarAsTheyGo) {
    set(&ws_epg_schedule::channel_num, "7x-2x9");
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.Major(), 7);
    EXPECT_EQ(info.Minor(), 2);
}

TEST_F(ManualBooking, RefusesAChannelThatDoesNotExist) {
    const std::pair<const char*, std::string> examples[] = {{"7-3", "major:7 minor:3"},
                                                            {"9", "major:9 minor:0"},
                                                            {"-2", "major:0 minor:2"},
                                                            {"News", "major:0 minor:0"},
                                                            {"65543-2", "major:65543 minor:2"}};
    for (const auto& [number, shown] : examples) {
        set(&ws_epg_schedule::channel_num, number);
        expectRefused("No channel mode:0 " + shown);
    }
}

TEST_F(ManualBooking, RefusesAChannelOfAnAntennaWithoutChannels) {
    set(&ws_epg_schedule::antenna, "CS");
    EXPECT_EQ(fill(), -1);
    EXPECT_EQ(lastSaid(), LogLine(Logger::Error, "No channel mode:23 major:7 minor:2"));
}

TEST_F(ManualBooking, FindsTheChannelOnItsAntenna) {
    for (const char* antenna : {"SATELLITE", "satellite", "Satellite"}) {
        set(&ws_epg_schedule::antenna, antenna);
        EXPECT_EQ(fill(), 0) << antenna;
        EXPECT_EQ(info.ChannelType(), 7);
        EXPECT_EQ(info.PTC(), 0);
        EXPECT_EQ(info.ProgramNumber(), 0);
    }
}

TEST_F(ManualBooking, RefusesAnUnknownAntenna) {
    set(&ws_epg_schedule::antenna, "ROOF");
    expectRefused("Invalid antenna:ROOF");
}

TEST_F(ManualBooking, RefusesAnAntennaWithoutDigitalChannels) {
    const NoDigitalChannelTypes none;
    set(&ws_epg_schedule::antenna, "Satellite");
    expectRefused("Unconvertable TV mode :Satellite,3");
}

// Times -------------------------------------------------------------------------------------------------

TEST_F(ManualBooking, RefusesTimesThatCannotBeRead) {
    setTimes("2026-08-23 01:00", "2026-08-23T01:30:00Z");
    expectRefused("Invalid start time : 2026-08-23 01:00");
    setTimes("2026-08-23T01:00:00Z", "tomorrow");
    expectRefused("Invalid end time : tomorrow");
    setTimes("now", "then");
    expectRefused("Invalid start time : now");
}

TEST_F(ManualBooking, SeesAnUnreadableTimeOnlyWhereTheOffsetIsZero) {
    clock.setZone(540, false);
    setTimes("now", "then");
    expectRefused("Invalid time. already passed (end:32399 <= curr:" + std::to_string(startTime) + ")");
    setTimes("2026-08-23T01:00:00Z", "then");
    expectRefused("Invalid time. start time bigger than end time. (start:" +
                  std::to_string(comingStart + nine) + " > end:32399)");
}

TEST_F(ManualBooking, TakesALocalTimeOfMinusOneForUnreadable) {
    clock.setZone(60, false);
    set(&ws_epg_schedule::start, "1969-12-31T22:59:59Z");
    expectRefused("Invalid start time : 1969-12-31T22:59:59Z");
}

TEST_F(ManualBooking, KnowsTimesBefore1970) {
    setTimes("1969-12-31T23:59:58Z", "2026-08-23T01:30:00Z");
    set(&ws_epg_schedule::status, "RECORD");
    expectRefused("Invalid time. recording time overlappted " + overlap(-2, startTime, comingStart + 1800));
}

TEST_F(ManualBooking, RefusesAnEndBeforeTheStart) {
    setTimes("2026-08-23T01:00:00Z", "2026-08-23T00:59:59Z");
    expectRefused("Invalid time. start time bigger than end time. (start:" + std::to_string(comingStart) +
                  " > end:" + std::to_string(comingStart - 1) + ")");
}

TEST_F(ManualBooking, AcceptsAnEndAtTheStart) {
    setTimes("2026-08-23T01:00:00Z", "2026-08-23T01:00:00Z");
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.StartTime(), comingStart);
    EXPECT_EQ(info.Duration(), 0U);
}

TEST_F(ManualBooking, RefusesATimeThatIsOver) {
    clock.setNow(comingStart + 1801);
    for (const char* status : {"VIEW", "RECORD"}) {
        set(&ws_epg_schedule::status, status);
        expectRefused("Invalid time. already passed (end:" + std::to_string(comingStart + 1800) +
                      " <= curr:" + std::to_string(comingStart + 1801) + ")");
    }
}

TEST_F(ManualBooking, RefusesToRecordWhatHasBegun) {
    set(&ws_epg_schedule::status, "record");
    for (const std::int64_t now : {std::int64_t{comingStart}, std::int64_t{comingStart} + 1800}) {
        clock.setNow(now);
        expectRefused("Invalid time. recording time overlappted " +
                      overlap(comingStart, now, comingStart + 1800));
    }
}

TEST_F(ManualBooking, TunesAtOnceToWhatHasBegunAndFillsNothing) {
    set(&ws_epg_schedule::channel_num, "7");
    for (const std::int64_t now : {std::int64_t{comingStart}, std::int64_t{comingStart} + 1800}) {
        clock.setNow(now);
        window.tuned.clear();
        EXPECT_EQ(fill(), 0);
        EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2))) << "with the channel's minor number";
        EXPECT_THAT(said(),
                    ElementsAre(LogLine(Logger::Error, "View time is overlapped. Instant channel change " +
                                                           overlap(comingStart, now, comingStart + 1800))));
        EXPECT_EQ(info.StartTime(), 0U);
        EXPECT_EQ(info.Major(), 0);
    }
}

TEST_F(ManualBooking, AcceptsWhatBeginsInASecond) {
    clock.setNow(comingStart - 1);
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.StartTime(), comingStart);
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ManualBooking, ComparesLocalTimesWithTheUnixClock) {
    clock.setZone(540, false);
    setTimes("2026-08-22T23:50:00Z", "2026-08-23T00:10:00Z");
    EXPECT_EQ(fill(), 0) << "on air by any clock, but in nine hours by this comparison";
    EXPECT_EQ(info.StartTime(), startTime - 600 + nine);
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ManualBooking, StoresLocalTimes) {
    clock.setZone(60, true);
    setTimes("2026-08-23T03:00:00+02:00", "2026-08-23T03:30:00 02:00");
    EXPECT_EQ(fill(), 0);
    EXPECT_EQ(info.StartTime(), comingStart + 7200);
    EXPECT_EQ(info.Duration(), 1800U);
}

TEST_F(ManualBooking, LooksAtTheChannelBeforeTheTimes) {
    setTimes("now", "then");
    set(&ws_epg_schedule::channel_num, "9-9");
    expectRefused("No channel mode:0 major:9 minor:9");
}

// Repetition --------------------------------------------------------------------------------------------

TEST_F(ManualBooking, Repeats) {
    const struct {
        const char* text;
        CReminder::REMINDER_REPEAT_TYPE type;
        int days;
    } examples[] = {
        {"ONCE", CReminder::REPEAT_ONCE, 0},
        {"everyday", CReminder::REPEAT_EVERYDAY, 0},
        {"MON|WED", CReminder::REPEAT_MANUAL, 10},
        {"SAT|SUN", CReminder::REPEAT_WEEKEND, 65},
        {"MON|TUE|WED|THU|FRI", CReminder::REPEAT_WEEKDAYS, 62},
    };
    for (const auto& [text, type, days] : examples) {
        set(&ws_epg_schedule::repeat, text);
        EXPECT_EQ(fill(), 0) << text;
        EXPECT_EQ(info.RepeatType(), type) << text;
        EXPECT_EQ(info.ManualRepeat(), days) << text;
    }
}

TEST_F(ManualBooking, RefusesAnUnknownRepetition) {
    for (const char* repeat : {"SERIES", "never"}) {
        set(&ws_epg_schedule::repeat, repeat);
        expectRefused("Invalid repeat : " + std::string(repeat));
    }
}

TEST_F(ManualBooking, LooksAtTheTimesBeforeTheRepetition) {
    set(&ws_epg_schedule::repeat, "never");
    clock.setNow(comingStart);
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2)));
}

}  // namespace
}  // namespace epgtest
