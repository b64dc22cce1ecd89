// Statements that come back when their text does.
#include <gmock/gmock.h>

#include <string>

#include "host/Logger.h"
#include "set/database/DatabaseRequest.h"
#include "set/database/OpenConnections.h"
#include "set/database/StatementCache.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

namespace epgset {
namespace {

using Container::Logger;

class StatementCacheTest : public testing::Test {
protected:
    void SetUp() override {
        run(connection, "CREATE TABLE t (a)");
        run(connection, "INSERT INTO t VALUES ('x')");
    }

    LogCapture capture{Logger::Warning};
    Container::SharedPtr<Connection> connection = openDatabase();
    Statement statement;

    StatementCacheTest() { statement.setConnection(connection); }
};

TEST_F(StatementCacheTest, ATextThatCameTwiceComesBackAsItWasCompiled) {
    run(connection, "SELECT a FROM t WHERE a='x'");
    run(connection, "SELECT a FROM t WHERE a='x'");
    statement.setSql("SELECT a FROM t WHERE a='x'");
    statement.compile();
    sqlite3_stmt* const kept = statement.handle();
    EXPECT_GT(sqlite3_stmt_status(kept, SQLITE_STMTSTATUS_RUN, 0), 0) << "it ran before";
    EXPECT_FALSE(statement.hasMoreSql());
    ASSERT_TRUE(statement.step());
    EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(kept, 0)), "x");
}

TEST_F(StatementCacheTest, ATextThatComesOnceLeavesNothing) {
    StatementCache cache;
    for (int i = 0; i < 10'000; ++i) {
        sqlite3_stmt* compiled = nullptr;
        const std::string sql = "SELECT " + std::to_string(i);
        ASSERT_EQ(sqlite3_prepare_v2(connection->handle(), sql.c_str(), -1, &compiled, nullptr), SQLITE_OK);
        cache.put(compiled);
    }
    EXPECT_EQ(cache.size(), 0u);
}

TEST_F(StatementCacheTest, TheLeastRecentlyUsedGoesWhenThereAreTooMany) {
    StatementCache cache;
    const auto textOf = [](std::size_t i) { return "SELECT " + std::to_string(i); };
    const auto putTwice = [&](std::size_t i) {
        for (int time = 0; time < 2; ++time) {
            sqlite3_stmt* compiled = nullptr;
            sqlite3_prepare_v2(connection->handle(), textOf(i).c_str(), -1, &compiled, nullptr);
            cache.put(compiled);
        }
    };
    for (std::size_t i = 0; i < StatementCache::mostStatements; ++i)
        putTwice(i);
    EXPECT_EQ(cache.size(), StatementCache::mostStatements);
    sqlite3_stmt* const first = cache.take(textOf(0));
    ASSERT_NE(first, nullptr);
    sqlite3_step(first);
    sqlite3_reset(first);
    sqlite3_step(first);
    sqlite3_reset(first);
    cache.put(first);
    putTwice(StatementCache::mostStatements);
    EXPECT_EQ(cache.size(), StatementCache::mostStatements);
    EXPECT_EQ(cache.take(textOf(1)), nullptr) << "the one that was not used for longest";
    sqlite3_stmt* const again = cache.take(textOf(0));
    EXPECT_EQ(again, first);
    sqlite3_finalize(again);
}

TEST_F(StatementCacheTest, OneStatementServesOneUserAtATime) {
    const std::string sql = "SELECT a FROM t";
    run(connection, sql);
    run(connection, sql);
    run(connection, sql);
    Statement first;
    Statement second;
    for (Statement* user : {&first, &second}) {
        user->setConnection(connection);
        user->setSql(sql);
        user->compile();
        ASSERT_TRUE(user->step());
    }
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_EQ(openStatementCount(), 2u);
    first.close();
    second.close();
    EXPECT_EQ(openStatementCount(), 0u) << "what is kept is not in use";
}

TEST_F(StatementCacheTest, AKeptStatementHoldsNoTable) {
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "x");
    EXPECT_EQ(run(connection, "VACUUM"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "DROP TABLE t"), SQLITE_DONE);
}

TEST_F(StatementCacheTest, AStatementOfADroppedTableNoLongerCompiles) {
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "x");
    ASSERT_EQ(run(connection, "DROP TABLE t"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "SELECT a FROM t"), SQLITE_MISUSE) << "compiled to nothing";
    EXPECT_EQ(lastDatabaseError(), "no such table: t");
}

TEST_F(StatementCacheTest, AStatementSeesATableThatWasMadeAnew) {
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "x");
    run(connection, "DROP TABLE t");
    run(connection, "CREATE TABLE t (b, a)");
    run(connection, "INSERT INTO t VALUES ('b', 'new')");
    EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "new");
}

TEST_F(StatementCacheTest, AFailedRunIsToldEachTime) {
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(run(connection, "SELECT abs(-9223372036854775808)"), SQLITE_ERROR);
        EXPECT_EQ(capture.messagesOf("set/database", Logger::Warning).size(), static_cast<std::size_t>(i));
    }
}

TEST_F(StatementCacheTest, TheTimeOfAKeptStatementCountsAfresh) {
    const std::string sql =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT max(i) FROM n";
    for (int i = 0; i < 4; ++i) {
        const DatabaseRequest request(std::chrono::milliseconds(5));
        EXPECT_EQ(run(connection, sql), SQLITE_INTERRUPT);
    }
    const DatabaseRequest request(std::chrono::milliseconds(5));
    EXPECT_EQ(valueOf(connection, "SELECT a FROM t"), "x");
}

}  // namespace
}  // namespace epgset
