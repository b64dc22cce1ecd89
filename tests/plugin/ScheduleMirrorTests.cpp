// Filling the table's schedule columns from the reminder store.
#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/plugin/ScheduleMirrorTest.h"
#include "tests/support/ChannelSources.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr auto Error = Container::Logger::Error;

const std::string insertSql =
    "INSERT into myView ('ChannelId','ChannelNumber','ChannelName','ChannelPath','ServiceType','AntennaType',"
    "'ScrambledFlag','EventId','ProgramName','ProgramStartTime','ProgramEndTime','ScheduleId','ScheduleType',"
    "'Repeat') VALUES('";

class ScheduleMirror : public ScheduleMirrorTest {};

// Booked programmes -----------------------------------------------------------------------------------

TEST_F(ScheduleMirror, MarksTheRowOfABookedProgramme) {
    reminders.entries = {entry(5, 1, "Morning"), sportEntry(6, 2, "Replay")};
    reminders.entries[1].SetReserveType(CReminder::RESERVE_VIEW);
    reminders.entries[1].SetRepeat(CReminder::REPEAT_MANUAL, 10);
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"},
                                         Row{"pid-003-10-0-2", "Replay", "sch_id_6", "VIEW", "MON|WED"}));
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
}

TEST_F(ScheduleMirror, ChangesNothingElseOfTheRow) {
    const std::string others =
        "SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber, AntennaType, ScrambledFlag, ServiceType, "
        "EventId, ProgramName, ProgramStartTime, ProgramEndTime FROM myView ORDER BY rowid";
    const auto before = rows(others);
    reminders.entries = {entry(5, 1, "Another title")};
    reminders.entries[0].SetStartTime(1000);
    refill();
    EXPECT_EQ(rows(others), before);
    EXPECT_THAT(schedules(), testing::SizeIs(1));
}

TEST_F(ScheduleMirror, AsksForAllEntriesOnce) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 2, "Football")};
    refill();
    EXPECT_THAT(reminders.kindsAsked, ElementsAre(2));
}

TEST_F(ScheduleMirror, TracesTheStepsOfABookedProgramme) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 2, "Football")};
    const std::string first =
        "UPDATE myView SET ScheduleId='sch_id_5', ScheduleType='RECORD', Repeat='ONCE' WHERE "
        "ChannelId='cid-000-7-2' AND EventId='pid-000-7-2-1';";
    const std::string second =
        "UPDATE myView SET ScheduleId='sch_id_6', ScheduleType='RECORD', Repeat='ONCE' WHERE "
        "ChannelId='cid-000-7-2' AND EventId='pid-000-7-2-2';";
    const SqlTrace trace(*database);
    refill();
    EXPECT_THAT(trace.statements, ElementsAre(first, second));
    EXPECT_THAT(
        logged(),
        ElementsAre(
            LogLine(Trace, "Getting remind items\n"), LogLine(Trace, "Getting remind item: 0\n"),
            LogLine(Trace, "Determining program name..\n"), LogLine(Trace, "Determining schedule details\n"),
            LogLine(Trace, "SQL STATEMENT: " + first + "\n"), LogLine(Trace, "Schedule data updated!\n"),
            LogLine(Trace, "Getting remind item: 1\n"), LogLine(Trace, "Determining program name..\n"),
            LogLine(Trace, "Determining schedule details\n"),
            LogLine(Trace, "SQL STATEMENT: " + second + "\n"), LogLine(Trace, "Schedule data updated!\n")));
}

TEST_F(ScheduleMirror, ChangesNothingForABookingWithoutARow) {
    reminders.entries = {entry(5, 99, "Gone")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
    EXPECT_EQ(logged().back(), LogLine(Trace, "Schedule data updated!\n"));
}

TEST_F(ScheduleMirror, TellsABookedProgrammeByItsTitleWhoeverMadeIt) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 77, "")};
    reminders.entries[0].SetCreationMethod(CReminder::CREATED_MANUALLY);
    reminders.entries[1].SetCreationMethod(CReminder::CREATED_FROM_EPG);
    refill();
    EXPECT_THAT(schedules(),
                ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"},
                            Row{"pid-000-7-2-77", "scheduled_event", "sch_id_6", "RECORD", "ONCE"}));
}

