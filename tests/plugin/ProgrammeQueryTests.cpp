// The programme lists, one programme and its synopsis, answered from the table and the guide.
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "Vexmoor/HeapText.h"
#include "tests/plugin/QueryTest.h"
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

constexpr std::uint32_t midnight = 1'787'443'200;  // 2026-08-23T00:00:00Z
constexpr std::uint32_t oneOClock = midnight + 3600;
constexpr std::uint32_t twoOClock = midnight + 7200;

const std::string selectProgrammes =
    "SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, AntennaType, ProgramStartTime, "
    "ProgramEndTime, ScrambledFlag FROM myView";

/// Four programmes on three channels, and a channel without one.
class ProgrammeQueries : public QueryTest {
protected:
    ProgrammeQueries() {
        useGuide(true);
        plugin();
        log.clear();
    }

    /// Makes the guide, with or without the channel "News 24".
    static void useGuide(bool withNews) {
        TestGuide guide;
        if (withNews) {
            const auto news = guide.channel(Air, 7, 2, "News 24");
            guide.programme(news, midnight, oneOClock, "Morning", 1, "A quiet start")
                .programme(news, oneOClock, twoOClock, "Football", 2);
        }
        guide.programme(guide.channel(Air, 10, 0, "Sport"), midnight, oneOClock, "Football live", 1, "NONE");
        epgset::Channel films;
        films.id = "films";
        films.name = "Films";
        films.tvMode = Cable;
        films.major = 9;
        films.scrambled = true;
        guide.programme(guide.add(films), midnight, twoOClock, "Western", 1, "None");
        guide.channel(Satellite, 1, 0, "Silence");
        guide.use();
    }

    static Answer list(const std::string& query, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmListSqlQuery(TestQuery(query.c_str()), document, method,
                                                      OpenPlugin::epgDBConnection);
        });
    }
    static Answer listOfChannel(const char* channelId, const std::string& query = "",
                                const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmListForChnlSqlQuery(channelId, TestQuery(query.c_str()), document,
                                                             method, OpenPlugin::epgDBConnection);
        });
    }
    static Answer info(const char* programId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmInfoSqlQuery(programId, document, method,
                                                      OpenPlugin::epgDBConnection);
        });
    }
    static Answer detail(const char* programId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_getPrgmDetailQuery(programId, document, method, OpenPlugin::epgDBConnection);
        });
    }
    static int exists(const char* programId) {
        return OpenPlugin::m_checkForProgramInDB(programId, OpenPlugin::epgDBConnection);
    }

    /// The names of the listed programmes and the counts: asks for the name alone.
    static std::string names(const std::string& query) { return list("select=name&" + query).json; }

    static std::string listOf(const std::vector<std::string>& names, int startIndex, int total) {
        std::string items;
        for (const auto& name : names)
            items += (items.empty() ? "" : ",") + (R"({"name":")" + name + R"("})");
        return R"({"items":[)" + items + R"(],"items_start_index":)" + std::to_string(startIndex) +
               R"(,"items_count":)" + std::to_string(names.size()) + R"(,"items_total":)" +
               std::to_string(total) + "}";
    }

    /// The statement set by the last query.
    std::string lastStatement() const {
        const std::string prefix = "SQL query set as: ";
        std::string statement = "(none)";
        for (const auto& message : pluginLog())
            if (message.rfind(prefix, 0) == 0) statement = message.substr(prefix.size());
        return statement;
    }
    std::string statementOf(const std::string& query) const {
        list(query);
        return lastStatement();
    }
    std::string statementOfChannel(const std::string& query) const {
        listOfChannel("cid-000-7-2", query);
        return lastStatement();
    }

    /// Adds a row of a channel, named as the stub that the lists leave out.
    static void addStub(const std::string& channelId, const std::string& eventId) {
        table("INSERT INTO myView (ChannelId, EventId, ProgramName, ScheduleId) VALUES ('" + channelId +
              "', '" + eventId + "', 'channel_stub', '')");
    }
};

// All programmes: the statement -----------------------------------------------------------------------

TEST_F(ProgrammeQueries, ListRunsThisStatementWithoutParameters) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    list("");
    EXPECT_THAT(trace.statements,
                ElementsAre("SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, "
                            "AntennaType, ProgramStartTime, ProgramEndTime, ScrambledFlag FROM myView WHERE "
                            "NOT ProgramName='channel_stub' ;"));
}

