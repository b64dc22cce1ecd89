// The channel list and one channel, answered from the table.
#include <gmock/gmock.h>

#include <string>

#include "set/database/OpenConnections.h"
#include "tests/support/PluginTest.h"
#include "tests/support/SqlTrace.h"

namespace {

using Container::Logger;
using epgtest::OpenPlugin;
using epgtest::SqlTrace;
using epgtest::TestDocument;
using epgtest::TestGuide;
using epgtest::TestQuery;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

using LogLines = std::vector<std::pair<Logger::Level, std::string>>;

/// Four channels, one of them without a programme.
class ChannelQueries : public epgtest::PluginTest {
protected:
    ChannelQueries() {
        TestGuide guide;
        const auto news = guide.channel(epgtest::Air, 7, 2, "News 24");
        const auto sport = guide.channel(epgtest::Air, 10, 0, "Sport");
        const auto films = guide.channel(epgtest::Cable, 9, 0, "Films");
        epgset::Channel radio;
        radio.id = "radio";
        radio.name = "Evening news radio";
        radio.tvMode = epgtest::Satellite;
        radio.major = 1;
        radio.scrambled = true;
        radio.serviceType = 2;
        guide.add(radio);
        guide.programme(news, 1'787'443'200, 1'787'446'800, "Morning", 1)
            .programme(news, 1'787'446'800, 1'787'450'400, "Football", 2)
            .programme(sport, 1'787'443'200, 1'787'446'800, "Football live", 1)
            .programme(films, 1'787'443'200, 1'787'446'800, "Western", 1);
        guide.use();
        plugin();
        log.clear();
    }

    /// A query's status and the answer as JSON.
    struct Answer {
        int status;
        std::string json;
    };
    static Answer list(const char* query, const char* method = "GET") {
        const TestDocument document;
        const int status = OpenPlugin::m_execChnlListSqlQuery(TestQuery(query), document, method,
                                                              OpenPlugin::epgDBConnection);
        return {status, document.json()};
    }
    static Answer info(const char* channelId, const char* method = "GET") {
        const TestDocument document;
        const int status =
            OpenPlugin::m_execChnlInfoSqlQuery(channelId, document, method, OpenPlugin::epgDBConnection);
        return {status, document.json()};
    }
    static int exists(const char* channelId) {
        return OpenPlugin::m_checkForChannelInDB(channelId, OpenPlugin::epgDBConnection);
    }

    /// The statement that a channel list runs.
    std::string statementOf(const char* query) {
        log.clear();
        list(query);
        const std::string prefix = "SQL query set as: ";
        for (const auto& message : pluginLog())
            if (message.rfind(prefix, 0) == 0) return message.substr(prefix.size());
        return "(none)";
    }

    /// The names of the listed channels and the counts: asks for the name alone.
    static std::string names(const std::string& query) { return list(("select=name&" + query).c_str()).json; }

    static std::string listOf(const std::vector<std::string>& names, int startIndex, int total) {
        std::string items;
        for (const auto& name : names)
            items += (items.empty() ? "" : ",") + (R"({"name":")" + name + R"("})");
        return R"({"items":[)" + items + R"(],"items_start_index":)" + std::to_string(startIndex) +
               R"(,"items_count":)" + std::to_string(names.size()) + R"(,"items_total":)" +
               std::to_string(total) + "}";
    }

    LogLines logged() const {
        LogLines lines;
        for (const auto& record : log.records())
            lines.emplace_back(record.level, record.message);
        return lines;
    }

    static bool leavesNoStatement() { return epgset::openStatementCount() == 0; }

    /// Books every programme of a channel: only rows with a schedule are left.
    static void book(const std::string& channelId) {
        table("UPDATE myView SET ScheduleId='sch_id_1' WHERE ChannelId='" + channelId + "'");
    }
};

const std::string selectChannels =
    "SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, ServiceType  "
    "FROM "
    "myView";
const std::string unbookedTail =
    "ScheduleId='' AND NOT ServiceType='' AND NOT AntennaType='' GROUP BY ChannelId ";

// The list's statement -------------------------------------------------------------------------------

TEST_F(ChannelQueries, ListRunsThisStatementWithoutParameters) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    list("");
    EXPECT_THAT(
        trace.statements,
        ElementsAre("SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, "
                    "ServiceType  FROM myView WHERE ScheduleId='' AND NOT ServiceType='' AND NOT "
                    "AntennaType='' GROUP BY ChannelId ;"));
}

