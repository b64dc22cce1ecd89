// One programme and its synopsis, answered from the table and the guide.
#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "Vexmoor/HeapText.h"
#include "tests/plugin/ProgrammeQueryTest.h"
#include "tests/support/DocumentCalls.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

class ProgrammeQueries : public ProgrammeQueryTest {};

// Methods ---------------------------------------------------------------------------------------------

TEST_F(ProgrammeQueries, AnswerOnlyGet) {
    for (const char* method : {"POST", "PUT", "DELETE", "HEAD", "get", "GET ", ""}) {
        SCOPED_TRACE(method);
        log.clear();
        const SqlTrace trace(*OpenPlugin::epgDBConnection);
        for (const Answer& answer : {list("items_max=0", method), listOfChannel("cid-000-99", "", method),
                                     info("pid-000-7-2-1", method), detail("pid-000-7-2-1", method)}) {
            EXPECT_EQ(answer.status, 404);
            EXPECT_EQ(answer.json, "{}");
        }
        const auto warning =
            Pair(Logger::Warning, "Function does not support this " + std::string(method) + " method");
        EXPECT_THAT(logged(), ElementsAre(warning, warning, warning, warning));
        EXPECT_EQ(log.records()[0].format, "Function does not support this %s method");
        EXPECT_THAT(trace.statements, IsEmpty());
    }
}

TEST_F(ProgrammeQueries, AnswerNothingWithoutAMethod) {
    for (const Answer& answer : {list("", nullptr), listOfChannel("cid-000-7-2", "", nullptr),
                                 info("pid-000-7-2-1", nullptr), detail("pid-000-7-2-1", nullptr)})
        EXPECT_EQ(answer.status, 404);
    EXPECT_THAT(logged(), SizeIs(4));
    EXPECT_THAT(logged(), testing::Each(testing::Key(Logger::Warning)));
}

// One programme ---------------------------------------------------------------------------------------

TEST_F(ProgrammeQueries, InfoHoldsTheProgrammesMembersAndNoMore) {
    const Answer answer = info("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"antenna":"AIR","channel_id":"cid-000-7-2","channel_name":"News 24","channel_num":"7-2",)"
              R"("channel_path":"/ws/epg2/channels/cid-000-7-2","end":"2026-08-23T01:00:00+00:00",)"
              R"("id":"pid-000-7-2-1","name":"Morning","scrambled":false,)"
              R"("start":"2026-08-23T00:00:00+00:00"})");
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, InfoRunsThisStatement) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    info("pid-000-7-2-1");
    const std::string sql =
        "SELECT EventId, ProgramName, ChannelId, ChannelPath, ChannelName, ChannelNumber, AntennaType, "
        "ProgramStartTime, ProgramEndTime, ScrambledFlag FROM myView WHERE EventId='pid-000-7-2-1';";
    EXPECT_THAT(trace.statements, ElementsAre(sql));
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Debug, "selectSql statement\n"),
                                      Pair(Logger::Trace, "SQL query set as: " + sql)));
}

TEST_F(ProgrammeQueries, InfoHoldsTheFirstOfSeveralRows) {
    table("INSERT INTO myView (EventId, ProgramName) VALUES ('pid-000-7-2-1', 'Another')");
    EXPECT_THAT(info("pid-000-7-2-1").json, HasSubstr(R"("name":"Morning")"));
}

TEST_F(ProgrammeQueries, InfoAnswersRowsNamedChannelStub) {
    addStub("cid-000-7-2", "pid-000-7-2-9");
    const Answer answer = info("pid-000-7-2-9");
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.json, HasSubstr(R"("name":"channel_stub")"));
}

TEST_F(ProgrammeQueries, InfoTakesTheIdentifierAsItCame) {
    EXPECT_THAT(info("x' OR ProgramName='Western").json, HasSubstr(R"("id":"pid-001-9-0-1")"));
}

TEST_F(ProgrammeQueries, InfoOfAnUnknownProgrammeIsNotFound) {
    for (const char* programId :
         {"pid-000-7-2-3", "pid-000-7-2", "PID-000-7-2-1", "pid-000-7-2-1 ", "%", "O'Neil"}) {
        SCOPED_TRACE(programId);
        const Answer answer = info(programId);
        EXPECT_EQ(answer.status, 404);
        EXPECT_EQ(answer.json, "{}");
        EXPECT_TRUE(leavesNoStatement());
    }
    for (const auto& [level, message] : logged())
        EXPECT_THAT(message, testing::AnyOf("selectSql statement\n", HasSubstr("SQL query set as: ")));
}

// The synopsis ----------------------------------------------------------------------------------------

TEST_F(ProgrammeQueries, DetailHoldsTheSynopsisAndTwoPlaceholders) {
    const std::string url = placeholderUrl;
    const DocumentCalls calls;
    const Answer answer = detail("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"synopsis":"A quiet start","screenShotURL":")" + url + R"(","linkURL":")" + url + R"("})");
    EXPECT_THAT(calls.lines,
                ElementsAre(R"(root "synopsis": text A quiet start)", R"(root "screenShotURL": text )" + url,
                            R"(root "linkURL": text )" + url));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, DetailTracesItsSteps) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    detail("pid-000-7-2-1");
    EXPECT_THAT(trace.statements, ElementsAre("SELECT ChannelId FROM myView WHERE EventId='pid-000-7-2-1'"));
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Getting program synopsis\n"),
                                      Pair(Logger::Trace,
                                           "SQL query set as: SELECT ChannelId FROM myView WHERE "
                                           "EventId='pid-000-7-2-1'"),
                                      Pair(Logger::Trace, "ChannelID val: cid-000-7-2\n"),
                                      Pair(Logger::Trace, "Creating channel object\n"),
                                      Pair(Logger::Trace, "Channel pointer is not null\n"),
                                      Pair(Logger::Trace, "ProgramObjectRetrieved\n")));
}