TEST_F(ProgrammeQueries, ListPutsItsStatementTogether) {
    const std::string where = " WHERE NOT ProgramName='channel_stub' ";
    const std::string and_ = " AND NOT ProgramName='channel_stub' ";
    EXPECT_EQ(statementOf("name=Foot"),
              selectProgrammes + " WHERE SEARCH_SCORE(ProgramName,'Foot')>0 " + and_ + ";");
    EXPECT_EQ(statementOf("name=Foot&channel_name=News"),
              selectProgrammes +
                  " WHERE SEARCH_SCORE(ChannelName,'News')>0 AND SEARCH_SCORE(ProgramName,'Foot')>0 " + and_ +
                  ";");
    EXPECT_EQ(statementOf("start=2026-08-23T00:00:00Z&end=2026-08-23T01:00:00Z"),
              selectProgrammes + " WHERE ProgramEndTime<='1787446800' AND ProgramStartTime>='1787443200' " +
                  and_ + ";");
    EXPECT_EQ(statementOf("sort=start&sort_order=descend"),
              selectProgrammes + where + " ORDER BY ProgramStartTime DESC;");
    EXPECT_EQ(statementOf("sort=program_id"), selectProgrammes + where + " ORDER BY EventId;");
    EXPECT_EQ(statementOf("select=name|start"),
              "SELECT ProgramName, ProgramStartTime FROM myView" + where + ";");
    EXPECT_EQ(statementOf("program_name=x&unknown=x&items_max=5&items_start_index=2"),
              selectProgrammes + where + ";");
}

// All programmes: the answer --------------------------------------------------------------------------

TEST_F(ProgrammeQueries, ListHoldsEachProgrammeWithAllItsMembers) {
    const Answer answer = list("antenna=CABLE");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"items":[{"antenna":"CABLE","channel_name":"Films","channel_num":"9",)"
              R"("channel_path":"/ws/epg2/channels/cid-001-9","end":"2026-08-23T02:00:00+00:00",)"
              R"("id":"pid-001-9-0-1","name":"Western","scrambled":true,)"
              R"("start":"2026-08-23T00:00:00+00:00","thumb_uri":")" +
                  std::string(placeholderUrl) +
                  R"(","category":"TBD"}],"items_start_index":0,"items_count":1,"items_total":1})");
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ProgrammeQueries, ListHoldsAllProgrammesAndTheStubOfASilentChannel) {
    EXPECT_EQ(names(""), listOf({"Morning", "Football", "Football live", "Western", "No information"}, 0, 5));
}

TEST_F(ProgrammeQueries, ListTakesNoParametersAtAll) {
    const TestDocument document;
    EXPECT_EQ(OpenPlugin::m_execPrgmListSqlQuery(nullptr, document, "GET", OpenPlugin::epgDBConnection), 200);
    EXPECT_EQ(document.json(), list("").json);
}

TEST_F(ProgrammeQueries, ListLeavesOutRowsNamedChannelStub) {
    addStub("cid-000-10", "pid-000-10-0-9");
    EXPECT_EQ(names("antenna=AIR"), listOf({"Morning", "Football", "Football live"}, 0, 3));
    EXPECT_EQ(names("name=channel_stub"), R"({"items":[]})");
}

TEST_F(ProgrammeQueries, ListHoldsBookedProgrammesToo) {
    table("UPDATE myView SET ScheduleId='sch_id_1' WHERE ProgramName='Morning'");
    table("UPDATE myView SET ScheduleId=NULL WHERE ProgramName='Western'");
    EXPECT_EQ(names(""), listOf({"Morning", "Football", "Football live", "Western", "No information"}, 0, 5));
}

TEST_F(ProgrammeQueries, ListHoldsTheFirst200AndTheFullCount) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 250);
    guide.use();
    plugin()->rebuildDB(true);
    std::vector<std::string> first;
    for (int i = 1; i <= 200; ++i)
        first.push_back("Programme " + std::to_string(i));
    EXPECT_EQ(names(""), listOf(first, 0, 250));
    EXPECT_EQ(names("items_max=1&items_start_index=249"), listOf({"Programme 250"}, 249, 250));
}