TEST_F(ChannelQueries, ListRunsThisStatementForANameSortedByNumber) {
    EXPECT_EQ(statementOf("name=News&sort=channel_num&sort_order=descend"),
              "SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, "
              "ServiceType  "
              "FROM myView WHERE SEARCH_SCORE(ChannelName,'News')>0  AND ScheduleId='' AND NOT "
              "ServiceType='' AND NOT "
              "AntennaType='' GROUP BY ChannelId  ORDER BY ChannelNumber DESC;");
}

TEST_F(ChannelQueries, ListPutsItsStatementTogether) {
    const std::string where = " WHERE " + unbookedTail;
    const std::string and_ = " AND " + unbookedTail;
    EXPECT_EQ(statementOf("antenna=AIR"), selectChannels + " WHERE AntennaType='AIR' " + and_ + ";");
    EXPECT_EQ(statementOf("scrambled=true&antenna=AIR"),
              selectChannels + " WHERE AntennaType='AIR' AND ScrambledFlag='true' " + and_ + ";");
    EXPECT_EQ(statementOf("sort=name"), selectChannels + where + " ORDER BY ChannelName;");
    EXPECT_EQ(statementOf("sort_order=descend"), selectChannels + where + " DESC;");
    EXPECT_EQ(statementOf("select=name|channel_num"),
              "SELECT ChannelName, ChannelNumber FROM myView" + where + ";");
    EXPECT_EQ(statementOf("channel_name=News&unknown=x&items_max=5&items_start_index=2"),
              selectChannels + where + ";");
}

TEST_F(ChannelQueries, ListTakesTheLastOfOneParameter) {
    EXPECT_EQ(statementOf("antenna=AIR&antenna=CABLE"),
              selectChannels + " WHERE AntennaType='CABLE'  AND " + unbookedTail + ";");
}

// The list's answer ----------------------------------------------------------------------------------

TEST_F(ChannelQueries, ListHoldsEveryChannelOnceWithAllItsMembers) {
    const Answer answer = list("");
    EXPECT_EQ(answer.status, 200);
    const std::string placeholders =
        R"(,"thumb_uri":")" + std::string(placeholderUrl) + R"(","category":"TBD"})";
    EXPECT_EQ(
        answer.json,
        R"({"items":[{"antenna":"AIR","channel_num":"10","channel_path":"/ws/epg2/channels/cid-000-10",)"
        R"("id":"cid-000-10","name":"Sport","scrambled":false,"service_type":"TV")" +
            placeholders +
            R"(,{"antenna":"AIR","channel_num":"7-2","channel_path":"/ws/epg2/channels/cid-000-7-2",)"
            R"("id":"cid-000-7-2","name":"News 24","scrambled":false,"service_type":"TV")" +
            placeholders +
            R"(,{"antenna":"CABLE","channel_num":"9","channel_path":"/ws/epg2/channels/cid-001-9",)"
            R"("id":"cid-001-9","name":"Films","scrambled":false,"service_type":"TV")" +
            placeholders +
            R"(,{"antenna":"SATELLITE","channel_num":"1","channel_path":"/ws/epg2/channels/cid-003-1",)"
            R"("id":"cid-003-1","name":"Evening news radio","scrambled":true,"service_type":"RADIO")" +
            placeholders + R"(],"items_start_index":0,"items_count":4,"items_total":4})");
}

TEST_F(ChannelQueries, ListTakesNoParametersAtAll) {
    const TestDocument document;
    EXPECT_EQ(OpenPlugin::m_execChnlListSqlQuery(nullptr, document, "GET", OpenPlugin::epgDBConnection), 200);
    EXPECT_EQ(document.json(), list("").json);
}

TEST_F(ChannelQueries, ListHoldsOnlyTheSelectedMembers) {
    EXPECT_EQ(list("select=name").json, listOf({"Sport", "News 24", "Films", "Evening news radio"}, 0, 4));
}

TEST_F(ChannelQueries, ListFiltersByEachParameter) {
    EXPECT_EQ(names("name=news"), listOf({"News 24", "Evening news radio"}, 0, 2));
    EXPECT_EQ(names("antenna=AIR"), listOf({"Sport", "News 24"}, 0, 2));
    EXPECT_EQ(names("channel_num=7-2"), listOf({"News 24"}, 0, 1));
    EXPECT_EQ(names("scrambled=true"), listOf({"Evening news radio"}, 0, 1));
    EXPECT_EQ(names("service_type=RADIO"), listOf({"Evening news radio"}, 0, 1));
    EXPECT_EQ(names("antenna=AIR&name=news"), listOf({"News 24"}, 0, 1));
}

