#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "set/database/OpenConnections.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Pruning : public TableTest {
protected:
    Pruning() {
        fill();
        log.clear();
    }

    /// Adds a row to the table. The values are SQL.
    void add(const std::string& eventId, const std::string& start, const std::string& scheduleId = "''",
             const std::string& channelName = "'News'", const std::string& channelId = "'cid-000-1'") const {
        rows("INSERT INTO myView (ChannelId, ChannelName, EventId, ProgramStartTime, ScheduleId) VALUES (" +
             channelId + ", " + channelName + ", " + eventId + ", " + start + ", " + scheduleId + ")");
    }

    void addProgrammes(int count) const {
        for (int i = 1; i <= count; ++i)
            add("'pid-" + std::to_string(i) + "'", std::to_string(i * 1'000));
    }

    void prune(int count) const { OpenPlugin().removeLastNProgramEntries(database, count); }

    /// Event ids that are left.
    std::vector<Row> left() const { return rows("SELECT EventId FROM myView ORDER BY rowid"); }
};

TEST_F(Pruning, RemovesTheProgrammesThatStartLast) {
    addProgrammes(7);
    prune(5);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-1"}, Row{"pid-2"}));
}

TEST_F(Pruning, RemovesNoMoreThanThereAre) {
    addProgrammes(2);
    prune(5);
    EXPECT_THAT(left(), IsEmpty());
}

TEST_F(Pruning, RunsItsStatementsInOrder) {
    addProgrammes(3);
    SqlTrace trace(*database);
    prune(2);
    EXPECT_THAT(
        trace.statements,
        ElementsAre(
            "SELECT ChannelId, EventId FROM myView WHERE ScheduleId='' AND NOT ChannelId='' AND NOT "
            "EventId='' AND NOT ChannelName='No_channel_name' ORDER BY ProgramStartTime DESC LIMIT 2;",
            "DELETE FROM myView WHERE ChannelId='cid-000-1' AND EventId='pid-3' AND ScheduleId='';",
            "DELETE FROM myView WHERE ChannelId='cid-000-1' AND EventId='pid-2' AND ScheduleId='';",
            "vacuum;"));
}

TEST_F(Pruning, TracesEachDelete) {
    addProgrammes(1);
    prune(5);
    EXPECT_THAT(
        logged(),
        ElementsAre(LogLine{Container::Logger::Trace,
                            "DELETE SQL: DELETE FROM myView WHERE ChannelId='cid-000-1' AND EventId='pid-1' "
                            "AND ScheduleId='';\n"},
                    LogLine{Container::Logger::Trace, "Attempted to delete a DB entry, result:101\n"}));
}

TEST_F(Pruning, CompactsTheDatabaseThoughThereIsNothingToRemove) {
    SqlTrace trace(*database);
    prune(5);
    EXPECT_THAT(trace.statements, Contains("vacuum;").Times(1));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(Pruning, RemovesNothingForACountOfNone) {
    addProgrammes(2);
    SqlTrace trace(*database);
    prune(0);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-1"}, Row{"pid-2"}));
    EXPECT_THAT(trace.statements, Contains("vacuum;"));
}

TEST_F(Pruning, GivesTheFreedPagesBack) {
    const auto databaseSize = [this] {
        sqlite3_int64 size = 0;
        sqlite3_free(sqlite3_serialize(database->handle(), "main", &size, 0));
        return size;
    };
    for (int i = 1; i <= 5; ++i)
        add("'pid-" + std::to_string(i) + "'", std::to_string(i), "''", "hex(zeroblob(50000))");
    EXPECT_GT(databaseSize(), 400'000);
    prune(5);
    EXPECT_LE(databaseSize(), 7 * 4096);  // one page for the schema, the table and each of its indexes
}

TEST_F(Pruning, KeepsBookedProgrammes) {
    add("'pid-1'", "1000");
    add("'pid-2'", "2000", "'sch_id_1'");
    add("'pid-3'", "3000", "'sch_id_2'");
    prune(5);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-2"}, Row{"pid-3"}));
}

TEST_F(Pruning, KeepsProgrammesWhoseBookingWasCleared) {
    add("'pid-1'", "1000", "NULL");
    prune(5);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-1"}));
}

TEST_F(Pruning, KeepsRowsWithoutIdentifiers) {
    add("''", "1000");
    add("'pid-2'", "2000", "''", "'News'", "''");
    prune(5);
    EXPECT_THAT(left(), ElementsAre(Row{""}, Row{"pid-2"}));
}

TEST_F(Pruning, KeepsChannelsMarkedAsNameless) {
    add("'pid-1'", "1000", "''", "'No_channel_name'");
    add("'pid-2'", "2000", "''", "'no_channel_name'");
    prune(5);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-1"}));
}

TEST_F(Pruning, KeepsStubs) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.use();
    rows("DROP TABLE myView");
    fill();
    prune(5);
    EXPECT_THAT(rows("SELECT ProgramName FROM myView"), ElementsAre(Row{"No information"}));
}

TEST_F(Pruning, RemovesEveryUnbookedRowOfAPairOfIdentifiers) {
    add("'pid-1'", "1000");
    add("'pid-2'", "2000", "'sch_id_1'");
    add("'pid-2'", "2000");
    add("'pid-2'", "500");
    prune(1);
    EXPECT_THAT(rows("SELECT EventId, ScheduleId FROM myView ORDER BY rowid"),
                ElementsAre(Row{"pid-1", ""}, Row{"pid-2", "sch_id_1"}));
}

TEST_F(Pruning, ComparesStartsAsStored) {
    add("'pid-number'", "'900'");
    add("'pid-large'", "'1000'");
    add("'pid-text'", "'soon'");
    prune(1);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-number"}, Row{"pid-large"})) << "texts stand behind all numbers";
    prune(1);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-number"})) << "numbers compare as numbers";
}

TEST_F(Pruning, GoesOnAfterADeleteThatFails) {
    addProgrammes(3);
    const StepAnswer fault("DELETE FROM myView WHERE ChannelId='cid-000-1' AND EventId='pid-3'",
                           SQLITE_ERROR);
    SqlTrace trace(*database);
    prune(2);
    EXPECT_THAT(left(), ElementsAre(Row{"pid-1"}, Row{"pid-3"}));
    EXPECT_THAT(trace.statements, Contains("vacuum;"));
    EXPECT_THAT(pluginLog(), Contains("Attempted to delete a DB entry, result:1\n"));
}

TEST_F(Pruning, CompactsTheDatabaseThoughTheSelectionFails) {
    rows("DROP TABLE myView");
    SqlTrace trace(*database);
    prune(5);
    EXPECT_THAT(trace.statements, ElementsAre("vacuum;"));
}

TEST_F(Pruning, LeavesTheConnectionWithoutOpenStatements) {
    addProgrammes(3);
    prune(2);
    EXPECT_EQ(epgset::openStatementCount(), 0u);
}

}  // namespace
}  // namespace epgtest
