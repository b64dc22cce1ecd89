#include "host/Connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "host/Logger.h"
#include "set/database/OpenConnections.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace epgset {
namespace {

TEST(Connection, OpensADatabaseInMemory) {
    LogCapture capture;
    const auto connection = openDatabase();
    EXPECT_NE(connection->handle(), nullptr);
    EXPECT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "INSERT INTO t VALUES ('x')"), SQLITE_DONE);
    EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "x");
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(Connection, HasNoHandleBeforeItIsOpened) {
    Connection connection;
    EXPECT_EQ(connection.handle(), nullptr);
}

TEST(Connection, LogsADatabaseThatCannotBeOpened) {
    LogCapture capture;
    Connection connection;
    EXPECT_FALSE(connection.open("/nonexistent/folder/x.db"));
    EXPECT_EQ(connection.handle(), nullptr);
    EXPECT_THAT(capture.messagesOf("set/database", Logger::Error),
                ElementsAre("Cannot open database /nonexistent/folder/x.db: unable to open database file"));
}

TEST(Connection, RefusesANameWithANul) {
    LogCapture capture;
    Connection connection;
    EXPECT_FALSE(connection.open(std::string(":memory:\0x", 10)));
    EXPECT_EQ(capture.messagesOf("set/database", Logger::Error).size(), 1u);
}

TEST(Connection, OpensOnceAndKeepsWhatIsOpen) {
    LogCapture capture;
    const auto connection = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    sqlite3* const handle = connection->handle();
    EXPECT_FALSE(connection->open(":memory:"));
    EXPECT_EQ(connection->handle(), handle);
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM t"), "0");
    EXPECT_THAT(capture.messagesOf("set/database"),
                ElementsAre("Cannot open database :memory:: the connection is open already"));
}

TEST(Connection, EachHasADatabaseOfItsOwn) {
    LogCapture capture;
    const auto one = openDatabase();
    const auto other = openDatabase();
    ASSERT_EQ(run(one, "CREATE TABLE t (a)"), SQLITE_DONE);
    EXPECT_EQ(run(other, "INSERT INTO t VALUES (1)"), SQLITE_MISUSE);
}

TEST(Connection, IsKeptAliveByItsStatements) {
    Statement statement;
    {
        const auto connection = openDatabase();
        statement.setConnection(connection);
    }
    statement.setSql("SELECT 1");
    statement.compile();
    EXPECT_TRUE(statement.step());
}

TEST(Connection, MayBeReplacedUnderAnOpenStatement) {
    Statement statement;
    statement.setConnection(openDatabase());
    statement.setSql("SELECT 1");
    statement.compile();
    statement.setConnection(openDatabase());
    EXPECT_TRUE(statement.step());
    statement.close();
    statement.setSql("SELECT 2");
    statement.compile();
    EXPECT_TRUE(statement.step());
}

TEST(Connection, MayBeUsedFromManyThreads) {
    LogCapture capture(Logger::Error);
    const auto connection = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([connection] {
            for (int round = 0; round < 200; ++round) {
                run(connection, "INSERT INTO t VALUES ('x')");
                run(connection, "SELECT count(*) FROM t");
                openStatementCount();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM t"), "800");
    EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace epgset
