// The texts of a reminder or recording, its record, and how that is shown.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <set>
#include <string>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/FreedBlock.h"

namespace epgtest {
namespace {

/// A reminder for the programme "Show", event 1234, of channel 7-2, in the first hour of 1970.
CRemindInfo plainReminder() {
    CRemindInfo info;
    info.SetUid(5);
    info.SetEventId(1234);
    info.SetDuration(3600);
    info.SetTitle(unitsOf("Show", std::endian::big));
    return info;
}

class ReminderText : public AdapterTest {
protected:
    std::optional<std::string> titled(const std::string& title) {
        reminder.SetTitle(unitsOf(title, std::endian::big));
        return taken(t_get_schedule_name(&reminder));
    }
    std::optional<std::string> described(const std::string& synopsis) {
        reminder.SetSynopsis(unitsOf(synopsis, std::endian::native));
        return taken(t_get_schedule_synopsis(&reminder));
    }
    std::optional<std::string> repeated(int type, int days = 0) {
        reminder.SetRepeat(static_cast<CReminder::REMINDER_REPEAT_TYPE>(type), days);
        return taken(t_get_schedule_repeat(&reminder));
    }

    CRemindInfo reminder = plainReminder();
};

TEST_F(ReminderText, OfNoReminderIsNone) {
    TCChannel channel = middleware(plainChannel());
    EXPECT_EQ(t_get_schedule_id(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_name(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_synopsis(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_repeat(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_storage_path(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_recent_path(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_method(nullptr), nullptr);
    EXPECT_EQ(t_get_schedule_program_id(&channel, nullptr), nullptr);
}

TEST_F(ReminderText, IdentifierEndsInTheUid) {
    EXPECT_EQ(taken(t_get_schedule_id(&reminder)), "sch_id_5");
    reminder.SetUid(0);
    EXPECT_EQ(taken(t_get_schedule_id(&reminder)), "sch_id_0");
    reminder.SetUid(2147483647);
    EXPECT_EQ(taken(t_get_schedule_id(&reminder)), "sch_id_2147483647") << "fills its 18 bytes";
    reminder.SetUid(4294967295);
    EXPECT_EQ(taken(t_get_schedule_id(&reminder)), "sch_id_-1") << "a signed number";
}

TEST_F(ReminderText, IdentifierIsCutToSeventeenCharacters) {
    reminder.SetUid(2147483648);
    EXPECT_EQ(taken(t_get_schedule_id(&reminder)), "sch_id_-214748364");
}

TEST_F(ReminderText, TitleIsSwappedAndItsFirstLine) {
    EXPECT_EQ(titled("Caf\xC3\xA9 \xF0\x9F\x98\x80"), "Caf\xC3\xA9 \xF0\x9F\x98\x80");
    EXPECT_EQ(titled("One\nTwo"), "One");
    EXPECT_EQ(titled("One\r\nTwo"), "One");
}

TEST_F(ReminderText, TitleThatIsEmptyIsNone) {
    EXPECT_EQ(titled(""), std::nullopt);
}

TEST_F(ReminderText, TitleOfTheEntryStaysAsItIs) {
    EXPECT_EQ(titled("Show"), "Show");
    EXPECT_EQ(taken(t_get_schedule_name(&reminder)), "Show");
}

TEST_F(ReminderText, SynopsisIsWholeAndNotSwapped) {
    EXPECT_EQ(described("One\r\nTwo"), "One\r\nTwo");
    EXPECT_EQ(described("a\xC3\xA9"), "a\xC3\xA9");
}

TEST_F(ReminderText, SynopsisThatIsEmptyIsAnEmptyText) {
    EXPECT_EQ(described(""), "");
}

TEST_F(ReminderText, SynopsisHasOneAndAHalfBytesAUnit) {
    EXPECT_EQ(described("\xC3\xA9"), "") << "one unit, two bytes with the terminator";
    EXPECT_EQ(described("\xC3\xA9\xC3\xA9"), "\xC3\xA9");
    EXPECT_EQ(described("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"), "\xC3\xA9\xC3\xA9\xC3\xA9");
    EXPECT_EQ(described("\xE2\x82\xAC\xE2\x82\xAC\xE2\x82\xAC"), "\xE2\x82\xAC") << "cut at a character";
    EXPECT_EQ(described("\xF0\x9F\x98\x80"), "") << "a pair is two units";
    const std::string longText(20'000, 'x');
    EXPECT_EQ(described(longText), longText);
}

TEST_F(ReminderText, RepeatNamesTheDays) {
    EXPECT_EQ(repeated(0), "ONCE");
    EXPECT_EQ(repeated(1), "EVERYDAY");
    EXPECT_EQ(repeated(2), "MON|TUE|WED|THU|FRI");
    EXPECT_EQ(repeated(3), "SAT|SUN");
    EXPECT_EQ(repeated(4, 1), "SUN");
    EXPECT_EQ(repeated(4, 2), "MON");
    EXPECT_EQ(repeated(4, 4), "TUE");
    EXPECT_EQ(repeated(4, 8), "WED");
    EXPECT_EQ(repeated(4, 16), "THU");
    EXPECT_EQ(repeated(4, 32), "FRI");
    EXPECT_EQ(repeated(4, 64), "SAT");
    EXPECT_EQ(repeated(4, 65), "SUN|SAT");
    EXPECT_EQ(repeated(4, 10), "MON|WED");
    EXPECT_EQ(repeated(4, 127), "SUN|MON|TUE|WED|THU|FRI|SAT");
    EXPECT_EQ(repeated(4, 0), "");
}

TEST_F(ReminderText, RepeatLooksAtTheDaysOfAManualSetOnly) {
    EXPECT_EQ(repeated(0, 127), "ONCE");
    EXPECT_EQ(repeated(3, 2), "SAT|SUN");
}

TEST_F(ReminderText, RepeatOfAnUnknownTypeIsNone) {
    for (const int type : {5, 6, 7, -1, 1000})
        EXPECT_EQ(repeated(type, 1), std::nullopt) << type;
}

TEST_F(ReminderText, RepeatOfASeriesIsSeriesWhateverItsType) {
    reminder.SetReserveType(CReminder::RESERVE_SERIES);
    for (const int type : {0, 1, 2, 3, 4, 5})
        EXPECT_EQ(repeated(type, 1), "SERIES") << type;
    EXPECT_EQ(taken(t_get_schedule_status_str(reminder.ReserveType())), "RECORD");
}

TEST_F(ReminderText, HasNoPaths) {
    EXPECT_EQ(t_get_schedule_storage_path(&reminder), nullptr);
    EXPECT_EQ(t_get_schedule_recent_path(&reminder), nullptr);
}

TEST_F(ReminderText, MethodSaysHowTheEntryCameAbout) {
    EXPECT_EQ(taken(t_get_schedule_method(&reminder)), "EPG");
    reminder.SetCreationMethod(CReminder::CREATED_MANUALLY);
    EXPECT_EQ(taken(t_get_schedule_method(&reminder)), "Manual");
    for (const int method : {2, -1, 1000}) {
        reminder.SetCreationMethod(static_cast<CReminder::CREATION_TYPE>(method));
        EXPECT_EQ(taken(t_get_schedule_method(&reminder)), std::nullopt) << method;
    }
}

TEST_F(ReminderText, ProgrammeIdentifierIsKnownForEntriesOfTheGuideOnly) {
    TCChannel channel = numbered(Satellite, 7, -3);
    EXPECT_EQ(taken(t_get_schedule_program_id(&channel, &reminder)), "pid-003-7-3-1234");
    reminder.SetCreationMethod(CReminder::CREATED_MANUALLY);
    EXPECT_EQ(taken(t_get_schedule_program_id(&channel, &reminder)), std::nullopt);
}

TEST_F(ReminderText, WithoutMemoryIsNone) {
    TCChannel channel = middleware(plainChannel());
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_id(&reminder)); });
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_name(&reminder)); });
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_synopsis(&reminder)); });
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_repeat(&reminder)); });
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_method(&reminder)); });
    expectNoneWithoutMemory([&] { return taken(t_get_schedule_program_id(&channel, &reminder)); });
}

