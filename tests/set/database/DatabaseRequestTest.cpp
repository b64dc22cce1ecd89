#include "set/database/DatabaseRequest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "host/Logger.h"
#include "set/database/OpenConnections.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace epgset {
namespace {

const std::string endless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) FROM n";

const std::string countTo3000 =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) SELECT count(*) FROM n";

TEST(DatabaseRequest, GivesItsStatementsTenSeconds) {
    EXPECT_EQ(DatabaseRequest::defaultLimit, 10s);
}

TEST(DatabaseRequest, EndsAStatementWhoseTimeIsUpAndLogsItOnce) {
    LogCapture capture;
    const auto connection = openDatabase();
    const DatabaseRequest request(20ms);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(run(connection, endless), SQLITE_INTERRUPT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_EQ(lastDatabaseError(), "interrupted");
    EXPECT_EQ(run(connection, endless), SQLITE_INTERRUPT);
    EXPECT_THAT(capture.messagesOf("set/database"),
                ElementsAre("Ended a statement: the statements of a request worked longer than 20 ms"));
    EXPECT_EQ(valueOf(connection, "SELECT 1"), "1") << "the connection still works";
}

TEST(DatabaseRequest, EndsAStatementWithSlowFunctions) {
    LogCapture capture;
    const auto connection = openDatabase();
    const DatabaseRequest request(20ms);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(run(connection,
                  "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
                  " SELECT max(length(hex(zeroblob(20000 + i % 2)))) FROM n"),
              SQLITE_INTERRUPT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
}

TEST(DatabaseRequest, KeepsTheRowsThatCameBeforeTheEnd) {
    LogCapture capture;
    const auto connection = openDatabase();
    const DatabaseRequest request(20ms);
    Statement statement;
    statement.setConnection(connection);
    statement.setSql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n");
    statement.compile();
    int rows = 0;
    int code = sqlite3_step(statement.handle());
    for (; code == SQLITE_ROW; code = sqlite3_step(statement.handle()))
        ++rows;
    EXPECT_EQ(code, SQLITE_INTERRUPT);
    EXPECT_GT(rows, 0);
    EXPECT_FALSE(statement.handle() == nullptr);
}

TEST(DatabaseRequest, SharesItsTimeAmongAllStatements) {
    LogCapture capture;
    const auto connection = openDatabase();
    const DatabaseRequest request(30ms);
    int done = 0;
    while (done < 100'000 && run(connection, countTo3000) == SQLITE_DONE)
        ++done;
    EXPECT_GT(done, 0);
    EXPECT_LT(done, 100'000);
    EXPECT_EQ(run(connection, countTo3000), SQLITE_INTERRUPT) << "there is no time left";
}

TEST(DatabaseRequest, DoesNotCountStatementsThatAreOverAtOnce) {
    LogCapture capture;
    const auto connection = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    const DatabaseRequest request(0ms);
    const auto start = std::chrono::steady_clock::now();
    int rows = 0;
    for (; std::chrono::steady_clock::now() - start < 30ms; ++rows) {
        const std::string row = "'row " + std::to_string(rows) + " of a table fill'";
        ASSERT_EQ(run(connection, "INSERT INTO t values(" + row + ");"), SQLITE_DONE);
        ASSERT_EQ(run(connection, "INSERT INTO t (a) VALUES (" + row + ")"), SQLITE_DONE);
    }
    EXPECT_EQ(run(connection, countTo3000), SQLITE_INTERRUPT);
    EXPECT_GT(rows, 1);
}

TEST(DatabaseRequest, MayGiveEachStatementItsTime) {
    LogCapture capture;
    const auto connection = openDatabase();
    const DatabaseRequest request(30ms, DatabaseRequest::Bound::EachStatement);
    EXPECT_EQ(run(connection, endless), SQLITE_INTERRUPT);
    EXPECT_EQ(run(connection, countTo3000), SQLITE_DONE);
    EXPECT_THAT(capture.messagesOf("set/database"),
                ElementsAre("Ended a statement: it worked longer than 30 ms"));
}

TEST(DatabaseRequest, BoundsNothingOutsideOfARequest) {
    const auto connection = openDatabase();
    { const DatabaseRequest request(0ms); }
    EXPECT_EQ(run(connection,
                  "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)"
                  " SELECT count(*) FROM n"),
              SQLITE_DONE);
}

TEST(DatabaseRequest, ForgetsTheErrorOfTheRequestBefore) {
    LogCapture capture;
    const auto connection = openDatabase();
    {
        const DatabaseRequest request;
        EXPECT_EQ(lastDatabaseError(), "");
        run(connection, "SELEKT");
    }
    EXPECT_EQ(lastDatabaseError(), "near \"SELEKT\": syntax error") << "to be read when the answer is sent";
    const DatabaseRequest next;
    EXPECT_EQ(lastDatabaseError(), "");
}

TEST(DatabaseRequest, RollsBackATransactionThatIsLeftOpen) {
    LogCapture capture;
    const auto connection = openDatabase();
    const auto other = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    {
        const DatabaseRequest request;
        ASSERT_EQ(run(connection, "BEGIN"), SQLITE_DONE);
        ASSERT_EQ(run(connection, "INSERT INTO t VALUES (1)"), SQLITE_DONE);
        ASSERT_EQ(run(other, "SAVEPOINT s"), SQLITE_DONE);
    }
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM t"), "0");
    EXPECT_NE(sqlite3_get_autocommit(connection->handle()), 0);
    EXPECT_NE(sqlite3_get_autocommit(other->handle()), 0);
    EXPECT_THAT(capture.messagesOf("set/database", Logger::Warning),
                ElementsAre("Rolled back a transaction that a request left open",
                            "Rolled back a transaction that a request left open"));
}

TEST(DatabaseRequest, RollsBackUnderAStatementThatIsLeftOpen) {
    LogCapture capture;
    const auto connection = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    ASSERT_EQ(run(connection, "INSERT INTO t VALUES (1), (2)"), SQLITE_DONE);
    Statement open;
    {
        const DatabaseRequest request;
        ASSERT_EQ(run(connection, "BEGIN"), SQLITE_DONE);
        open.setConnection(connection);
        open.setSql("SELECT a FROM t");
        open.compile();
        ASSERT_TRUE(open.step());
    }
    EXPECT_NE(sqlite3_get_autocommit(connection->handle()), 0);
#ifndef NDEBUG
    EXPECT_THAT(capture.messagesOf("set/database", Logger::Warning),
                Contains("A request left 1 statements open"));
#endif
}

TEST(DatabaseRequest, IsQuietWhenNothingIsLeftOpen) {
    LogCapture capture;
    const auto connection = openDatabase();
    {
        const DatabaseRequest request;
        run(connection, "SELECT 1");
    }
    EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace epgset
