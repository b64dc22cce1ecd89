#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "host/DomainException.h"
#include "set/database/DatabaseFaults.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using epgset::DatabaseFault;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto Trace = Container::Logger::Trace;
constexpr auto Debug = Container::Logger::Debug;

std::string timeText(std::int64_t time) {
    return std::to_string(time);
}

/// A made instance whose guide is then renamed, so that a rebuild shows.
class Rebuild : public TableTest {
protected:
    Rebuild() {
        useChannel("Before");
        instance = plugin();
        useChannel("After");
        log.clear();
    }

    static void useChannel(const std::string& name) {
        TestGuide guide;
        guide.channel(Air, 1, 0, name);
        guide.use();
    }

    static std::vector<Row> names() { return table("SELECT ChannelName FROM myView"); }

    Container::SharedPtr<EpgSQLPluginVexmoor> instance;
};

TEST_F(Rebuild, FillsTheTableAgainWhenForced) {
    instance->rebuildDB(true);
    EXPECT_THAT(names(), ElementsAre(Row{"After"}));
}

TEST_F(Rebuild, OnlyTracesWithin600Seconds) {
    clock.advance(600);
    instance->rebuildDB(false);
    EXPECT_THAT(names(), ElementsAre(Row{"Before"}));
    EXPECT_EQ(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime));
    EXPECT_THAT(logged(), ElementsAre(LogLine{Trace, "Plug-in last update: " + timeText(startTime) + "\n"}));
}

TEST_F(Rebuild, FillsTheTableAgainAfter600Seconds) {
    clock.advance(601);
    instance->rebuildDB(false);
    EXPECT_THAT(names(), ElementsAre(Row{"After"}));
    EXPECT_EQ(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime + 601));
}

TEST_F(Rebuild, CountsThe600SecondsFromTheLastRebuild) {
    clock.advance(601);
    instance->rebuildDB(false);
    useChannel("Later");
    clock.advance(600);
    instance->rebuildDB(false);
    EXPECT_THAT(names(), ElementsAre(Row{"After"}));
    clock.advance(1);
    instance->rebuildDB(false);
    EXPECT_THAT(names(), ElementsAre(Row{"Later"}));
}

TEST_F(Rebuild, FollowsAClockThatJumpsByAYearAndBack) {
    constexpr std::int64_t year = 365 * 86'400;
    TestGuide guide;
    guide.programme(guide.channel(Air, 1), startTime + 3'600, startTime + 7'200, "News", 17);
    guide.use();
    const auto programmes = [] { return table("SELECT ProgramName FROM myView WHERE EventId<>''"); };
    clock.advance(601);
    instance->rebuildDB(false);
    EXPECT_THAT(programmes(), ElementsAre(Row{"News"}));
    clock.advance(-year);
    instance->rebuildDB(false);  // the last fill is still to come
    EXPECT_THAT(programmes(), ElementsAre(Row{"News"}));
    instance->rebuildDB(true);  // it begins in more than seven days
    EXPECT_THAT(programmes(), IsEmpty());
    clock.advance(2 * year);  // what is over stays
    instance->rebuildDB(false);
    EXPECT_THAT(programmes(), ElementsAre(Row{"News"}));
}

TEST_F(Rebuild, LogsItsStepsInOrder) {
    clock.advance(10);
    instance->rebuildDB(true);
    EXPECT_THAT(
        logged(),
        ElementsAre(LogLine{Trace, "Plug-in last update: " + timeText(startTime) + "\n"},
                    LogLine{Trace, "An update has been triggered\n"},
                    LogLine{Trace, "SQL STATEMENT: DROP TABLE myView;\n"}, LogLine{Trace, "table deleted!\n"},
                    LogLine{Debug, "Create tbl sql: " + std::string(createTableSql) + "\n"},
                    LogLine{Debug, "Start of m_retrieveEpgData, looping through channels...\n"},
                    LogLine{Debug, "End of retrieveEpgData\n"},
                    LogLine{Debug, "\n*** Number of programs parsed: 0\n"}, LogLine{Debug, "Table created\n"},
                    LogLine{Trace, "Set Plug-in last update to: " + timeText(startTime + 10) + "\n"}));
}

TEST_F(Rebuild, KeepsTheTimeAtItsEnd) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 10);
    guide.use();
    clock.setTick(1);
    instance->rebuildDB(true);
    EXPECT_GT(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime + 1))
        << "not the first reading";
    EXPECT_EQ(clock.now(), static_cast<std::int64_t>(OpenPlugin::lastUpdateTime) + 1)
        << "nobody read it since";
}