// Reading a repetition --------------------------------------------------------------------------------

TEST(RepeatReading, KnowsTheTypeAndTheDays) {
    const struct {
        const char* text;
        int type;
        int days;
    } examples[] = {
        {"ONCE", 0, 0},
        {"once", 0, 0},
        {"EVERYDAY", 1, 0},
        {"EveryDay", 1, 0},
        {"MON|TUE|WED|THU|FRI", 2, 62},
        {"fri thu wed tue mon", 2, 62},
        {"SAT|SUN", 3, 65},
        {"Sat|Sun", 3, 65},
        {"SUN|SAT", 3, 65},
        {"mon|wed", 4, 10},
        {"SUN", 4, 1},
        {"MON", 4, 2},
        {"TUE", 4, 4},
        {"WED", 4, 8},
        {"THU", 4, 16},
        {"FRI", 4, 32},
        {"SAT", 4, 64},
        {"SUNDAY", 4, 1},
        {"on saturdays", 4, 64},
        {"MON|MON", 4, 2},
        {"SUN|MON|TUE|WED|THU|FRI|SAT", 4, 127},
        {"MON|TUE|WED|THU|FRI|SAT", 4, 126},
        {"ONCE|MON", 4, 2},
        {"", 5, 0},
        {"SERIES", 5, 0},
        {"EVERYDAY ", 5, 0},
        {"ONC", 5, 0},
        {"MO|TU", 5, 0},
        {"M|ON", 5, 0},
    };
    for (const auto& [text, type, days] : examples) {
        int found = -1;
        EXPECT_EQ(t_get_repeat_type(text, &found), type) << text;
        EXPECT_EQ(found, days) << text;
    }
}

