// Clearing the table's schedule columns.
#include <gmock/gmock.h>

#include <string>

#include "tests/plugin/ScheduleMirrorTest.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class ScheduleClear : public ScheduleMirrorTest {};

TEST_F(ScheduleClear, SetsTheColumnsOfBookedProgrammesToNull) {
    rows(
        "UPDATE myView SET ScheduleId='sch_id_1', ScheduleType='RECORD', Repeat='ONCE' WHERE "
        "ProgramName='Morning'");
    EXPECT_EQ(clear(), 0);
    EXPECT_THAT(rows("SELECT ScheduleId, ScheduleType, Repeat FROM myView WHERE ProgramName='Morning'"),
                ElementsAre(Row{"NULL", "NULL", "NULL"}));
    EXPECT_THAT(rows("SELECT ScheduleId, ScheduleType, Repeat FROM myView WHERE NOT ProgramName='Morning'"),
                Each(Row{"", "", ""}))
        << "what was not booked stays empty";
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
}

TEST_F(ScheduleClear, RemovesManualBookings) {
    rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('scheduled_event', 'sch_id_1')");
    EXPECT_EQ(clear(), 0);
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
    EXPECT_THAT(rows("SELECT * FROM myView WHERE ProgramName='scheduled_event'"), IsEmpty());
}

TEST_F(ScheduleClear, TellsManualBookingsByTheirExactName) {
    for (const char* name : {"Scheduled_event", "scheduled_event ", "scheduled_events", ""}) {
        rows("DELETE FROM myView");
        rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('" + std::string(name) + "', 'sch_id_1')");
        clear();
        EXPECT_THAT(rows("SELECT ProgramName, ScheduleId FROM myView"), ElementsAre(Row{name, "NULL"}));
    }
}

TEST_F(ScheduleClear, RunsOneStatementForEachScheduleToClear) {
    rows("UPDATE myView SET ScheduleId='sch_id_5' WHERE ProgramName='Morning'");
    rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('scheduled_event', 'sch_id_6')");
    const SqlTrace trace(*database);
    clear();
    EXPECT_THAT(trace.statements,
                ElementsAre("SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';",
                            "UPDATE myView SET ScheduleId=NULL, ScheduleType=NULL, Repeat=NULL WHERE "
                            "ScheduleId='sch_id_5';",
                            "DELETE FROM myView WHERE ScheduleId='sch_id_6';"));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Trace, "A schedule has been found:sch_id_5, Morning\n"),
                                      LogLine(Trace,
                                              "A schedule has been found:sch_id_6, "
                                              "scheduled_event\n")))
        << "and nothing about what was removed";
}

TEST_F(ScheduleClear, ReachesAllRowsOfOneSchedule) {
    rows("UPDATE myView SET ScheduleId='sch_id_5' WHERE ChannelId='cid-000-7-2'");
    clear();
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(count(), ElementsAre(Row{"4"}));
}

TEST_F(ScheduleClear, RemovesProgrammesThatShareTheScheduleOfAManualBooking) {
    rows("DELETE FROM myView WHERE ProgramName='Morning'");
    rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('scheduled_event', 'sch_id_5')");
    rows("INSERT INTO myView (ProgramName, ScheduleId) VALUES ('Evening', 'sch_id_5')");
    clear();
    EXPECT_THAT(rows("SELECT ProgramName FROM myView ORDER BY rowid"),
                ElementsAre(Row{"Football"}, Row{"Live"}, Row{"Replay"}));
}

TEST_F(ScheduleClear, ReachesManySchedules) {
    rows(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n LIMIT 500) "
        "INSERT INTO myView (EventId, ProgramName, ScheduleId) SELECT 'pid-' || i, "
        "CASE i % 2 WHEN 0 THEN 'scheduled_event' ELSE 'Programme' END, 'sch_id_' || i FROM n");
    EXPECT_EQ(clear(), 0);
    EXPECT_THAT(schedules(), IsEmpty());
    EXPECT_THAT(count(), ElementsAre(Row{"254"}));
}

TEST_F(ScheduleClear, TellsOfARemovalThatAnswersZero) {
    rows("UPDATE myView SET ScheduleId='sch_id_5' WHERE ProgramName='Morning'");
    const StepAnswer answer("UPDATE myView SET ScheduleId=NULL", SQLITE_OK);
    clear();
    EXPECT_THAT(logged(), ElementsAre(LogLine(Trace, "A schedule has been found:sch_id_5, Morning\n"),
                                      LogLine(Trace, "Removed/Updated schedule entry in DB.\n")));
}

TEST_F(ScheduleClear, GoesOnAfterAFailure) {
    rows("UPDATE myView SET ScheduleId='sch_id_5' WHERE ProgramName='Morning'");
    rows("UPDATE myView SET ScheduleId='it''s' WHERE ProgramName='Football'");
    rows("UPDATE myView SET ScheduleId='sch_id_6' WHERE ProgramName='Live'");
    EXPECT_EQ(clear(), 0);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-2", "Football", "it's", "", ""}));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleClear, HasNothingToDoWithoutSchedulesOrATable) {
    EXPECT_EQ(clear(), 0);
    EXPECT_THAT(logged(), IsEmpty());
    rows("DROP TABLE myView");
    EXPECT_EQ(clear(), 0);
    EXPECT_TRUE(leavesNoStatement());
}

}  // namespace
}  // namespace epgtest
