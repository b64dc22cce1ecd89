// Adding a manual booking's row to a table that may be full.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "set/database/DatabaseFaults.h"
#include "tests/plugin/ScheduleMirrorTest.h"
#include "tests/support/FailingNew.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using epgset::DatabaseFault;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string insertStatement =
    "INSERT into myView ('ChannelId','ChannelNumber','ChannelName','ChannelPath','ServiceType','AntennaType',"
    "'ScrambledFlag','EventId','ProgramName','ProgramStartTime','ProgramEndTime','ScheduleId','ScheduleType',"
    "'Repeat') VALUES('c','7','n','','TV','AIR','false','e','scheduled_event','1000','2000','s','RECORD',"
    "'ONCE');";

class ScheduleInsert : public ScheduleMirrorTest {
protected:
    void insert(const std::string& channelName = "n") const {
        OpenPlugin::m_insertSchedData("c", "7", channelName, "TV", "AIR", "false", "e", "1000", "2000", "s",
                                      "RECORD", "ONCE", database);
    }

    std::vector<Row> inserted() const { return rows("SELECT ChannelName FROM myView WHERE ScheduleId='s'"); }

    /// What was logged, without what pruning tells of its own.
    std::vector<LogLine> loggedBesidePruning() const {
        std::vector<LogLine> lines;
        for (const LogLine& line : logged())
            if (line.second.rfind("DELETE SQL: ", 0) != 0 && line.second.rfind("Attempted to ", 0) != 0)
                lines.push_back(line);
        return lines;
    }

