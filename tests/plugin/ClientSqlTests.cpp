// SQL text that a client sends.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/plugin/QueryTest.h"
#include "tests/support/DocumentCalls.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A table of two programmes on one channel.
class ClientSql : public QueryTest {
protected:
    ClientSql() {
        TestGuide guide;
        guide.programmes(guide.channel(Air, 7, 2, "News 24"), 2);
        guide.use();
        plugin();
        log.clear();
    }

    /// The status of a query whose first value is that text.
    int run(const std::string& sql, const std::string& name = "sql") {
        std::string value = sql;
        std::string nameCopy = name;
        char* names[] = {nameCopy.data()};
        char* values[] = {value.data()};
        TARNO_rstr_uri_query_st query{1, names, values};
        const TestDocument document;
        const int status = plugin()->ExecuteClientCommand(&query, document);
        answer = document.json();
        EXPECT_TRUE(leavesNoStatement());
        return status;
    }

    std::string answer;
};

TEST_F(ClientSql, AnswersARowAsAChannel) {
    EXPECT_EQ(run("SELECT DISTINCT ChannelId, ChannelName FROM myView"), 200);
    EXPECT_EQ(answer, R"({"items":[{"id":"cid-000-7-2","name":"News 24"}]})");
}

TEST_F(ClientSql, NamesEveryColumnByItsLongKeyButTheChannels) {
    EXPECT_EQ(run("SELECT * FROM myView LIMIT 1;"), 200);
    EXPECT_EQ(answer, R"({"items":[{"antenna":"AIR","channel_num":"7-2",)"
                      R"("channel_path":"/ws/epg2/channels/cid-000-7-2","end":"1970-01-12T14:16:40+00:00",)"
                      R"("id":"cid-000-7-2","name":"News 24","program_id":"pid-000-7-2-1",)"
                      R"("program_name":"Programme 1","repeat":"","schedule_id":"","scrambled":false,)"
                      R"("service_type":"TV","start":"1970-01-12T13:46:40+00:00","status":""}]})");
}

TEST_F(ClientSql, NamesAnExpressionAsTheDatabaseDoes) {
    EXPECT_EQ(run("SELECT count(*) FROM myView"), 200);
    EXPECT_EQ(answer, R"json({"items":[{"count(*)":"2"}]})json");
    EXPECT_THAT(logged(), Contains(LogLine(Logger::Warning, "Could not convert column name.\n")).Times(1));
}

TEST_F(ClientSql, WarnsOfAnUnknownColumnForEachRow) {
    run("SELECT EventId AS eventid FROM myView");
    EXPECT_THAT(logged(), Contains(LogLine(Logger::Warning, "Could not convert column name.\n")).Times(2));
}

TEST_F(ClientSql, AnswersEveryRowWithoutPagesCountsAndPlaceholders) {
    EXPECT_EQ(run("WITH RECURSIVE n(ChannelNumber) AS (SELECT 0 UNION ALL SELECT ChannelNumber+1 FROM n "
                  "LIMIT 1500) SELECT ChannelNumber FROM n"),
              200);
    EXPECT_EQ(answer.rfind(R"({"items":[{"channel_num":"0"},{"channel_num":"1"},)", 0), 0U);
    EXPECT_THAT(answer, testing::EndsWith(R"({"channel_num":"1499"}]})"));
}

TEST_F(ClientSql, WritesAnEmptyTextForNull) {
    EXPECT_EQ(run("SELECT NULL AS ChannelName"), 200);
    EXPECT_EQ(answer, R"({"items":[{"name":""}]})");
}

TEST_F(ClientSql, AnswersNothingForNoRow) {
    EXPECT_EQ(run("SELECT ChannelId FROM myView WHERE ChannelId='nowhere'"), 204);
    EXPECT_EQ(answer, R"({"items":[]})");
}

TEST_F(ClientSql, AnswersNothingForAChangeThatStays) {
    const struct {
        const char* change;
        const char* check;
        const char* value;
    } examples[] = {
        {"UPDATE myView SET ChannelName='Other'", "SELECT count(*) FROM myView WHERE ChannelName='Other'",
         "2"},
        {"INSERT INTO myView (ChannelId) VALUES ('new')", "SELECT count(*) FROM myView", "3"},
        {"DELETE FROM myView WHERE ChannelId='new'", "SELECT count(*) FROM myView", "2"},
        {"CREATE TABLE more (a)", "SELECT count(*) FROM sqlite_master WHERE name='more'", "1"},
        {"DROP TABLE myView", "SELECT count(*) FROM sqlite_master WHERE name='myView'", "0"},
    };
    for (const auto& [change, check, value] : examples) {
        EXPECT_EQ(run(change), 204) << change;
        EXPECT_EQ(answer, R"({"items":[]})") << change;
        EXPECT_THAT(table(check), ElementsAre(Row{value})) << change;
    }
}