TEST_F(Rebuild, FillsTheTableThoughThereWasNoneToDrop) {
    table("DROP TABLE myView");
    instance->rebuildDB(true);
    EXPECT_THAT(names(), ElementsAre(Row{"After"}));
}

TEST_F(Rebuild, TriesTheFillThoughTheTableCouldNotBeDropped) {
    const StepAnswer fault("DROP TABLE", SQLITE_ERROR);
    EXPECT_THROW(instance->rebuildDB(true), Container::DomainException);
    EXPECT_THAT(logged(), Contains(LogLine{Trace, "ERROR!!! unable to delete table\n"}));
    EXPECT_THAT(logged(), Contains(LogLine{Debug, "Create tbl sql: " + std::string(createTableSql) + "\n"}));
}

TEST_F(Rebuild, LeavesTheTimeAsItWasWhenTheFillFails) {
    clock.advance(700);
    {
        const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView");
        EXPECT_THROW(instance->rebuildDB(false), Container::DomainException);
    }
    EXPECT_EQ(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime));
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_THAT(logged(), testing::Not(Contains(LogLine{Debug, "Table created\n"})));

    instance->rebuildDB(false);
    EXPECT_THAT(names(), ElementsAre(Row{"After"})) << "the lock is free and the time is still up";
}

TEST_F(Rebuild, LeavesTheCountsOfTheCheckBeforeAFillThatFails) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 5);
    guide.use();
    EXPECT_TRUE(instance->checkDB_UpdateNeeded());
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView", 3);
    EXPECT_THROW(instance->rebuildDB(true), Container::DomainException);
    EXPECT_FALSE(instance->checkDB_UpdateNeeded());
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
}

TEST_F(Rebuild, IsDoneByOneThreadAfterTheOther) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 100);
    guide.use();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this] { instance->rebuildDB(true); });
    for (auto& thread : threads)
        thread.join();

    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"100"}));
    std::vector<std::string> ends;
    for (const auto& message : pluginLog())
        if (message == "An update has been triggered\n" || message == "Table created\n")
            ends.push_back(message);
    ASSERT_EQ(ends.size(), 8U);
    for (std::size_t i = 0; i < ends.size(); ++i)
        EXPECT_EQ(ends[i], i % 2 == 0 ? "An update has been triggered\n" : "Table created\n");
}

// Dropping the table ----------------------------------------------------------------------------------

class TableDrop : public TableTest {};

TEST_F(TableDrop, DropsTheNamedTable) {
    rows("CREATE TABLE one (a)");
    rows("CREATE TABLE two (a)");
    EXPECT_EQ(OpenPlugin::m_deleteDBTable("one", database), 0);
    EXPECT_THAT(rows("SELECT name FROM sqlite_master"), ElementsAre(Row{"two"}));
    EXPECT_THAT(logged(), ElementsAre(LogLine{Trace, "SQL STATEMENT: DROP TABLE one;\n"},
                                      LogLine{Trace, "table deleted!\n"}));
}

TEST_F(TableDrop, TakesEveryAnswerButAnErrorForSuccess) {
    rows("CREATE TABLE one (a)");
    struct {
        int answer;
        const char* message;
    } const table[] = {
        {SQLITE_ERROR, "ERROR!!! unable to delete table\n"},
        {SQLITE_OK, "table deleted!\n"},
        {SQLITE_BUSY, "table deleted!\n"},
        {SQLITE_LOCKED, "table deleted!\n"},
        {SQLITE_FULL, "table deleted!\n"},
        {SQLITE_MISUSE, "table deleted!\n"},
        {SQLITE_ROW, "table deleted!\n"},
    };
    for (const auto& row : table) {
        log.clear();
        const StepAnswer fault("DROP TABLE one", row.answer);
        EXPECT_EQ(OpenPlugin::m_deleteDBTable("one", database), 0) << row.answer;
        EXPECT_EQ(pluginLog().back(), row.message) << row.answer;
    }
    EXPECT_THAT(rows("SELECT name FROM sqlite_master"), ElementsAre(Row{"one"}));
}

TEST_F(TableDrop, TakesAStatementThatDoesNotCompileForSuccess) {
    EXPECT_EQ(OpenPlugin::m_deleteDBTable("unknown", database), 0);
    EXPECT_THAT(logged(), ElementsAre(LogLine{Trace, "SQL STATEMENT: DROP TABLE unknown;\n"},
                                      LogLine{Trace, "table deleted!\n"}));
}

}  // namespace
}  // namespace epgtest
