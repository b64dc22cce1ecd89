#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "host/DomainException.h"
#include "set/database/DatabaseFaults.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using epgset::DatabaseFault;
using testing::ElementsAre;
using testing::IsEmpty;

class PluginInstance : public PluginTest {
protected:
    static void useGuideWithAChannel(const std::string& name = "Channel") {
        TestGuide guide;
        guide.channel(Air, 1, 0, name);
        guide.use();
    }

    std::size_t timesLogged(const std::string& message) const {
        const auto messages = pluginLog();
        return static_cast<std::size_t>(std::count(messages.begin(), messages.end(), message));
    }

    /// Calls Instance(), which must fail to fill the table.
    static void expectFailedFill() {
        try {
            EpgSQLPluginVexmoor::Instance();
            ADD_FAILURE() << "the fill did not fail";
        } catch (const Container::DomainException& exception) {
            EXPECT_STREQ(exception.what(), "Failed to create DB entry");
        }
    }
};

TEST_F(PluginInstance, IsMadeOnceWithAFilledTable) {
    useGuideWithAChannel();
    const auto first = EpgSQLPluginVexmoor::Instance();
    ASSERT_TRUE(first);
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"1"}));

    useGuideWithAChannel("Renamed");
    EXPECT_EQ(EpgSQLPluginVexmoor::Instance().get(), first.get());
    EXPECT_THAT(table("SELECT ChannelName FROM myView"), ElementsAre(Row{"Channel"}));
    EXPECT_EQ(timesLogged("Table and DB created\n"), 1U);
}

TEST_F(PluginInstance, IsMadeOnceByManyThreads) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 200);
    guide.use();
    std::vector<EpgSQLPluginVexmoor*> seen(4);
    std::vector<std::thread> threads;
    for (auto& pointer : seen)
        threads.emplace_back([&pointer] { pointer = EpgSQLPluginVexmoor::Instance().get(); });
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(seen, std::vector<EpgSQLPluginVexmoor*>(4, OpenPlugin::epgSQLPluginInstance.get()));
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"200"}));
    EXPECT_EQ(timesLogged("DB created [IN MEMORY]\n"), 1U);
    EXPECT_EQ(timesLogged("Table and DB created\n"), 1U);
}

TEST_F(PluginInstance, LogsItsMakingInOrder) {
    plugin();
    EXPECT_THAT(
        log.messagesOf("Vexmoor/EpgSQLPluginVexmoor", Container::Logger::Debug),
        ElementsAre("DB created [IN MEMORY]\n", "Create tbl sql: " + std::string(createTableSql) + "\n",
                    "Start of m_retrieveEpgData, looping through channels...\n",
                    "\n*** Number of programs parsed: 0\n", "Table and DB created\n"));
}

TEST_F(PluginInstance, KeepsTheMiddlewaresTimeOfItsFill) {
    clock.setZone(540, true);
    plugin();
    EXPECT_EQ(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime + 9 * 3600 + 3600));
}

TEST_F(PluginInstance, ReadsTheTimeWhenTheFillIsDone) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 10);
    guide.use();
    clock.setTick(1);
    plugin();
    EXPECT_GT(OpenPlugin::lastUpdateTime, static_cast<std::uint32_t>(startTime));
    EXPECT_EQ(clock.now(), static_cast<std::int64_t>(OpenPlugin::lastUpdateTime) + 1)
        << "nobody read it since";
}

TEST_F(PluginInstance, IsNotMadeByAFillThatFails) {
    useGuideWithAChannel();
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView");
    expectFailedFill();
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
    EXPECT_TRUE(OpenPlugin::epgDBConnection);
    EXPECT_EQ(OpenPlugin::lastUpdateTime, 0U);
    EXPECT_EQ(timesLogged("Table and DB created\n"), 0U);
}

TEST_F(PluginInstance, IsNotMadeWithoutATable) {
    const DatabaseFault fault(DatabaseFault::Step, "CREATE TABLE");
    expectFailedFill();
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
}

TEST_F(PluginInstance, IsTriedAgainOnAFreshConnectionAfterAFailure) {
    useGuideWithAChannel();
    {
        const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView");
        expectFailedFill();
    }
    const auto failedConnection = OpenPlugin::epgDBConnection;
    EXPECT_TRUE(EpgSQLPluginVexmoor::Instance());
    EXPECT_NE(OpenPlugin::epgDBConnection.get(), failedConnection.get());
    EXPECT_THAT(table("SELECT ChannelName FROM myView"), ElementsAre(Row{"Channel"}));
}