TEST_F(ProgrammeQueries, ListFiltersByEachParameter) {
    EXPECT_EQ(names("name=football"), listOf({"Football", "Football live"}, 0, 2));
    EXPECT_EQ(names("channel_name=news"), listOf({"Morning", "Football"}, 0, 2));
    EXPECT_EQ(names("name=football&channel_name=sport"), listOf({"Football live"}, 0, 1));
    EXPECT_EQ(names("channel_num=10"), listOf({"Football live"}, 0, 1));
    EXPECT_EQ(names("scrambled=true"), listOf({"Western"}, 0, 1));
    EXPECT_EQ(names("antenna=SATELLITE"), listOf({"No information"}, 0, 1));
}

TEST_F(ProgrammeQueries, ListIncludesBothBoundsOfTheTime) {
    EXPECT_EQ(names("antenna=AIR&start=2026-08-23T00:00:00Z&end=2026-08-23T01:00:00Z"),
              listOf({"Morning", "Football live"}, 0, 2));
    EXPECT_EQ(names("antenna=AIR&start=2026-08-23T00:00:01Z"), listOf({"Football"}, 0, 1));
    EXPECT_EQ(names("start=2026-08-23T01:00:00Z&end=2026-08-23T02:00:00Z"), listOf({"Football"}, 0, 1));
    EXPECT_EQ(names("antenna=AIR&end=2026-08-23T00:59:59Z"), R"({"items":[]})");
}

TEST_F(ProgrammeQueries, ListSortsTimesAsNumbers) {
    table("UPDATE myView SET ProgramStartTime=900 WHERE ProgramName='Football'");
    EXPECT_EQ(names("channel_num=7-2&sort=start"), listOf({"Football", "Morning"}, 0, 2));
    EXPECT_EQ(names("channel_num=7-2&sort=start&sort_order=descend"), listOf({"Morning", "Football"}, 0, 2));
}

TEST_F(ProgrammeQueries, ListHoldsThePageAskedFor) {
    EXPECT_EQ(names("items_max=2"), listOf({"Morning", "Football"}, 0, 5));
    EXPECT_EQ(names("items_max=2x&items_start_index=1"), listOf({"Football", "Football live"}, 1, 5));
    EXPECT_EQ(names("items_start_index=4"), listOf({"No information"}, 4, 5));
    EXPECT_EQ(names("items_max=1&items_start_index=x"), listOf({"Morning"}, 0, 5));
}

TEST_F(ProgrammeQueries, ListsRefuseAPageThatCannotBe) {
    for (const char* query : {"items_max=0", "items_max=-1", "items_max=x", "items_start_index=-1",
                              "items_max=5&items_start_index=-1", "items_max=0&items_start_index=0"}) {
        SCOPED_TRACE(query);
        log.clear();
        {
            const SqlTrace trace(*OpenPlugin::epgDBConnection);
            const Answer answer = list(query);
            EXPECT_EQ(answer.status, 400);
            EXPECT_EQ(answer.json, "{}");
            EXPECT_THAT(logged(), IsEmpty());
            EXPECT_THAT(trace.statements, IsEmpty());
        }
        const Answer answer = listOfChannel("cid-000-7-2", query);
        EXPECT_EQ(answer.status, 400);
        EXPECT_EQ(answer.json, "{}");
    }
}

TEST_F(ProgrammeQueries, ListsIgnoreEmptyPagingTexts) {
    EXPECT_EQ(list("items_max=&items_start_index=").json, list("").json);
    EXPECT_EQ(listOfChannel("cid-000-7-2", "items_max=&items_start_index=").json,
              listOfChannel("cid-000-7-2").json);
}

TEST_F(ProgrammeQueries, ListThatIsEmptyHasNoCounts) {
    const Answer answer = list("name=nothing");
    EXPECT_EQ(answer.status, 204);
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ProgrammeQueries, ListsAreEmptyWhenTheirStatementDoesNotCompile) {
    for (const char* query : {"name=O'Neil", "select="}) {
        SCOPED_TRACE(query);
        for (const Answer& answer : {list(query), listOfChannel("cid-000-7-2", query)}) {
            EXPECT_EQ(answer.status, 204);
            EXPECT_EQ(answer.json, R"({"items":[]})");
        }
    }
}