TEST_F(ChannelQueries, ListFindsChannelsByTheirProgrammes) {
    EXPECT_EQ(names("program_name=football"), listOf({"Sport", "News 24"}, 0, 2));
    EXPECT_EQ(names("program_name=western"), listOf({"Films"}, 0, 1));
}

TEST_F(ChannelQueries, ListFindsChannelsByTheTimesOfTheirProgrammes) {
    EXPECT_EQ(names("start=2026-08-23T01:00:00Z&end=2026-08-23T02:00:00Z"), listOf({"News 24"}, 0, 1));
}

TEST_F(ChannelQueries, ListSortsNumbersAsTexts) {
    EXPECT_EQ(names("sort=channel_num"), listOf({"Evening news radio", "Sport", "News 24", "Films"}, 0, 4));
    EXPECT_EQ(names("sort=channel_num&sort_order=descend"),
              listOf({"Films", "News 24", "Sport", "Evening news radio"}, 0, 4));
}

TEST_F(ChannelQueries, ListHoldsThePageAskedFor) {
    EXPECT_EQ(names("items_max=2"), listOf({"Sport", "News 24"}, 0, 4));
    EXPECT_EQ(names("items_max=2&items_start_index=3"), listOf({"Evening news radio"}, 3, 4));
    EXPECT_EQ(names("items_start_index=2"), listOf({"Films", "Evening news radio"}, 2, 4));
    EXPECT_EQ(names("items_max=2x&items_start_index=x"), listOf({"Sport", "News 24"}, 0, 4));
    EXPECT_EQ(names("items_max=&items_start_index="),
              listOf({"Sport", "News 24", "Films", "Evening news radio"}, 0, 4));
}

TEST_F(ChannelQueries, ListRefusesAPageThatCannotBe) {
    for (const char* query : {"items_max=0", "items_max=-1", "items_max=x", "items_start_index=-1",
                              "items_max=5&items_start_index=-1", "items_max=0&items_start_index=0"}) {
        log.clear();
        const SqlTrace trace(*OpenPlugin::epgDBConnection);
        const Answer answer = list(query);
        EXPECT_EQ(answer.status, 400) << query;
        EXPECT_EQ(answer.json, "{}") << query;
        EXPECT_THAT(logged(), IsEmpty());
        EXPECT_THAT(trace.statements, IsEmpty());
    }
}

TEST_F(ChannelQueries, ListLeavesOutBookedRowsAndChannelsWithoutServiceOrAntenna) {
    book("cid-000-10");
    table("UPDATE myView SET ServiceType='' WHERE ChannelId='cid-001-9'");
    table("UPDATE myView SET AntennaType='' WHERE ChannelId='cid-003-1'");
    EXPECT_EQ(names(""), listOf({"News 24"}, 0, 1));
}

TEST_F(ChannelQueries, ListLeavesOutRowsThatWereBookedOnce) {
    table("UPDATE myView SET ScheduleId=NULL WHERE ChannelId='cid-000-10'");
    EXPECT_EQ(names(""), listOf({"News 24", "Films", "Evening news radio"}, 0, 3));
}

TEST_F(ChannelQueries, ListThatIsEmptyHasNoCounts) {
    const Answer answer = list("name=nothing");
    EXPECT_EQ(answer.status, 204);
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ChannelQueries, ListIsEmptyWhenItsStatementDoesNotCompile) {
    for (const char* query : {"name=O'Neil", "sort_order=descend", "select="}) {
        const Answer answer = list(query);
        EXPECT_EQ(answer.status, 204) << query;
        EXPECT_EQ(answer.json, R"({"items":[]})") << query;
    }
}

TEST_F(ChannelQueries, ListEndsWhenAnObjectCannotBeMade) {
    const TestDocument document;
    epgset::failDocumentObjectsAfter(1);
    EXPECT_EQ(OpenPlugin::m_execChnlListSqlQuery(nullptr, document, "GET", OpenPlugin::epgDBConnection), -1);
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ChannelQueries, ListLogsOnlyItsConnectionAndStatement) {
    list("");
    const auto records = log.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].format, "EPG Database handle: %d\n");
    EXPECT_EQ(records[1].format, "SQL query set as: %s");
}

// Methods --------------------------------------------------------------------------------------------

TEST_F(ChannelQueries, AnswerOnlyGet) {
    for (const char* method : {"POST", "PUT", "DELETE", "HEAD", "get", "GET ", ""}) {
        for (const bool asList : {true, false}) {
            log.clear();
            const Answer answer = asList ? list("items_max=0", method) : info("cid-000-10", method);
            EXPECT_EQ(answer.status, 404) << method;
            EXPECT_EQ(answer.json, "{}") << method;
            EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Warning, "Function does not support this " +
                                                                        std::string(method) + " method")));
        }
    }
}