TEST_F(ScheduleMirror, FindsTheChannelByItsNumberWithAnyMinorForNone) {
    reminders.entries = {entry(5, 1, "Morning")};
    reminders.entries[0].Set(7, 0, 0, TCChannel::GetDigitalChType(Air), 0);
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"}));
}

TEST_F(ScheduleMirror, LeavesAnEmptyTextForARepeatThatHasNone) {
    reminders.entries = {entry(5, 1, "Morning")};
    reminders.entries[0].SetRepeat(CReminder::REPEAT_INVALID, 0);
    refill();
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", ""}));
}

TEST_F(ScheduleMirror, LogsNothingBeyondTheStatementWhenAnUpdateFails) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 2, "Football")};
    const StepAnswer failure("EventId='pid-000-7-2-1'", SQLITE_ERROR);
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-2", "Football", "sch_id_6", "RECORD", "ONCE"}));
    EXPECT_THAT(logged(), Contains(LogLine(Trace, "Schedule data updated!\n")).Times(1));
    for (const auto& [level, message] : logged())
        EXPECT_EQ(level, Trace) << message;
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleMirror, DoesNotPutATitleIntoAStatement) {
    reminders.entries = {entry(5, 1, "It's morning")};
    refill();
    EXPECT_THAT(schedules(), testing::SizeIs(1));
}

TEST_F(ScheduleMirror, GoesOnAfterAnIdentifierThatBreaksTheStatement) {
    ChannelSources sources;
    sources.change = [](ws_epg_channel_source& record) { record.channel_id[0] = '\''; };
    reminders.entries = {entry(5, 1, "Morning")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(logged(), Not(Contains(LogLine(Trace, "Schedule data updated!\n"))));
    EXPECT_TRUE(leavesNoStatement());
}

// The store -------------------------------------------------------------------------------------------

TEST_F(ScheduleMirror, HasNothingToShowWithoutAStore) {
    epgset::useReminder(nullptr);
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(logged(), ElementsAre(LogLine(Trace, "Getting remind items\n")));
}

TEST_F(ScheduleMirror, LeavesNothingBookedWithoutEntries) {
    rows(
        "UPDATE myView SET ScheduleId='sch_id_5', ScheduleType='RECORD', Repeat='ONCE' WHERE "
        "ProgramName='Morning'");
    rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('scheduled_event', 'sch_id_6')");
    mirror();
    EXPECT_THAT(rows("SELECT ifnull(ScheduleId, ''), ifnull(ScheduleType, ''), ifnull(Repeat, '') "
                     "FROM myView"),
                testing::AllOf(testing::SizeIs(4), Each(Row{"", "", ""})));
}

TEST_F(ScheduleMirror, GoesNoFurtherThanTheStoresCountAndItsList) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 2, "Football")};
    reminders.statedCount = 1;
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), testing::SizeIs(1));
    reminders.statedCount = 5;
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), testing::SizeIs(2));
    EXPECT_THAT(logged(), Not(Contains(LogLine(Trace, "Getting remind item: 2\n"))));
}

TEST_F(ScheduleMirror, TakesWhatTheStoreGaveWhateverItAnswered) {
    reminders.entries = {entry(5, 1, "Morning")};
    reminders.answer = false;
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), testing::SizeIs(1));
}

