// The programme lists: of all channels and of one.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/plugin/ProgrammeQueryTest.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

const std::string selectProgrammes =
    "SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, AntennaType, ProgramStartTime, "
    "ProgramEndTime, ScrambledFlag FROM myView";

class ProgrammeLists : public ProgrammeQueryTest {
protected:
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
};

// All programmes: the statement -----------------------------------------------------------------------

TEST_F(ProgrammeLists, OfAllRunsThisStatementWithoutParameters) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    list("");
    EXPECT_THAT(trace.statements,
                ElementsAre("SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, "
                            "AntennaType, ProgramStartTime, ProgramEndTime, ScrambledFlag FROM myView WHERE "
                            "NOT ProgramName='channel_stub' ;"));
}

TEST_F(ProgrammeLists, OfAllPutsItsStatementTogether) {
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

TEST_F(ProgrammeLists, OfAllHoldsEachProgrammeWithAllItsMembers) {
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

TEST_F(ProgrammeLists, OfAllHoldsTheStubOfASilentChannel) {
    EXPECT_EQ(names(""), listOf({"Morning", "Football", "Football live", "Western", "No information"}, 0, 5));
}

TEST_F(ProgrammeLists, OfAllTakesNoParametersAtAll) {
    const TestDocument document;
    EXPECT_EQ(OpenPlugin::m_execPrgmListSqlQuery(nullptr, document, "GET", OpenPlugin::epgDBConnection), 200);
    EXPECT_EQ(document.json(), list("").json);
}

TEST_F(ProgrammeLists, OfAllLeavesOutRowsNamedChannelStub) {
    addStub("cid-000-10", "pid-000-10-0-9");
    EXPECT_EQ(names("antenna=AIR"), listOf({"Morning", "Football", "Football live"}, 0, 3));
    EXPECT_EQ(names("name=channel_stub"), R"({"items":[]})");
}

TEST_F(ProgrammeLists, OfAllHoldsBookedProgrammesToo) {
    table("UPDATE myView SET ScheduleId='sch_id_1' WHERE ProgramName='Morning'");
    table("UPDATE myView SET ScheduleId=NULL WHERE ProgramName='Western'");
    EXPECT_EQ(names(""), listOf({"Morning", "Football", "Football live", "Western", "No information"}, 0, 5));
}

TEST_F(ProgrammeLists, OfAllHoldsTheFirst200AndTheFullCount) {
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

TEST_F(ProgrammeLists, OfAllFiltersByEachParameter) {
    EXPECT_EQ(names("name=football"), listOf({"Football", "Football live"}, 0, 2));
    EXPECT_EQ(names("channel_name=news"), listOf({"Morning", "Football"}, 0, 2));
    EXPECT_EQ(names("name=football&channel_name=sport"), listOf({"Football live"}, 0, 1));
    EXPECT_EQ(names("channel_num=10"), listOf({"Football live"}, 0, 1));
    EXPECT_EQ(names("scrambled=true"), listOf({"Western"}, 0, 1));
    EXPECT_EQ(names("antenna=SATELLITE"), listOf({"No information"}, 0, 1));
}

TEST_F(ProgrammeLists, OfAllIncludesBothBoundsOfTheTime) {
    EXPECT_EQ(names("antenna=AIR&start=2026-08-23T00:00:00Z&end=2026-08-23T01:00:00Z"),
              listOf({"Morning", "Football live"}, 0, 2));
    EXPECT_EQ(names("antenna=AIR&start=2026-08-23T00:00:01Z"), listOf({"Football"}, 0, 1));
    EXPECT_EQ(names("start=2026-08-23T01:00:00Z&end=2026-08-23T02:00:00Z"), listOf({"Football"}, 0, 1));
    EXPECT_EQ(names("antenna=AIR&end=2026-08-23T00:59:59Z"), R"({"items":[]})");
}

TEST_F(ProgrammeLists, OfAllSortsTimesAsNumbers) {
    table("UPDATE myView SET ProgramStartTime=900 WHERE ProgramName='Football'");
    EXPECT_EQ(names("channel_num=7-2&sort=start"), listOf({"Football", "Morning"}, 0, 2));
    EXPECT_EQ(names("channel_num=7-2&sort=start&sort_order=descend"), listOf({"Morning", "Football"}, 0, 2));
}

TEST_F(ProgrammeLists, OfAllHoldsThePageAskedFor) {
    EXPECT_EQ(names("items_max=2"), listOf({"Morning", "Football"}, 0, 5));
    EXPECT_EQ(names("items_max=2x&items_start_index=1"), listOf({"Football", "Football live"}, 1, 5));
    EXPECT_EQ(names("items_start_index=4"), listOf({"No information"}, 4, 5));
    EXPECT_EQ(names("items_max=1&items_start_index=x"), listOf({"Morning"}, 0, 5));
}

TEST_F(ProgrammeLists, OfAllCountTheRowsBehindThePageWithoutReadingThem) {
    addStub("cid-000-10", "stub");
    table("INSERT INTO myView (ChannelId, ProgramName) VALUES ('cid-000-10', NULL)");
    table("INSERT INTO myView (ChannelId, ProgramName) VALUES ('cid-000-10', '')");
    const std::vector<std::string> all = {"Morning", "Football",       "Football live",
                                          "Western", "No information", ""};
    const int total = static_cast<int>(all.size());
    for (int start = 0; start <= total + 1; ++start) {
        for (int most = 1; most <= total + 1; ++most) {
            const std::string query =
                "items_max=" + std::to_string(most) + "&items_start_index=" + std::to_string(start);
            const int begin = std::min(start, total);
            const int end = std::min(start + most, total);
            const std::vector<std::string> page(all.begin() + begin, all.begin() + std::max(begin, end));
            EXPECT_EQ(names(query), listOf(page, start, total)) << query;
        }
    }
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    names("items_max=1");
    EXPECT_THAT(trace.statements,
                ElementsAre("SELECT ProgramName FROM myView WHERE NOT ProgramName='channel_stub' ;",
                            HasSubstr("SELECT count(*) FROM myView")));
}

TEST_F(ProgrammeLists, RefuseAPageThatCannotBe) {
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

TEST_F(ProgrammeLists, IgnoreEmptyPagingTexts) {
    EXPECT_EQ(list("items_max=&items_start_index=").json, list("").json);
    EXPECT_EQ(listOfChannel("cid-000-7-2", "items_max=&items_start_index=").json,
              listOfChannel("cid-000-7-2").json);
}

TEST_F(ProgrammeLists, OfAllAreUncountedWhenEmpty) {
    const Answer answer = list("name=nothing");
    EXPECT_EQ(answer.status, 204);
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ProgrammeLists, AreEmptyWhenTheirStatementDoesNotCompile) {
    for (const char* query : {"name=O'Neil", "select="}) {
        SCOPED_TRACE(query);
        for (const Answer& answer : {list(query), listOfChannel("cid-000-7-2", query)}) {
            EXPECT_EQ(answer.status, 204);
            EXPECT_EQ(answer.json, R"({"items":[]})");
        }
    }
}

TEST_F(ProgrammeLists, EndWhenAnObjectCannotBeMade) {
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

// Programmes of one channel ---------------------------------------------------------------------------

TEST_F(ProgrammeLists, OfAChannelPutsItsStatementTogether) {
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

TEST_F(ProgrammeLists, OfAChannelLooksForTheChannelFirst) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    listOfChannel("cid-000-7-2");
    ASSERT_THAT(trace.statements, SizeIs(2));
    EXPECT_EQ(trace.statements[0], "SELECT ChannelId From myView WHERE ChannelId='cid-000-7-2';");
    EXPECT_THAT(trace.statements[1], HasSubstr("SELECT  EventId"));
}

TEST_F(ProgrammeLists, OfAChannelHoldsItsProgrammesOnly) {
    const Answer answer = listOfChannel("cid-000-7-2", "select=name");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, listOf({"Morning", "Football"}, 0, 2));
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name&name=foot").json, listOf({"Football"}, 0, 1));
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name&items_start_index=1").json,
              listOf({"Football"}, 1, 2));
}

TEST_F(ProgrammeLists, OfASilentChannelHoldsItsStub) {
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

TEST_F(ProgrammeLists, OfAChannelLeavesOutRowsNamedChannelStub) {
    addStub("cid-000-7-2", "pid-000-7-2-9");
    EXPECT_EQ(listOfChannel("cid-000-7-2", "select=name").json, listOf({"Morning", "Football"}, 0, 2));
    addStub("cid-000-99", "pid-000-99-0-9");
    const Answer answer = listOfChannel("cid-000-99");
    EXPECT_EQ(answer.status, 204) << "the channel is there, though it has nothing to list";
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ProgrammeLists, OfAnUnknownChannelIsNotFoundWhateverThePage) {
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

TEST_F(ProgrammeLists, OfAChannelTakesTheIdentifierAsItCame) {
    EXPECT_EQ(listOfChannel("x' OR ChannelName='Films", "select=name").json, listOf({"Western"}, 0, 1));
}

}  // namespace
}  // namespace epgtest