TEST_F(ProgrammeQueries, ListsEndWhenAnObjectCannotBeMade) {
    const char* const soFar[] = {"{}", R"({"items":[]})"};
    for (int objects = 0; objects < 2; ++objects) {
        const TestDocument ofAll;
        epgset::failDocumentObjectsAfter(objects);
        EXPECT_EQ(OpenPlugin::m_execPrgmListSqlQuery(nullptr, ofAll, "GET", OpenPlugin::epgDBConnection), -1);
        epgset::failDocumentObjectsAfter(-1);
        EXPECT_EQ(ofAll.json(), soFar[objects]);

        const TestDocument ofChannel;
        epgset::failDocumentObjectsAfter(objects);
        EXPECT_EQ(OpenPlugin::m_execPrgmListForChnlSqlQuery("cid-000-7-2", nullptr, ofChannel, "GET",
                                                            OpenPlugin::epgDBConnection),
                  -1);
        epgset::failDocumentObjectsAfter(-1);
        EXPECT_EQ(ofChannel.json(), soFar[objects]);
        EXPECT_TRUE(leavesNoStatement());
    }
}

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

// Programmes of one channel ---------------------------------------------------------------------------

TEST_F(ProgrammeQueries, ListOfAChannelPutsItsStatementTogether) {
    EXPECT_EQ(statementOfChannel(""),
              selectProgrammes + " WHERE ChannelId='cid-000-7-2'  AND NOT ProgramName='channel_stub' ;");
    EXPECT_EQ(statementOfChannel("name=Foot&sort=name"),
              selectProgrammes +
                  " WHERE SEARCH_SCORE(ProgramName,'Foot')>0  AND ChannelId='cid-000-7-2' AND NOT "
                  "ProgramName='channel_stub'  ORDER BY ProgramName;");
    EXPECT_EQ(statementOfChannel("select=name|end"),
              "SELECT ProgramName, ProgramEndTime FROM myView WHERE ChannelId='cid-000-7-2'  AND NOT "
              "ProgramName='channel_stub' ;");
}

TEST_F(ProgrammeQueries, ListOfAChannelLooksForTheChannelFirst) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    listOfChannel("cid-000-7-2");
    ASSERT_THAT(trace.statements, SizeIs(2));
    EXPECT_EQ(trace.statements[0], "SELECT ChannelId From myView WHERE ChannelId='cid-000-7-2';");
    EXPECT_THAT(trace.statements[1], HasSubstr("SELECT  EventId"));
}

TEST_F(ProgrammeQueries, ListOfAChannelHoldsItsProgrammesOnly) {
    const Answer answer = listOfChannel("cid-000-7-2", "select=name");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, listOf({"Morning", "Football"}, 0, 2));
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name&name=foot").json, listOf({"Football"}, 0, 1));
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name&items_start_index=1").json,
              listOf({"Football"}, 1, 2));
}

TEST_F(ProgrammeQueries, ListOfASilentChannelHoldsItsStub) {
    const Answer answer = listOfChannel("cid-003-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"items":[{"antenna":"SATELLITE","channel_name":"Silence","channel_num":"1",)"
              R"("channel_path":"/ws/epg2/channels/cid-003-1","end":"1970-01-01T00:00:00+00:00","id":"",)"
              R"("name":"No information","scrambled":false,"start":"1970-01-01T00:00:00+00:00",)"
              R"("thumb_uri":")" +
                  std::string(placeholderUrl) +
                  R"(","category":"TBD"}],"items_start_index":0,"items_count":1,"items_total":1})");
}

TEST_F(ProgrammeQueries, ListOfAChannelLeavesOutRowsNamedChannelStub) {
    addStub("cid-000-7-2", "pid-000-7-2-9");
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name").json, listOf({"Morning", "Football"}, 0, 2));
    addStub("cid-000-99", "pid-000-99-0-9");
    const Answer answer = listOfChannel("cid-000-99");
    EXPECT_EQ(answer.status, 204) << "the channel is there, though it has nothing to list";
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ProgrammeQueries, ListOfAnUnknownChannelIsNotFoundWhateverThePage) {
    for (const char* channelId : {"cid-000-99", "", "CID-000-7-2", "O'Neil"}) {
        for (const char* query : {"", "items_max=0", "items_start_index=-1"}) {
            SCOPED_TRACE(std::string(channelId) + "?" + query);
            log.clear();
            const Answer answer = listOfChannel(channelId, query);
            EXPECT_EQ(answer.status, 404);
            EXPECT_EQ(answer.json, "{}");
            EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Channel does not exists in DB!\n")));
            EXPECT_TRUE(leavesNoStatement());
        }
    }
}

TEST_F(ProgrammeQueries, ListOfAChannelTakesTheIdentifierAsItCame) {
    EXPECT_EQ(listOfChannel("x' OR ChannelName='Films", "select=name").json, listOf({"Western"}, 0, 1));
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
