// A client's own SQL over HTTP.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/service/BookingFixture.h"

namespace epgset::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ClientSql : public BookingFixture {
protected:
    HttpAnswer run(const std::string& sql) {
        std::string query = "?sql=";
        for (const unsigned char letter : sql) {
            constexpr const char* digits = "0123456789ABCDEF";
            query += {'%', digits[letter / 16], digits[letter % 16]};
        }
        return client_.get("/ws/epg2" + query);
    }

    /// The first value of the only row.
    std::string value(const std::string& sql) {
        const rapidjson::Document document = json(run(sql));
        return document["items"][0].MemberBegin()->value.GetString();
    }
};

TEST_F(ClientSql, AnswersEveryRowUnderTheKeysOfAChannel) {
    const HttpAnswer answer =
        run("SELECT ChannelId, ChannelName, EventId, ProgramName FROM myView WHERE ProgramName='Weather'");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(R"({"items":[{"id":"cid-000-1","name":"News 24","program_id":")" + present_ +
                  R"(","program_name":"Weather"}]})",
              answer.body);
}

TEST_F(ClientSql, RunsTheFirstStatementAlone) {
    EXPECT_THAT(keys(json(run("SELECT 1 AS one; DELETE FROM myView; SELECT 2 AS two"))["items"][0]),
                ElementsAre("one"));
    EXPECT_EQ("6", value("SELECT count(*) FROM myView"));
}

TEST_F(ClientSql, IsFollowedByNothingForChangesErrorsAndNoRows) {
    for (const char* sql : {"UPDATE myView SET Repeat='' WHERE 0", "SELECT 1 WHERE 0", "SELECT", "nonsense",
                            "SELECT * FROM nowhere", "CREATE TABLE mine(a)", "DROP TABLE mine", ""}) {
        const HttpAnswer answer = run(sql);
        EXPECT_EQ(204, answer.status) << sql;
        EXPECT_EQ("", answer.body);
    }
    EXPECT_EQ(204, run("SELECT abs(-9223372036854775807 - 1)").status) << "fails as it runs";
}

TEST_F(ClientSql, ThatFindsTheDatabaseFullIsToldSoAndChangesNothing) {
    const std::string before = get("programs").body;
    run("CREATE TABLE filler(a)");
    const HttpAnswer full = run("INSERT INTO filler SELECT zeroblob(4000000) FROM myView");
    EXPECT_EQ(204, full.status);
    EXPECT_THAT(full.header("epg-sql-error"), HasSubstr("database or disk is full"));
    EXPECT_EQ("0", value("SELECT count(*) FROM filler"));
    EXPECT_EQ(before, get("programs").body);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ("", run("INSERT INTO filler VALUES(zeroblob(4000000))").header("epg-sql-error"));
    EXPECT_THAT(
        run("INSERT INTO filler SELECT zeroblob(1000000) FROM myView a, myView b").header("epg-sql-error"),
        HasSubstr("database or disk is full"));
    EXPECT_EQ(before, get("programs").body);
    EXPECT_EQ("", run("DROP TABLE filler").header("epg-sql-error"));
}

TEST_F(ClientSql, ThatChangesTheTableChangesWhatIsAnswered) {
    EXPECT_EQ(204, run("UPDATE myView SET ProgramName='Storm' WHERE ProgramName='Weather'").status);
    EXPECT_EQ(present_, programmeId("Storm"));
    EXPECT_EQ(204, run("UPDATE myView SET ProgramName='Weather' WHERE ProgramName='Storm'").status);
    EXPECT_EQ(404, get("programs/pid-x").status);
    EXPECT_EQ(204, run("INSERT INTO myView (ChannelId,ProgramName) VALUES ('cid-x','channel_stub')").status);
    EXPECT_EQ(6, json(get("programs"))["items_total"].GetInt()) << "such a row is not listed";
    EXPECT_EQ(204, run("DELETE FROM myView WHERE ChannelId='cid-x'").status);
}

TEST_F(ClientSql, ThatMakesAViewIs404) {
    EXPECT_EQ(404, run("CREATE VIEW v AS SELECT 1").status);
    EXPECT_EQ(404, run("SELECT 'CREATE VIEW'").status);
    EXPECT_EQ("0", value("SELECT count(*) FROM sqlite_master WHERE type='view'"));
}

TEST_F(ClientSql, Is404WhereTheFirstParameterIsAnother) {
    for (const char* target : {"/ws/epg2", "/ws/epg2?x=1&sql=SELECT+1", "/ws/epg2?SQL=SELECT+1"})
        EXPECT_EQ(404, client_.get(target).status) << target;
}

TEST_F(ClientSql, Is500WhenTheAnswerGrowsTooLarge) {
    const HttpAnswer answer =
        run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n LIMIT 40) "
            "SELECT hex(zeroblob(1000000)) AS zeros FROM n");
    EXPECT_EQ(500, answer.status);
    EXPECT_EQ("", answer.body);
    EXPECT_EQ(200, get("channels").status);
}

TEST_F(ClientSql, TellsInAHeaderWhyThereIsNothing) {
    EXPECT_THAT(run("SELECT * FROM nowhere").header("epg-sql-error"), HasSubstr("no such table"));
    EXPECT_FALSE(run("SELECT 1 WHERE 0").has("epg-sql-error"));
    EXPECT_FALSE(run("UPDATE myView SET Repeat='' WHERE 0").has("epg-sql-error"));
}

}  // namespace
}  // namespace epgset::test