TEST_F(ScheduleMirror, StopsAtABookingWhoseChannelIsGone) {
    reminders.entries = {entry(5, 1, "Morning"), lostEntry(6, 1, "Lost"), entry(7, 2, "Football")};
    EXPECT_EQ(refill(), -1);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"}));
    const auto lines = logged();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], LogLine(Trace, "Getting remind item: 1\n"));
    EXPECT_EQ(lines.back(), LogLine(Error, "ERROR! get remind item failed!\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleMirror, StopsAtAManualBookingWhoseChannelIsGone) {
    reminders.entries = {lostEntry(6, 1, "")};
    EXPECT_EQ(refill(), -1);
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
    EXPECT_TRUE(leavesNoStatement());
}

// Manual bookings -------------------------------------------------------------------------------------

TEST_F(ScheduleMirror, ShowsAManualBookingAsARowOfItsOwn) {
    reminders.entries = {entry(5, 0, "")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(
        rows("SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber, AntennaType, ScrambledFlag, "
             "ServiceType, EventId, ProgramName, ProgramStartTime, ProgramEndTime, ScheduleId, ScheduleType, "
             "Repeat FROM myView WHERE NOT ScheduleId=''"),
        ElementsAre(Row{"cid-000-7-2", "News 24", "", "7-2", "AIR", "false", "TV", "pid-000-7-2-0",
                        "scheduled_event", "1787443200", "1787446800", "sch_id_5", "RECORD", "ONCE"}));
}

TEST_F(ScheduleMirror, TracesTheStepsOfAManualBooking) {
    reminders.entries = {entry(5, 0, "")};
    const std::string check =
        "select ChannelId, EventId from myView WHERE ChannelId='cid-000-7-2' AND EventId='pid-000-7-2-0' AND "
        "ScheduleId='sch_id_5';";
    const std::string insert =
        insertSql +
        "cid-000-7-2','7-2','News 24','','TV','AIR','false','pid-000-7-2-0','scheduled_event','1787443200',"
        "'1787446800','sch_id_5','RECORD','ONCE');";
    const SqlTrace trace(*database);
    refill();
    EXPECT_THAT(trace.statements, ElementsAre(check, insert));
    EXPECT_THAT(
        logged(),
        ElementsAre(LogLine(Trace, "Getting remind items\n"), LogLine(Trace, "Getting remind item: 0\n"),
                    LogLine(Trace, "Determining program name..\n"),
                    LogLine(Trace, "Determining schedule details\n"),
                    LogLine(Trace,
                            "Remind info: ChnldId: cid-000-7-2, EventId: pid-000-7-2-0, "
                            "SchedId: sch_id_5\n"),
                    LogLine(Trace, "SQL STATEMENT: " + check + "\n"), LogLine(Trace, "QUERY Result: 101\n\n"),
                    LogLine(Trace, "SQL STATEMENT: " + insert + "\n"),
                    LogLine(Trace, "SQL Return code: 101\n"), LogLine(Trace, "Schedule data added!\n")));
}

TEST_F(ScheduleMirror, NeitherDoublesAManualBookingNorLeavesItBehind) {
    reminders.entries = {entry(5, 0, "")};
    for (int request = 0; request < 3; ++request) {
        mirror();
        EXPECT_THAT(schedules(),
                    ElementsAre(Row{"pid-000-7-2-0", "scheduled_event", "sch_id_5", "RECORD", "ONCE"}));
    }
    reminders.entries.clear();
    mirror();
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
}

TEST_F(ScheduleMirror, LeavesAManualBookingThatIsThereAsItIs) {
    reminders.entries = {entry(5, 0, "")};
    refill();
    log.clear();
    refill();
    EXPECT_THAT(schedules(), testing::SizeIs(1));
    const auto lines = logged();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], LogLine(Trace, "QUERY Result: 100\n\n"));
    EXPECT_EQ(lines.back(), LogLine(Trace, "Event entry exist!\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleMirror, ShowsTwoManualBookingsOfOneChannel) {
    reminders.entries = {entry(5, 0, ""), entry(6, 0, "")};
    refill();
    EXPECT_THAT(schedules(),
                ElementsAre(Row{"pid-000-7-2-0", "scheduled_event", "sch_id_5", "RECORD", "ONCE"},
                            Row{"pid-000-7-2-0", "scheduled_event", "sch_id_6", "RECORD", "ONCE"}));
}

TEST_F(ScheduleMirror, ShowsTheTimesOfAManualBookingWithoutTheHourOfDaylightSaving) {
    clock.setZone(0, true);
    rows("DROP TABLE myView");
    fill();
    CRemindInfo info = entry(5, 0, "");
    info.SetStartTime(midnight + 3600);  // midnight by the middleware's clock
    reminders.entries = {info};
    refill();
    EXPECT_THAT(rows("SELECT ProgramStartTime FROM myView WHERE ProgramName='scheduled_event'"),
                ElementsAre(Row{std::to_string(midnight)}));
    EXPECT_THAT(rows("SELECT ProgramStartTime FROM myView WHERE ProgramName='Morning'"),
                ElementsAre(Row{std::to_string(midnight + 3600)}));
}

TEST_F(ScheduleMirror, ShowsTimesBeyond2038AsTheyAre) {
    reminders.entries = {entry(5, 0, "")};
    reminders.entries[0].SetStartTime(4'000'000'000);
    refill();
    EXPECT_THAT(rows("SELECT ProgramStartTime, ProgramEndTime FROM myView WHERE NOT ScheduleId=''"),
                ElementsAre(Row{"4000000000", "4000003600"}));
}

// The channel's texts ---------------------------------------------------------------------------------

TEST_F(ScheduleMirror, GivesTheChannelsTextsBack) {
    ChannelSources sources;
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 0, ""), lostEntry(7, 1, "")};
    refill();
    EXPECT_EQ(sources.made, 2);
    EXPECT_EQ(sources.deleted, 2);
}

TEST_F(ScheduleMirror, LeavesAnEmptyTextForEachThatTheChannelHasNot) {
    ChannelSources sources;
    sources.change = [](ws_epg_channel_source& record) {
        for (char** text : {&record.channel_num, &record.channel_name, &record.service_type, &record.antenna,
                            &record.scrambled}) {
            std::free(*text);
            *text = nullptr;
        }
    };
    reminders.entries = {entry(5, 0, "")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(rows("SELECT ChannelId, ChannelNumber, ChannelName, ServiceType, AntennaType, ScrambledFlag "
                     "FROM myView WHERE NOT ScheduleId=''"),
                ElementsAre(Row{"cid-000-7-2", "", "", "", "", ""}));
}

TEST_F(ScheduleMirror, KeepsNoTextOfTheBookingBefore) {
    ChannelSources sources;
    reminders.entries = {sportEntry(5, 0, ""), entry(6, 0, "")};
    sources.change = [&sources](ws_epg_channel_source& record) {
        if (sources.made == 1) return;
        std::free(record.channel_name);
        record.channel_name = nullptr;
    };
    refill();
    EXPECT_THAT(rows("SELECT ChannelId, ChannelName FROM myView WHERE NOT ScheduleId='' ORDER BY rowid"),
                ElementsAre(Row{"cid-003-10", "Sport"}, Row{"cid-000-7-2", ""}));
}

TEST_F(ScheduleMirror, LeavesEmptyTextsForAChannelWithoutARecord) {
    ChannelSources sources;
    sources.none = true;
    reminders.entries = {entry(5, 0, "")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(rows("SELECT ChannelId, ChannelName, EventId FROM myView WHERE NOT ScheduleId=''"),
                ElementsAre(Row{"", "", "pid-000-7-2-0"}));
}

// Whether a booking has a row -------------------------------------------------------------------------

TEST_F(ScheduleMirror, FindsARowByAllItsThreeIdentifiers) {
    rows("UPDATE myView SET ScheduleId='sch_id_5' WHERE ProgramName='Morning'");
    const auto isThere = [this](const char* channelId, const char* eventId, const char* scheduleId) {
        return OpenPlugin::m_checkIfEventIsInDB(channelId, eventId, scheduleId, database);
    };
    EXPECT_TRUE(isThere("cid-000-7-2", "pid-000-7-2-1", "sch_id_5"));
    EXPECT_THAT(logged(),
                ElementsAre(LogLine(Trace,
                                    "SQL STATEMENT: select ChannelId, EventId from myView WHERE "
                                    "ChannelId='cid-000-7-2' AND EventId='pid-000-7-2-1' AND "
                                    "ScheduleId='sch_id_5';\n"),
                            LogLine(Trace, "QUERY Result: 100\n\n"), LogLine(Trace, "Event entry exist!\n")));
    EXPECT_FALSE(isThere("cid-000-7", "pid-000-7-2-1", "sch_id_5"));
    EXPECT_FALSE(isThere("cid-000-7-2", "pid-000-7-2-2", "sch_id_5"));
    EXPECT_FALSE(isThere("cid-000-7-2", "pid-000-7-2-1", "sch_id_6"));
    EXPECT_EQ(logged().back(), LogLine(Trace, "QUERY Result: 101\n\n"));
    EXPECT_FALSE(isThere("it's", "pid-000-7-2-1", "sch_id_5"));
    EXPECT_TRUE(leavesNoStatement());
}

// The table after it ----------------------------------------------------------------------------------

TEST_F(ScheduleMirror, LetsTheTableBeCompactedAndDropped) {
    reminders.entries = {entry(5, 1, "Morning"), entry(6, 0, ""), lostEntry(7, 1, "")};
    for (int request = 0; request < 2; ++request) {
        mirror();
        EXPECT_TRUE(leavesNoStatement());
    }
    refill();
    EXPECT_TRUE(leavesNoStatement());
    rows("VACUUM");
    rows("DROP TABLE myView");
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
}

}  // namespace
}  // namespace epgtest
