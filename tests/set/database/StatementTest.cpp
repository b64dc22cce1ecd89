#include "host/Statement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "host/Logger.h"
#include "set/database/DatabaseRequest.h"
#include "set/database/OpenConnections.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace epgset {
namespace {

class StatementTest : public testing::Test {
protected:
    StatementTest() { statement.setConnection(connection); }

    void compile(const std::string& sql) {
        statement.setSql(sql);
        statement.compile();
    }

    /// Runs a text as plug-ins do: compile, step, until no text is left. Answers the rounds it took;
    /// -1 when a step failed.
    int runAll(const std::string& sql) {
        statement.setSql(sql);
        int rounds = 0;
        while (statement.hasMoreSql()) {
            ++rounds;
            statement.compile();
            if (!statement.step()) return -1;
        }
        return rounds;
    }

    LogCapture capture;
    Container::SharedPtr<Connection> connection = openDatabase();
    Statement statement;
};

TEST_F(StatementTest, StepIsTrueForARowAndForCompletion) {
    compile("SELECT 1");
    EXPECT_TRUE(statement.step());
    EXPECT_EQ(sqlite3_column_int(statement.handle(), 0), 1);
    EXPECT_TRUE(statement.step());
    EXPECT_EQ(sqlite3_data_count(statement.handle()), 0);
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST_F(StatementTest, StepIsFalseWithoutAStatement) {
    EXPECT_FALSE(statement.step());
    EXPECT_EQ(statement.handle(), nullptr);
    statement.close();
    EXPECT_FALSE(statement.hasMoreSql());
}

TEST_F(StatementTest, StepIsFalseForAFailure) {
    ASSERT_EQ(run(connection, "CREATE TABLE t (a UNIQUE)"), SQLITE_DONE);
    ASSERT_EQ(run(connection, "INSERT INTO t VALUES (1)"), SQLITE_DONE);
    compile("INSERT INTO t VALUES (1)");
    EXPECT_FALSE(statement.step());
    statement.close();
    EXPECT_THAT(
        capture.messagesOf("set/database", Logger::Warning),
        ElementsAre("An SQL statement failed: UNIQUE constraint failed: t.a: INSERT INTO t VALUES (1)"));
    EXPECT_EQ(lastDatabaseError(), "UNIQUE constraint failed: t.a");
}

TEST_F(StatementTest, AFailingCompileIsLoggedAndLeavesNothing) {
    compile("SELECT 'it' s ' '; SELECT 1;");
    EXPECT_EQ(statement.handle(), nullptr);
    EXPECT_FALSE(statement.hasMoreSql());
    EXPECT_FALSE(statement.step());
    EXPECT_THAT(capture.messagesOf("set/database", Logger::Error),
                ElementsAre("Cannot compile SQL: near \"' '\": syntax error: SELECT 'it' s ' '; SELECT 1;"));
    EXPECT_EQ(lastDatabaseError(), "near \"' '\": syntax error");
}

TEST_F(StatementTest, AFailingCompileDropsTheStatementBefore) {
    compile("SELECT 1");
    compile("SELEKT 1");
    EXPECT_EQ(statement.handle(), nullptr);
    EXPECT_EQ(openStatementCount(), 0u);
}

TEST_F(StatementTest, CompilesWithoutAConnectionToNothing) {
    Statement lonely;
    lonely.setSql("SELECT 1");
    lonely.compile();
    EXPECT_EQ(lonely.handle(), nullptr);
    EXPECT_FALSE(lonely.hasMoreSql());
    lonely.setConnection(Container::SharedPtr<Connection>(new Connection));
    lonely.setSql("SELECT 1");
    lonely.compile();
    EXPECT_FALSE(lonely.step());
    EXPECT_THAT(capture.messagesOf("set/database", Logger::Error),
                ElementsAre("Cannot compile SQL: no database is open: SELECT 1",
                            "Cannot compile SQL: no database is open: SELECT 1"));
}

TEST_F(StatementTest, RunsSeveralStatementsOfOneTextInTurn) {
    EXPECT_EQ(runAll("CREATE TABLE t (a); INSERT INTO t VALUES (1); INSERT INTO t VALUES (2)"), 3);
    EXPECT_EQ(valueOf(connection, "SELECT sum(a) FROM t"), "3");
}

TEST_F(StatementTest, NothingIsLeftBehindTheLastStatement) {
    EXPECT_EQ(runAll("CREATE TABLE a (x);"), 1);
    EXPECT_EQ(runAll("CREATE TABLE b (x);  \r\n\t\f"), 1);
    EXPECT_EQ(runAll("CREATE TABLE c (x);;; ;"), 1);
    EXPECT_EQ(runAll("CREATE TABLE d (x); -- done"), 1);
    EXPECT_EQ(runAll("CREATE TABLE e (x); /* done; */ -- done\n;"), 1);
    EXPECT_EQ(runAll("CREATE TABLE f (x); /* never closed"), 1);
}

TEST_F(StatementTest, ATextWithoutAStatementCompilesToNothingQuietly) {
    for (const char* sql : {"", " ", ";", ";;;", "-- note", "/* note */", " \n;/**/; -- x\n "}) {
        compile(sql);
        EXPECT_EQ(statement.handle(), nullptr) << sql;
        EXPECT_FALSE(statement.hasMoreSql()) << sql;
    }
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST_F(StatementTest, ANulIsNoEndOfTheText) {
    compile(std::string("SELECT 1\0; SELECT 2", 19));
    EXPECT_EQ(statement.handle(), nullptr);
    EXPECT_FALSE(statement.hasMoreSql());
    EXPECT_EQ(capture.messagesOf("set/database", Logger::Error).size(), 1u);

    EXPECT_EQ(runAll(std::string("SELECT 1;\0SELECT 2", 18)), -1);
    EXPECT_FALSE(statement.hasMoreSql());

    compile(std::string("\0", 1));
    EXPECT_EQ(statement.handle(), nullptr);
    EXPECT_FALSE(statement.hasMoreSql());
    EXPECT_EQ(openStatementCount(), 0u);
}

TEST_F(StatementTest, CloseAndDestructionFinaliseTheStatement) {
    {
        Statement other;
        other.setConnection(connection);
        other.setSql("SELECT 1");
        other.compile();
        compile("SELECT 2");
        EXPECT_EQ(openStatementCount(), 2u);
    }
    EXPECT_EQ(openStatementCount(), 1u);
    statement.close();
    EXPECT_EQ(openStatementCount(), 0u);
    statement.close();
}

TEST_F(StatementTest, ACompileFinalisesTheStatementBefore) {
    ASSERT_EQ(run(connection, "CREATE TABLE t (a)"), SQLITE_DONE);
    ASSERT_EQ(run(connection, "INSERT INTO t VALUES (1)"), SQLITE_DONE);
    compile("SELECT a FROM t");
    ASSERT_TRUE(statement.step());
    EXPECT_EQ(run(connection, "DROP TABLE t"), SQLITE_LOCKED) << "the open SELECT holds the table";
    compile("SELECT 1");
    EXPECT_EQ(run(connection, "DROP TABLE t"), SQLITE_DONE);
}

TEST_F(StatementTest, ReportsTheFailureOfAHandleThatOthersStepped) {
    EXPECT_EQ(run(connection, "SELECT abs(-9223372036854775808)"), SQLITE_ERROR);
    EXPECT_EQ(lastDatabaseError(), "integer overflow");
}

TEST_F(StatementTest, AnyTextEndsAfterSomeRounds) {
    const std::string pieces[] = {
        "SELECT 1",           ";",    " ", "'",      "\"", "--", "\n", "/*", "*/", "x",
        std::string(1, '\0'), "\xFF", "[", "SELECT", ","};
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        std::string sql;
        for (unsigned piece = 0; piece < random() % 8; ++piece)
            sql += pieces[random() % std::size(pieces)];
        statement.setSql(sql);
        std::size_t compiles = 0;
        while (statement.hasMoreSql()) {
            statement.compile();
            statement.step();
            ASSERT_LE(++compiles, sql.size()) << sql;
        }
    }
    statement.close();
    EXPECT_EQ(openStatementCount(), 0u);
}

}  // namespace
}  // namespace epgset