TEST(RepeatReading, OfNoTextIsInvalidAndNamesNoDay) {
    int days = -1;
    EXPECT_EQ(t_get_repeat_type(nullptr, &days), CReminder::REPEAT_INVALID);
    EXPECT_EQ(days, 0);
}

// The record ------------------------------------------------------------------------------------------

class ReminderRecord : public AdapterTest {
protected:
    ReminderRecord() { reminder.SetSynopsis(unitsOf("All about it", std::endian::native)); }

    ScheduleRecord record() {
        TCChannel middlewareChannel = middleware(channel);
        return ScheduleRecord(t_create_schedule(&reminder, &middlewareChannel));
    }

    CRemindInfo reminder = plainReminder();
    epgset::Channel channel = plainChannel();
};

TEST_F(ReminderRecord, HoldsAllThatIsKnown) {
    reminder.SetReserveType(CReminder::RESERVE_RECORDING);
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->id), "sch_id_5");
    EXPECT_EQ(shown(made->name), "Show");
    EXPECT_EQ(shown(made->status), "RECORDING");
    EXPECT_EQ(shown(made->channel_num), "7-2");
    EXPECT_EQ(shown(made->channel_name), "News 24");
    EXPECT_EQ(shown(made->antenna), "AIR");
    EXPECT_EQ(shown(made->synopsis), "All about it");
    EXPECT_EQ(shown(made->start), "1970-01-01T00:00:00+00:00");
    EXPECT_EQ(shown(made->end), "1970-01-01T01:00:00+00:00");
    EXPECT_EQ(shown(made->repeat), "ONCE");
    EXPECT_EQ(shown(made->source_path), "/ws/epg2/channels/cid-000-7-2");
    EXPECT_EQ(made->storage_path, nullptr);
    EXPECT_EQ(made->recent_record_path, nullptr);
    EXPECT_EQ(shown(made->method), "EPG");
    EXPECT_EQ(shown(made->program_id), "pid-000-7-2-1234");
    EXPECT_EQ(made->force, 0);
}

TEST_F(ReminderRecord, OfAManualEntryHoldsNoProgramme) {
    reminder.SetCreationMethod(CReminder::CREATED_MANUALLY);
    reminder.SetTitle({});
    reminder.SetSynopsis({});
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name, nullptr);
    EXPECT_EQ(shown(made->synopsis), "");
    EXPECT_EQ(shown(made->method), "Manual");
    EXPECT_EQ(made->program_id, nullptr);
}

TEST_F(ReminderRecord, ReadsItsTimesAsTheSetsLocalTime) {
    clock.setZone(540, true);
    reminder.SetStartTime(1'000'000);
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->start), "1970-01-12T13:46:40+09:00") << "the wall clock of the entry";
    EXPECT_EQ(shown(made->end), "1970-01-12T14:46:40+09:00");
}

TEST_F(ReminderRecord, ReckonsItsTimesIn64Bits) {
    reminder.SetStartTime(4'294'967'295);
    reminder.SetDuration(4'294'967'295);
    auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->start), "2106-02-07T06:28:15+00:00");
    EXPECT_EQ(shown(made->end), "2242-03-16T12:56:30+00:00");

    clock.setZone(540, false);
    reminder.SetStartTime(0);
    reminder.SetDuration(60);
    made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->start), "1970-01-01T00:00:00+09:00") << "before 1970 in UTC";
    EXPECT_EQ(shown(made->end), "1970-01-01T00:01:00+09:00");
}