TEST_F(PluginInstance, IsFilledAfreshWhenItIsLoadedAgain) {
    useGuideWithAChannel("Before");
    plugin();
    OpenPlugin::forget();
    useGuideWithAChannel("After");
    plugin();
    EXPECT_THAT(table("SELECT ChannelName FROM myView"), ElementsAre(Row{"After"}));
}

TEST_F(PluginInstance, KeepsItsConnectionInARebuild) {
    const auto instance = plugin();
    const Connection* connection = OpenPlugin::epgDBConnection.get();
    instance->rebuildDB(true);
    EXPECT_EQ(OpenPlugin::epgDBConnection.get(), connection);
    EXPECT_EQ(timesLogged("DB created [IN MEMORY]\n"), 1U);
}

// The database ----------------------------------------------------------------------------------------

class PluginDatabase : public TableTest {
protected:
    /// The database's bytes as they would stand in a file.
    std::vector<unsigned char> image() const {
        sqlite3_int64 size = 0;
        unsigned char* bytes = sqlite3_serialize(database->handle(), "main", &size, 0);
        std::vector<unsigned char> copy(bytes, bytes + size);
        sqlite3_free(bytes);
        return copy;
    }
};

TEST_F(PluginDatabase, IsInMemoryWhateverNameIsGiven) {
    log.clear();
    const auto connection = OpenPlugin::m_createSqlDB("a-name-that-is-not-looked-at.db");
    ASSERT_NE(connection->handle(), nullptr);
    EXPECT_STREQ(sqlite3_db_filename(connection->handle(), "main"), "");
    EXPECT_THAT(logged(), ElementsAre(LogLine{Container::Logger::Debug, "DB created [IN MEMORY]\n"}));
}

TEST_F(PluginDatabase, IsConfiguredByTwoPragmas) {
    SqlTrace trace(*database);
    OpenPlugin::m_configEpgDB(database);
    EXPECT_THAT(trace.statements,
                ElementsAre("PRAGMA max_page_size = 1024;", "PRAGMA max_page_count = 5120;"));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(PluginDatabase, LogsEachPragmaThatFailsAndGoesOn) {
    const DatabaseFault fault(DatabaseFault::Step, "PRAGMA", 1, 2);
    OpenPlugin::m_configEpgDB(database);
    const LogLine failure{Container::Logger::Error, "!!! Failed setting PRAGMA statement !!!"};
    EXPECT_THAT(logged(), ElementsAre(failure, failure));
}

TEST_F(PluginDatabase, SetsThePageCountThoughTheFirstPragmaFails) {
    const DatabaseFault fault(DatabaseFault::Step, "max_page_size");
    SqlTrace trace(*database);
    OpenPlugin::m_configEpgDB(database);
    EXPECT_THAT(logged(),
                ElementsAre(LogLine{Container::Logger::Error, "!!! Failed setting PRAGMA statement !!!"}));
    EXPECT_THAT(trace.statements, testing::Contains("PRAGMA max_page_count = 5120;"));
}

TEST_F(PluginDatabase, KeepsThePageSizeThatSqliteHasByItself) {
    fill();
    const auto bytes = image();
    ASSERT_GT(bytes.size(), 100U);
    EXPECT_EQ(bytes[16] * 256 + bytes[17], 4096);
}

/// A guide of more text than 5120 pages hold.
void useGuideBeyondTheDatabase() {
    const std::string title(100'000, 't');
    TestGuide guide;
    const auto channel = guide.channel(Air, 1);
    for (int i = 1; i <= 300; ++i) {
        const auto start = static_cast<std::uint32_t>(i) * 1'000;
        guide.programme(channel, start, start + 1'000, title, i);
    }
    guide.use();
}

TEST_F(PluginDatabase, IsFullAt5120PagesAndKeepsTheRowsThatFitted) {
    useGuideBeyondTheDatabase();
    EXPECT_THROW(fill(), Container::DomainException);
    EXPECT_LE(image().size(), 5120U * 4096);
    EXPECT_GT(image().size(), 5000U * 4096);

    EXPECT_NE(sqlite3_get_autocommit(database->handle()), 0) << "no transaction stays open";
    const auto count = std::stoul(rows("SELECT count(*) FROM myView")[0][0]);
    EXPECT_GT(count, 150U);
    EXPECT_LT(count, 300U);
    EXPECT_THAT(rows("SELECT min(ProgramStartTime), max(ProgramStartTime) FROM myView"),
                ElementsAre(Row{"1000", std::to_string(count * 1'000)}));
}

}  // namespace
}  // namespace epgtest