TEST_F(ChannelQueries, AnswerNothingWithoutAMethod) {
    EXPECT_EQ(list("", nullptr).status, 404);
    EXPECT_EQ(info("cid-000-10", nullptr).status, 404);
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Warning, "Function does not support this (null) method"),
                                      Pair(Logger::Warning, "Function does not support this (null) method")));
}

// One channel ----------------------------------------------------------------------------------------

TEST_F(ChannelQueries, InfoHoldsTheChannelsMembersAndNoMore) {
    const Answer answer = info("cid-000-7-2");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"antenna":"AIR","channel_num":"7-2","channel_path":"/ws/epg2/channels/cid-000-7-2",)"
              R"("id":"cid-000-7-2","name":"News 24","scrambled":false,"service_type":"TV"})");
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ChannelQueries, InfoRunsThisStatement) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    info("cid-000-10");
    const std::string sql =
        "SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber, AntennaType, ScrambledFlag, ServiceType "
        "FROM "
        "myView WHERE ChannelId='cid-000-10' GROUP BY ChannelId;";
    EXPECT_THAT(trace.statements, ElementsAre(sql));
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Debug, "selectSql statement\n"),
                                      Pair(Logger::Trace, "SQL query set as: " + sql)));
}

TEST_F(ChannelQueries, InfoOfAnUnknownChannelIsNotFound) {
    for (const char* channelId :
         {"cid-000-11", "", "cid-000-1", "CID-000-10", "cid-000-10 ", "%", "O'Neil"}) {
        const Answer answer = info(channelId);
        EXPECT_EQ(answer.status, 404) << channelId;
        EXPECT_EQ(answer.json, "{}") << channelId;
        EXPECT_TRUE(leavesNoStatement());
    }
}

TEST_F(ChannelQueries, InfoTakesTheIdentifierAsItCame) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    EXPECT_EQ(info("x' OR ChannelName='Films").status, 200);
    EXPECT_THAT(trace.statements,
                ElementsAre(HasSubstr("WHERE ChannelId='x' OR ChannelName='Films' GROUP BY")));
}

TEST_F(ChannelQueries, InfoFindsAChannelOfBookedRowsOnly) {
    book("cid-000-10");
    EXPECT_EQ(info("cid-000-10").status, 200);
}

TEST_F(ChannelQueries, InfoWritesTheFirstRowOfAnyStatement) {
    const TestDocument document;
    EXPECT_EQ(OpenPlugin::m_getChnlInfoResults("SELECT 'a' AS ChannelName UNION ALL SELECT 'b'", document,
                                               OpenPlugin::epgDBConnection),
              200);
    EXPECT_EQ(document.json(), R"({"name":"a"})");
    EXPECT_THAT(
        logged(),
        ElementsAre(Pair(Logger::Trace, "SQL query set as: SELECT 'a' AS ChannelName UNION ALL SELECT 'b'")));
    EXPECT_EQ(OpenPlugin::m_getChnlInfoResults("SELECT 1 WHERE 0", document, OpenPlugin::epgDBConnection),
              404);
    EXPECT_TRUE(leavesNoStatement());
}

// Existence ------------------------------------------------------------------------------------------

TEST_F(ChannelQueries, ExistenceIsTestedWithThisStatement) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    EXPECT_EQ(exists("cid-000-10"), 0);
    EXPECT_EQ(exists("cid-000-11"), -1);
    EXPECT_THAT(trace.statements, ElementsAre("SELECT ChannelId From myView WHERE ChannelId='cid-000-10';",
                                              "SELECT ChannelId From myView WHERE ChannelId='cid-000-11';"));
    EXPECT_THAT(logged(), ElementsAre(Pair(Logger::Trace, "Channel exists in DB!\n"),
                                      Pair(Logger::Trace, "Channel does not exists in DB!\n")));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ChannelQueries, ExistenceCountsBookedRowsToo) {
    book("cid-000-10");
    EXPECT_EQ(exists("cid-000-10"), 0);
    EXPECT_EQ(names("name=Sport"), R"({"items":[]})");
}

TEST_F(ChannelQueries, ExistenceTakesTheIdentifierAsItCame) {
    EXPECT_EQ(exists("x' OR '1'='1"), 0);
    EXPECT_EQ(exists("O'Neil"), -1);
    EXPECT_EQ(pluginLog().back(), "Channel does not exists in DB!\n");
    EXPECT_TRUE(leavesNoStatement());
}

}  // namespace
