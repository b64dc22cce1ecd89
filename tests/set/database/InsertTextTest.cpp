// INSERTs of texts alone run as one statement with parameters, and do what their texts say.
#include "set/database/InsertText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "host/Logger.h"
#include "set/database/DatabaseFaults.h"
#include "set/database/DatabaseRequest.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

namespace epgset {
namespace {

using Container::Logger;
using testing::ElementsAre;
using testing::HasSubstr;

std::string withParameters(std::string_view sql) {
    const auto insert = InsertText::of(sql);
    return insert ? insert->withParameters() : "as it is";
}

TEST(InsertText, ParametersTakeTheTextsPlaces) {
    EXPECT_EQ(withParameters("INSERT INTO myView values('a', 'b', '');"),
              "INSERT INTO myView values(?, ?, ?);");
    EXPECT_EQ(withParameters("INSERT INTO myView values('x')"), "INSERT INTO myView values(?)");
    EXPECT_EQ(withParameters("INSERT INTO t values( 'x' , 'y','it''s' ) ; "),
              "INSERT INTO t values( ? , ?,? ) ; ");
}

TEST(InsertText, TheRowHoldsTheTextsWithSingleQuotes) {
    EXPECT_EQ(InsertText::of("INSERT INTO t values('it''s', '''', '', 'b');")->takeRow(), "it's'b");
}

TEST(InsertText, AnythingElseStaysAsItIs) {
    for (const char* sql : {"",
                            "INSERT INTO ",
                            "INSERT INTO t",
                            "INSERT INTO t values(",
                            "INSERT INTO t values()",
                            "INSERT INTO t values('a'",
                            "INSERT INTO t values('a",
                            "INSERT INTO t values('a''",
                            "INSERT INTO t values('a',)",
                            "INSERT INTO t values('a' 'b')",
                            "INSERT INTO t values('a' || 'b')",
                            "INSERT INTO t values('a'), ('b')",
                            "INSERT INTO t values('a'); DELETE FROM t;",
                            "INSERT INTO t values('a') RETURNING a",
                            "INSERT INTO t values(1)",
                            "INSERT INTO t values(\"a\")",
                            "INSERT INTO t values(x'41')",
                            "INSERT INTO t values('a', ?)",
                            "INSERT INTO t (a) values('a')",
                            "INSERT INTO main.t values('a')",
                            "INSERT INTO 't' values('a')",
                            "INSERT OR IGNORE INTO t values('a')",
                            "insert into t values('a')",
                            "INSERT INTO t VALUES ('a')",
                            "SELECT 'INSERT INTO t values(''a'')'"})
        EXPECT_EQ(withParameters(sql), "as it is") << sql;
    EXPECT_EQ(withParameters(std::string_view("INSERT INTO t values('a\0');", 27)), "as it is");
}

TEST(InsertText, LongStatementsAndManyColumnsStayAsTheyAre) {
    const auto ofLength = [](std::size_t length) {
        const std::string begin = "INSERT INTO t values('", end = "');";
        return begin + std::string(length - begin.size() - end.size(), 'x') + end;
    };
    EXPECT_EQ(withParameters(ofLength(InsertText::longestStatement)), "INSERT INTO t values(?);");
    EXPECT_EQ(withParameters(ofLength(InsertText::longestStatement + 1)), "as it is");
    const auto ofColumns = [](std::size_t columns) {
        std::string sql = "INSERT INTO t values('x'";
        for (std::size_t column = 1; column < columns; ++column)
            sql += ",'x'";
        return sql + ");";
    };
    EXPECT_NE(withParameters(ofColumns(InsertText::mostColumns)), "as it is");
    EXPECT_EQ(withParameters(ofColumns(InsertText::mostColumns + 1)), "as it is");
}

class InsertStatement : public testing::Test {
protected:
    InsertStatement() {
        EXPECT_EQ(run(connection, "CREATE TABLE t (a varchar(5), n INTEGER UNSIGNED, u UNIQUE)"),
                  SQLITE_DONE);
    }