TEST_F(ClientSql, AnswersNothingForAStatementThatFailsAtOnce) {
    EXPECT_EQ(run("SELECT abs(-9223372036854775807 - 1)"), 204);
    EXPECT_EQ(answer, R"({"items":[]})");
}

TEST_F(ClientSql, AnswersTheRowsBeforeAFailure) {
    EXPECT_EQ(run("SELECT abs(column1) AS ServiceType FROM (VALUES (-1), (-9223372036854775807 - 1), (-3))"),
              200);
    EXPECT_EQ(answer, R"({"items":[{"service_type":"1"}]})");
}

TEST_F(ClientSql, AnswersNothingForWhatDoesNotCompile) {
    for (const char* sql : {"", " ", "nonsense", "SELECT", "SELECT * FROM nowhere", "SELECT 'O'Neil'", ";"}) {
        SCOPED_TRACE(sql);
        EXPECT_EQ(run(sql), 204);
        EXPECT_EQ(answer, R"({"items":[]})");
    }
}

TEST_F(ClientSql, RunsTheFirstOfSeveralStatements) {
    EXPECT_EQ(run("SELECT 'a' AS ServiceType; SELECT 'b' AS ServiceType; DROP TABLE myView"), 200);
    EXPECT_EQ(answer, R"({"items":[{"service_type":"a"}]})");
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
}

TEST_F(ClientSql, TakesTheFirstValueWhateverItsName) {
    EXPECT_EQ(run("SELECT 'a' AS ServiceType", "x"), 200);
    const TestDocument document;
    EXPECT_EQ(plugin()->ExecuteClientCommand(
                  TestQuery("x=SELECT+'a'+AS+ServiceType&sql=SELECT+'b'+AS+ServiceType"), document),
              200);
    EXPECT_EQ(document.json(), R"({"items":[{"service_type":"a"}]})");
}

TEST_F(ClientSql, DoesNothingWithoutAQueryAValueOrADocument) {
    char name[] = "sql";
    char sql[] = "DELETE FROM myView";
    char* names[] = {name};
    char* noValue[] = {nullptr};
    char* values[] = {sql};
    TARNO_rstr_uri_query_st withoutValue{1, names, noValue};
    TARNO_rstr_uri_query_st query{1, names, values};
    const TestDocument document;
    EXPECT_EQ(plugin()->ExecuteClientCommand(nullptr, document), 404);
    EXPECT_EQ(plugin()->ExecuteClientCommand(&withoutValue, document), 404);
    EXPECT_EQ(plugin()->ExecuteClientCommand(&query, nullptr), 404);
    EXPECT_EQ(document.json(), "{}");
    EXPECT_THAT(logged(), IsEmpty());
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
}

TEST_F(ClientSql, RefusesWhatNamesTheMakingOfAView) {
    for (const char* sql : {"CREATE VIEW v AS SELECT 1", "SELECT ChannelId, 'CREATE VIEW' FROM myView",
                            "DELETE FROM myView; -- CREATE VIEWS"}) {
        SCOPED_TRACE(sql);
        log.clear();
        const SqlTrace trace(*OpenPlugin::epgDBConnection);
        EXPECT_EQ(run(sql), 404);
        EXPECT_EQ(answer, "{}");
        EXPECT_THAT(logged(),
                    ElementsAre(LogLine(Logger::Trace, "A CREATE VIEW statement has been entered\n")));
        EXPECT_THAT(trace.statements, IsEmpty());
    }
}

TEST_F(ClientSql, RunsAViewThatIsSpelledOtherwise) {
    EXPECT_EQ(run("create view v AS SELECT 'a' AS ServiceType"), 204);
    EXPECT_EQ(run("SELECT * FROM v"), 200);
    EXPECT_EQ(answer, R"({"items":[{"service_type":"a"}]})");
    EXPECT_EQ(run("CREATE  VIEW w AS SELECT 1"), 204);
    EXPECT_EQ(run("SELECT * FROM w"), 200);
}

// What it logs ----------------------------------------------------------------------------------------