TEST_F(ReminderRecord, NeedsAReminderAndAChannel) {
    TCChannel middlewareChannel = middleware(channel);
    EXPECT_EQ(t_create_schedule(nullptr, &middlewareChannel), nullptr);
    EXPECT_EQ(t_create_schedule(&reminder, nullptr), nullptr);
}

using Field = char* ws_epg_schedule::*;

constexpr Field filledFields[] = {
    &ws_epg_schedule::id,        &ws_epg_schedule::name,        &ws_epg_schedule::status,
    &ws_epg_schedule::antenna,   &ws_epg_schedule::channel_num, &ws_epg_schedule::channel_name,
    &ws_epg_schedule::synopsis,  &ws_epg_schedule::start,       &ws_epg_schedule::end,
    &ws_epg_schedule::repeat,    &ws_epg_schedule::source_path, &ws_epg_schedule::method,
    &ws_epg_schedule::program_id};

TEST_F(ReminderRecord, LacksOnlyTheFieldForWhichThereIsNoMemory) {
    int recordsFailed = 0;
    std::set<int> everMissing;
    withEachAllocationFailing([&](int n, const FailingAllocation& fault) {
        const auto made = record();
        if (made == nullptr) {
            ++recordsFailed;
            return;
        }
        std::set<int> missing;
        for (int i = 0; i < static_cast<int>(std::size(filledFields)); ++i)
            if (made.get()->*filledFields[i] == nullptr) missing.insert(i);
        EXPECT_EQ(missing.size(), fault.happened() ? 1U : 0U) << "allocation " << n;
        everMissing.merge(missing);
    });
    EXPECT_EQ(recordsFailed, 1) << "only without memory for the record itself is there none";
    EXPECT_EQ(everMissing.size(), std::size(filledFields)) << "each field was missing once";
}

TEST_F(ReminderRecord, IsDeletedWithAllThatItHolds) {
    for (const Field field : filledFields) {
        auto made = record();
        ASSERT_NE(made, nullptr);
        const FreedBlock freed(made.get()->*field);
        made.reset();
        EXPECT_EQ(freed.times(), 1);
    }
    for (const Field field : {&ws_epg_schedule::storage_path, &ws_epg_schedule::recent_record_path}) {
        auto made = record();
        ASSERT_NE(made, nullptr);
        made.get()->*field = t_alloc_copy("a path");
        const FreedBlock freed(made.get()->*field);
        made.reset();
        EXPECT_EQ(freed.times(), 1);
    }
}

// In a document ---------------------------------------------------------------------------------------

TEST_F(ReminderRecord, IsShownWithItsStatusTwice) {
    const auto made = record();
    made->storage_path = t_alloc_copy("s");
    made->recent_record_path = t_alloc_copy("r");
    const TestDocument document;
    EXPECT_EQ(t_output_schedule(document, made.get()), 0);
    EXPECT_EQ(document.json(),
              R"({"id":"sch_id_5","name":"Show","type":"VIEW","status":"VIEW","channel_num":"7-2",)"
              R"("channel_name":"News 24","antenna":"AIR","synopsis":"All about it",)"
              R"("start":"1970-01-01T00:00:00+00:00","end":"1970-01-01T01:00:00+00:00","repeat":"ONCE",)"
              R"("source_path":"/ws/epg2/channels/cid-000-7-2","storage_path":"s","recent_record_path":"r",)"
              R"("method":"EPG","program_id":"pid-000-7-2-1234"})");
}

TEST_F(ReminderRecord, IsShownWithoutValuesWhereItHasNone) {
    ws_epg_schedule empty{};
    const TestDocument document;
    EXPECT_EQ(t_output_schedule(document, &empty), 0);
    EXPECT_EQ(document.json(),
              R"({"id":null,"name":null,"type":null,"status":null,"channel_num":null,"channel_name":null,)"
              R"("antenna":null,"synopsis":null,"start":null,"end":null,"repeat":null,"source_path":null,)"
              R"("storage_path":null,"recent_record_path":null,"method":null,"program_id":null})");
}

TEST_F(ReminderRecord, IsNotShownWithoutARecordOrAnObject) {
    ws_epg_schedule empty{};
    const TestDocument document;
    EXPECT_EQ(t_output_schedule(document, nullptr), -1);
    EXPECT_EQ(document.json(), "{}");
    EXPECT_EQ(t_output_schedule(nullptr, &empty), -1);
}

}  // namespace
}  // namespace epgtest