    LogCapture capture{Logger::Warning};
    Container::SharedPtr<Connection> connection = openDatabase();
};

TEST_F(InsertStatement, EachRowHasItsOwnTexts) {
    for (const char* row :
         {"'one', '1', 'x'", "'it''s ünique', '', 'y'", "'', '007', 'z'", "'4.5', '4.5', '4.5'"})
        ASSERT_EQ(run(connection, std::string("INSERT INTO t values(") + row + ");"), SQLITE_DONE);
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(quote(a)||quote(n)||quote(u), ' ') FROM t"),
              "'one'1'x' 'it''s ünique''''y' ''7'z' '4.5'4.5'4.5'")
        << "with the types that the columns give them";
}

TEST_F(InsertStatement, ComesBackAsTheCommonStatementOfItsTable) {
    for (const char* row : {"'a', '1', 'x'", "'b', '2', 'y'"})
        ASSERT_EQ(run(connection, std::string("INSERT INTO t values(") + row + ");"), SQLITE_DONE);
    Statement statement;
    statement.setConnection(connection);
    statement.setSql("INSERT INTO t values('c', '3', 'z');");
    statement.compile();
    EXPECT_GT(sqlite3_stmt_status(statement.handle(), SQLITE_STMTSTATUS_RUN, 0), 0) << "it ran before";
    EXPECT_FALSE(statement.hasMoreSql());
    EXPECT_TRUE(statement.step());
    statement.close();
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(a) FROM t"), "a,b,c");
}

TEST_F(InsertStatement, TwoAtATimeKeepTheirTextsApart) {
    Statement first, second;
    for (Statement* statement : {&first, &second}) {
        statement->setConnection(connection);
        statement->setSql(statement == &first ? "INSERT INTO t values('first', '1', 'x');"
                                              : "INSERT INTO t values('second', '2', 'y');");
        statement->compile();
    }
    EXPECT_TRUE(second.step());
    EXPECT_TRUE(first.step());
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(a) FROM t"), "second,first");
}

TEST_F(InsertStatement, ItsTextsLastUntilItIsRunAndGoWithTheNextText) {
    Statement statement;
    statement.setConnection(connection);
    const std::string longText(300, 'l');
    for (const std::string& text : {std::string("s"), longText, std::string(), std::string("\xC3\xFF")}) {
        statement.setSql("INSERT INTO t values('never run', '', '" + text + "');");
        statement.compile();  // in place of the one before, which may have been left half done
        statement.setSql("INSERT INTO t values('" + text + "', '', '" + text + "');");
        statement.compile();
        ASSERT_TRUE(statement.step()) << text;
    }
    statement.close();
    EXPECT_EQ(
        valueOf(connection, "SELECT group_concat(hex(a), ' ') FROM (SELECT a FROM t WHERE length(a) < 100)"),
        "73  C3FF");
    EXPECT_EQ(valueOf(connection, "SELECT a FROM t WHERE length(a) >= 100"), longText);
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM t WHERE a = 'never run'"), "0");
}

TEST_F(InsertStatement, MayOutliveItsConnection) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql("INSERT INTO t values('a', '1', 'x');");
    statement.compile();
    statement.setConnection(openDatabase());
    connection = Container::SharedPtr<Connection>();
    EXPECT_TRUE(statement.step());
    statement.close();
    EXPECT_EQ(statement.handle(), nullptr);
}

TEST_F(InsertStatement, TheLastOfSeveralInATextIsAsAnyOther) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql("INSERT INTO t values('a', '1', 'x'); INSERT INTO t values('it''s', '2', 'y');");
    for (int count = 0; count < 2; ++count) {
        EXPECT_TRUE(statement.hasMoreSql());
        statement.compile();
        EXPECT_TRUE(statement.step());
    }
    EXPECT_FALSE(statement.hasMoreSql());
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(a||n||u) FROM t"), "a1x,it's2y");
}