TEST_F(ClientSql, TracesTheTextTheRowsAndItsEnd) {
    run("SELECT ChannelId, ChannelName, ChannelNumber, EventId, ProgramName, ServiceType, AntennaType, "
        "ScrambledFlag, Repeat FROM myView");
    EXPECT_THAT(
        logged(),
        ElementsAre(
            LogLine(Logger::Trace,
                    "SQL query set as: SELECT ChannelId, ChannelName, ChannelNumber, EventId, ProgramName, "
                    "ServiceType, AntennaType, ScrambledFlag, Repeat FROM myView"),
            LogLine(Logger::Trace, "cid-000-7-2, News 24, 7-2, pid-000-7-2-1, Programme 1, TV, AIR, false\n"),
            LogLine(Logger::Trace, "cid-000-7-2, News 24, 7-2, pid-000-7-2-2, Programme 2, TV, AIR, false\n"),
            LogLine(Logger::Trace, "A standard SQL statement has been entered\n")));
    EXPECT_EQ(log.records()[0].format, "SQL query set as: %s");
}

TEST_F(ClientSql, TracesEightFieldsOfAShorterRow) {
    run("SELECT 'a' AS ServiceType, NULL AS ChannelName, 'c' AS Repeat");
    EXPECT_THAT(pluginLog(), Contains("a, , c, , , , , \n"));
}

TEST_F(ClientSql, TracesNoRowsWhenTraceIsOff) {
    epgset::LogControl::setLevel(Logger::Debug);
    EXPECT_EQ(run("SELECT ChannelId FROM myView"), 200);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ClientSql, KeepsAClientsPercentSignsOutOfItsFormats) {
    EXPECT_EQ(run("SELECT '%s%n%d' AS ServiceType"), 200);
    EXPECT_EQ(answer, R"({"items":[{"service_type":"%s%n%d"}]})");
    EXPECT_THAT(pluginLog(), Contains("SQL query set as: SELECT '%s%n%d' AS ServiceType"));
    EXPECT_THAT(pluginLog(), Contains("%s%n%d, , , , , , , \n"));
}

TEST_F(ClientSql, EndsTheSameInTheLogWhateverTheStatementDid) {
    for (const char* sql : {"nonsense", "DELETE FROM myView", "SELECT 1"}) {
        log.clear();
        run(sql);
        EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "A standard SQL statement has been entered\n"))
            << sql;
    }
}

// The document ----------------------------------------------------------------------------------------

TEST_F(ClientSql, AttachesEachObjectBeforeItIsFilled) {
    const DocumentCalls calls;
    run("SELECT EventId FROM myView");
    EXPECT_THAT(calls.lines, ElementsAre("make object 1", R"(root "items": object 1)",    //
                                         "make object 2", "object 1 unnamed: object 2",   //
                                         R"(object 2 "program_id": text pid-000-7-2-1)",  //
                                         "make object 3", "object 1 unnamed: object 3",   //
                                         R"(object 3 "program_id": text pid-000-7-2-2)"));
}

TEST_F(ClientSql, EndsWhenAnObjectCannotBeMade) {
    const char* const soFar[] = {"{}", R"({"items":[]})", R"({"items":[{"program_id":"pid-000-7-2-1"}]})"};
    for (int objects = 0; objects < 3; ++objects) {
        const TestDocument document;
        epgset::failDocumentObjectsAfter(objects);
        EXPECT_EQ(plugin()->ExecuteClientCommand(TestQuery("sql=SELECT+EventId+FROM+myView"), document), -1);
        epgset::failDocumentObjectsAfter(-1);
        EXPECT_EQ(document.json(), soFar[objects]);
        EXPECT_TRUE(leavesNoStatement());
        EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "A standard SQL statement has been entered\n"));
    }
}

TEST_F(ClientSql, RunsNothingWithoutAnObjectForTheRows) {
    const TestDocument document;
    epgset::failDocumentObjectsAfter(0);
    EXPECT_EQ(plugin()->ExecuteClientCommand(TestQuery("sql=DELETE+FROM+myView"), document), -1);
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
}

TEST_F(ClientSql, RunsOnTheConnectionThatItIsGiven) {
    const auto other = OpenPlugin::m_createSqlDB("");
    rowsOf(*other, "CREATE TABLE elsewhere (ServiceType)");
    rowsOf(*other, "INSERT INTO elsewhere VALUES ('a')");
    const TestDocument document;
    EXPECT_EQ(OpenPlugin::m_SendSQLCmd(TestQuery("sql=SELECT+*+FROM+elsewhere"), other, document), 200);
    EXPECT_EQ(document.json(), R"({"items":[{"service_type":"a"}]})");
}

TEST_F(ClientSql, LetsTheTableBeMadeAgain) {
    for (const char* sql :
         {"SELECT * FROM myView", "SELECT * FROM myView; SELECT 1", "nonsense", "DROP TABLE myView"}) {
        SCOPED_TRACE(sql);
        run(sql);
        plugin()->rebuildDB(true);
        EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
    }
}

}  // namespace
}  // namespace epgtest