TEST_F(ProgrammeQueries, DetailOfAProgrammeWithoutASynopsisIsNotFound) {
    const Answer answer = detail("pid-000-7-2-2");
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.json, "{}");
    EXPECT_THAT(logged(), Contains(Pair(Logger::Trace, "ProgramObjectRetrieved\n")));
}

TEST_F(ProgrammeQueries, DetailTakesTheWordNoneInCapitalsForNoSynopsis) {
    const Answer inCapitals = detail("pid-000-10-0-1");
    EXPECT_EQ(inCapitals.status, 404);
    EXPECT_EQ(inCapitals.json, "{}");
    const Answer otherwise = detail("pid-001-9-0-1");
    EXPECT_EQ(otherwise.status, 200);
    EXPECT_THAT(otherwise.json, HasSubstr(R"("synopsis":"None")"));
}

TEST_F(ProgrammeQueries, DetailHoldsASynopsisThatIsAnEmptyText) {
    TestGuide guide;
    guide.programme(guide.channel(Air, 7, 2, "News 24"), midnight, oneOClock, "Morning", 1,
                    "\nBelow an empty line");
    guide.use();
    const Answer answer = detail("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.json, HasSubstr(R"("synopsis":"",)"));
}

TEST_F(ProgrammeQueries, DetailOfAnUnknownProgrammeIsNotFound) {
    const Answer answer = detail("pid-000-7-2-3");
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.json, "{}");
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Getting program synopsis\n"),
                                      Pair(Logger::Trace,
                                           "SQL query set as: SELECT ChannelId FROM myView WHERE "
                                           "EventId='pid-000-7-2-3'")));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, DetailOfAProgrammeWhoseChannelIsGoneIsNotFound) {
    useGuide(false);
    const Answer answer = detail("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.json, "{}");
    EXPECT_EQ(logged().back(), std::pair(Logger::Trace, std::string("Creating channel object\n")));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, DetailOfAProgrammeThatIsGoneIsNotFound) {
    TestGuide guide;
    guide.programme(guide.channel(Air, 7, 2, "News 24"), midnight, oneOClock, "Other", 5, "Another one");
    guide.use();
    const Answer answer = detail("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.json, "{}");
    EXPECT_EQ(logged().back(), std::pair(Logger::Trace, std::string("ProgramObjectRetrieved\n")));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, DetailTakesTheIdentifierAsItCame) {
    EXPECT_EQ(detail("O'Neil").status, 404);
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, SynopsisIsTheCallersOwn) {
    const HeapText synopsis(OpenPlugin::m_getPrgmSynopsis("pid-000-7-2-1", OpenPlugin::epgDBConnection));
    EXPECT_STREQ(synopsis.get(), "A quiet start");
}

TEST_F(ProgrammeQueries, SynopsisOfNoProgrammeOrNoChannelIsTheMarker) {
    EXPECT_STREQ(OpenPlugin::programWithoutSynopsis, "NONE");
    EXPECT_EQ(OpenPlugin::m_getPrgmSynopsis("pid-000-7-2-3", OpenPlugin::epgDBConnection),
              OpenPlugin::programWithoutSynopsis);
    useGuide(false);
    EXPECT_EQ(OpenPlugin::m_getPrgmSynopsis("pid-000-7-2-1", OpenPlugin::epgDBConnection),
              OpenPlugin::programWithoutSynopsis);
}

// Whether there is a programme ------------------------------------------------------------------------

TEST_F(ProgrammeQueries, ExistWithAnyRowOfTheirIdentifier) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    EXPECT_EQ(exists("pid-000-7-2-1"), 0);
    EXPECT_THAT(trace.statements, ElementsAre("SELECT EventId From myView WHERE EventId='pid-000-7-2-1';"));
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Program exists in DB!\n")));
    addStub("cid-000-7-2", "pid-000-7-2-9");
    EXPECT_EQ(exists("pid-000-7-2-9"), 0);
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, DoNotExistWithoutARow) {
    for (const char* programId : {"pid-000-7-2-3", "PID-000-7-2-1", "O'Neil"}) {
        SCOPED_TRACE(programId);
        log.clear();
        EXPECT_EQ(exists(programId), -1);
        EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Program does not exists in DB!\n")));
        EXPECT_TRUE(leavesNoStatement());
    }
}

// The table after them --------------------------------------------------------------------------------

TEST_F(ProgrammeQueries, LetTheTableBeMadeAgain) {
    list("");
    listOfChannel("cid-000-7-2");
    listOfChannel("cid-000-99");
    info("pid-000-7-2-1");
    detail("pid-000-7-2-1");
    detail("pid-000-7-2-2");
    log.clear();
    plugin()->rebuildDB(true);
    EXPECT_THAT(pluginLog(), Contains("table deleted!\n"));
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"5"}));
}

}  // namespace
}  // namespace epgtest