TEST_F(InsertStatement, DoesWhatSqliteMakesOfTheSameText) {
    ASSERT_EQ(run(connection, "CREATE TABLE one (a, b)"), SQLITE_DONE);
    ASSERT_EQ(run(connection, "CREATE TABLE other (a, b)"), SQLITE_DONE);
    std::mt19937 random(11);
    int taken = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string row;
        for (std::size_t length = random() % 12; length-- > 0;)
            row += "'', ()a;'"[random() % 9];
        row = "('" + row + "','');";
        const auto insert = InsertText::of("INSERT INTO one values" + row);
        taken += insert ? 1 : 0;
        const int code = run(connection, "INSERT INTO one values" + row);
        // A comment keeps the same text from being taken apart.
        EXPECT_EQ(run(connection, "INSERT INTO other /**/ values" + row), code) << row;
    }
    EXPECT_GT(taken, 100);
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM (SELECT * FROM one EXCEPT SELECT * FROM other)"),
              "0");
    EXPECT_EQ(valueOf(connection, "SELECT (SELECT count(*) FROM one) = (SELECT count(*) FROM other)"), "1");
    EXPECT_NE(valueOf(connection, "SELECT count(*) FROM one WHERE a LIKE '%''%'"), "0");
}

TEST_F(InsertStatement, AFaultInItsStepIsFoundByItsTexts) {
    const DatabaseFault fault(DatabaseFault::Step, "'2'");
    Statement statement;
    statement.setConnection(connection);
    for (const char* number : {"1", "2", "3"}) {
        statement.setSql("INSERT INTO t values('a', '" + std::string(number) + "', '" + number + "');");
        statement.compile();
        EXPECT_EQ(statement.step(), number != std::string("2"));
    }
}

TEST_F(InsertStatement, WhatFailsIsToldWithItsOwnText) {
    EXPECT_EQ(run(connection, "INSERT INTO none values('a');"), SQLITE_MISUSE);
    EXPECT_EQ(lastDatabaseError(), "no such table: none");
    EXPECT_EQ(run(connection, "INSERT INTO t values('a');"), SQLITE_MISUSE);
    EXPECT_EQ(lastDatabaseError(), "table t has 3 columns but 1 values were supplied");
    EXPECT_EQ(run(connection, "INSERT INTO sqlite_schema values('a', 'b', 'c', 'd', 'e');"), SQLITE_MISUSE);
    ASSERT_EQ(run(connection, "INSERT INTO t values('a', '1', 'twice');"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "INSERT INTO t values('it''s', '2', 'twice');"), SQLITE_CONSTRAINT);
    EXPECT_EQ(lastDatabaseError(), "UNIQUE constraint failed: t.u");
    EXPECT_THAT(
        capture.messagesOf("set/database"),
        ElementsAre("Cannot compile SQL: no such table: none: INSERT INTO none values('a');",
                    HasSubstr("INSERT INTO t values('a');"), HasSubstr("sqlite_schema values('a', 'b'"),
                    HasSubstr("INSERT INTO t values('it''s', '2', 'twice');")));
}

TEST_F(InsertStatement, IsCompiledAgainForATableThatWasMadeAgain) {
    for (int time = 0; time < 2; ++time)
        ASSERT_EQ(run(connection, "INSERT INTO t values('a', '" + std::to_string(time) + "', '" +
                                      std::to_string(time) + "');"),
                  SQLITE_DONE);
    ASSERT_EQ(run(connection, "DROP TABLE t"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "INSERT INTO t values('a', '3', '3');"), SQLITE_MISUSE);
    ASSERT_EQ(run(connection, "CREATE TABLE t (a, b, c INTEGER)"), SQLITE_DONE);
    ASSERT_EQ(run(connection, "INSERT INTO t values('a', '3', '3');"), SQLITE_DONE);
    EXPECT_EQ(valueOf(connection, "SELECT quote(b)||quote(c) FROM t"), "'3'3");
}

}  // namespace
}  // namespace epgset