    /// Fills the database to its last byte with rows that pruning does not take.
    void fillUp() const {
        for (const int bytes : {4'000'000, 100'000, 4'000, 200, 1}) {
            const std::string sql = "INSERT INTO myView (ChannelName, ScheduleId) VALUES (zeroblob(" +
                                    std::to_string(bytes) + "), 'kept')";
            while (sqlite3_exec(database->handle(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
            }
            ASSERT_EQ(sqlite3_errcode(database->handle()), SQLITE_FULL);
        }
    }
};

const LogLine statementLine(Trace, "SQL STATEMENT: " + insertStatement + "\n");
const LogLine addedLine(Trace, "Schedule data added!\n");
LogLine codeLine(int code) {
    return {Trace, "SQL Return code: " + std::to_string(code) + "\n"};
}

TEST_F(ScheduleInsert, WritesTheValuesInTheStatementsOrder) {
    const SqlTrace trace(*database);
    insert();
    EXPECT_THAT(trace.statements, ElementsAre(insertStatement));
    EXPECT_THAT(logged(), ElementsAre(statementLine, codeLine(101), addedLine));
    EXPECT_THAT(rows("SELECT ChannelId, ChannelNumber, ChannelName, ChannelPath, ServiceType, AntennaType, "
                     "ScrambledFlag, EventId, ProgramName, ProgramStartTime, ProgramEndTime, ScheduleId, "
                     "ScheduleType, Repeat FROM myView WHERE ScheduleId='s'"),
                ElementsAre(Row{"c", "7", "n", "", "TV", "AIR", "false", "e", "scheduled_event", "1000",
                                "2000", "s", "RECORD", "ONCE"}));
}

TEST_F(ScheduleInsert, PrunesNothingWhenThereIsRoom) {
    addPrunable(30);
    insert();
    EXPECT_THAT(prunable(), ElementsAre(Row{"30"}));
}

TEST_F(ScheduleInsert, TriesAgainAfterEachPruningUntilItSucceeds) {
    const struct {
        int failures;
        const char* left;
    } examples[] = {{1, "25"}, {2, "20"}, {5, "5"}};
    for (const auto& [failures, left] : examples) {
        SCOPED_TRACE(failures);
        rows("DELETE FROM myView");
        addPrunable(30);
        log.clear();
        const DatabaseFault fault(DatabaseFault::Compile, "INSERT into myView", 1, failures);
        insert();
        EXPECT_THAT(inserted(), ElementsAre(Row{"n"}));
        EXPECT_THAT(prunable(), ElementsAre(Row{left}));

        std::vector<LogLine> expected{statementLine};
        for (int i = 0; i < failures; ++i)
            expected.push_back(codeLine(SQLITE_MISUSE));
        expected.insert(expected.end(), {codeLine(101), addedLine, codeLine(101)});
        EXPECT_EQ(loggedBesidePruning(), expected);
        EXPECT_TRUE(leavesNoStatement());
    }
}

TEST_F(ScheduleInsert, GivesUpSilentlyAfterFiveRetries) {
    addPrunable(30);
    const StepAnswer full("INSERT into myView", SQLITE_FULL);
    insert();
    EXPECT_THAT(inserted(), IsEmpty());
    EXPECT_THAT(prunable(), ElementsAre(Row{"5"}));
    EXPECT_THAT(loggedBesidePruning(), ElementsAre(statementLine, codeLine(13), codeLine(13), codeLine(13),
                                                   codeLine(13), codeLine(13), codeLine(13)));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleInsert, CompactsTheTableBeforeEachRetry) {
    const StepAnswer full("INSERT into myView", SQLITE_FULL);
    const SqlTrace trace(*database);
    insert();
    EXPECT_THAT(trace.statements, Contains("vacuum;").Times(5));
}

TEST_F(ScheduleInsert, DoesNotDoubleTheQuotesOfItsValues) {
    addPrunable(30);
    insert("It's news");
    EXPECT_THAT(inserted(), IsEmpty());
    EXPECT_THAT(prunable(), ElementsAre(Row{"5"})) << "five retries";
    EXPECT_THAT(loggedBesidePruning(), Contains(codeLine(SQLITE_MISUSE)).Times(6));
    EXPECT_THAT(count(), ElementsAre(Row{"9"}));
}

TEST_F(ScheduleInsert, OfABookingOnAChannelWithAQuoteIsGivenUp) {
    TestGuide guide;
    guide.channel(Air, 7, 2, "It's news");
    guide.use();
    addPrunable(30);
    reminders.entries = {entry(5, 0, ""), entry(6, 1, "Morning")};
    EXPECT_EQ(refill(), 0);
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_6", "RECORD", "ONCE"}))
        << "the next booking is shown";
    EXPECT_THAT(prunable(), ElementsAre(Row{"5"}));
}

TEST_F(ScheduleInsert, FindsRoomInAFullDatabase) {
    addPrunable(30, 50'000);
    fillUp();
    log.clear();
    insert();
    EXPECT_THAT(inserted(), ElementsAre(Row{"n"}));
    EXPECT_THAT(prunable(), ElementsAre(Row{"25"}));
    EXPECT_THAT(loggedBesidePruning(),
                ElementsAre(statementLine, codeLine(SQLITE_FULL), codeLine(101), addedLine, codeLine(101)));
}

TEST_F(ScheduleInsert, GivesUpInAFullDatabaseWithNothingToPrune) {
    rows("UPDATE myView SET ScheduleId='kept'");
    fillUp();
    const auto before = count();
    log.clear();
    insert();
    EXPECT_THAT(inserted(), IsEmpty());
    EXPECT_EQ(count(), before);
    EXPECT_THAT(loggedBesidePruning(), Contains(codeLine(SQLITE_FULL)).Times(6));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleInsert, DoesNothingWithoutMemoryForItsStatement) {
    addPrunable(30);
    const std::string text = "x";
    log.clear();
    {
        const SqlTrace trace(*database);
        const FailingNew fault(1);
        OpenPlugin::m_insertSchedData(text, text, text, text, text, text, text, text, text, text, text, text,
                                      database);
        EXPECT_THAT(trace.statements, IsEmpty());
    }
    EXPECT_THAT(logged(), ElementsAre(LogLine(Trace, "Memory not allocated for SQL query string\n")));
    EXPECT_THAT(prunable(), ElementsAre(Row{"30"}));
}

TEST_F(ScheduleInsert, HasNoRowWithoutATable) {
    rows("DROP TABLE myView");
    insert();
    EXPECT_THAT(loggedBesidePruning(), Contains(codeLine(SQLITE_MISUSE)).Times(6));
    EXPECT_TRUE(leavesNoStatement());
}

}  // namespace
}  // namespace epgtest
