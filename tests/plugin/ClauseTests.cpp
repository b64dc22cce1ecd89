// The SQL texts that query parameters become.
#include <gmock/gmock.h>

#include <list>
#include <map>
#include <new>
#include <string>

#include "tests/plugin/TableTest.h"
#include "tests/support/FailingNew.h"

namespace {

using Container::Logger;
using epgtest::LogLine;
using epgtest::OpenPlugin;
using epgtest::TestGuide;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Parameters = OpenPlugin::ParameterMap;
using Columns = std::list<std::string>;
using Conditions = std::map<std::string, std::string>;

class Clauses : public epgtest::TableTest {
protected:
    static constexpr int channelView = 1;
    static constexpr int programmeView = 2;
    static constexpr int otherView = 3;

    static Columns columns(const std::string& value, int view) {
        Columns list;
        OpenPlugin::m_getColNamesFrmQueryParam(value, list, view);
        return list;
    }
    static std::string select(const Parameters& parameters, int view) {
        std::string sql;
        OpenPlugin::m_getSqlSelectCols(sql, parameters, view);
        return sql;
    }
    static Conditions conditions(const Parameters& parameters, int view) {
        Conditions map;
        EXPECT_EQ(OpenPlugin::m_getWhereConditions(map, parameters, view), 0);
        return map;
    }
    static std::string where(const Parameters& parameters, int view) {
        std::string sql;
        OpenPlugin::m_getSqlWhereConditions(sql, parameters, view);
        return sql;
    }
    static std::string sort(const Parameters& parameters, int view) {
        std::string sql;
        EXPECT_EQ(OpenPlugin::m_getSqlSortConditions(sql, parameters, view), 0);
        return sql;
    }
    /// Runs `builder` while no memory is to be had; its result, or `thrown` when the failure comes out of it.
    template <typename Builder>
    static int withoutMemory(Builder builder) {
        const epgtest::FailingNew noMemory;
        try {
            return builder();
        } catch (const std::bad_alloc&) {
            return thrown;
        }
    }
    static constexpr int thrown = 1000;

    bool compiles(const std::string& sql) const {
        sqlite3_stmt* statement = nullptr;
        const int code = sqlite3_prepare_v2(database->handle(), sql.c_str(), -1, &statement, nullptr);
        sqlite3_finalize(statement);
        return code == SQLITE_OK;
    }
};

// Columns of a value ---------------------------------------------------------------------------------

TEST_F(Clauses, AValueNamesColumns) {
    const struct {
        const char* value;
        int view;
        Columns expected;
    } cases[] = {
        {"id", channelView, {"ChannelId"}},
        {"id", programmeView, {"EventId"}},
        {"id", otherView, {}},
        {"name", channelView, {"ChannelName"}},
        {"name", programmeView, {"ProgramName"}},
        {"name", otherView, {}},
        {"channel_name", channelView, {"ChannelName"}},
        {"channel_name", programmeView, {"ChannelName"}},
        {"channel_name", otherView, {"ChannelName"}},
        {"channel_num", channelView, {"ChannelNumber"}},
        {"antenna", programmeView, {"AntennaType"}},
        {"scrambled", otherView, {"ScrambledFlag"}},
        {"service_type", channelView, {"ServiceType"}},
        {"program_name", channelView, {"ProgramName"}},
        {"program_name", programmeView, {"ProgramName"}},
        {"start", programmeView, {"ProgramStartTime"}},
        {"end", channelView, {"ProgramEndTime"}},
        {"", channelView, {}},
        {"nothing", channelView, {}},
        {"NAME", channelView, {}},
    };
    for (const auto& one : cases)
        EXPECT_EQ(columns(one.value, one.view), one.expected) << one.value << " in view " << one.view;
}

TEST_F(Clauses, AValueNamesColumnsBySubstrings) {
    EXPECT_THAT(columns("channel_id", channelView), ElementsAre("ChannelId"));
    EXPECT_THAT(columns("channel_id", programmeView), ElementsAre("EventId"));
    EXPECT_THAT(columns("program_id", channelView), ElementsAre("ChannelId"));
    EXPECT_THAT(columns("program_id", programmeView), ElementsAre("EventId"));
    EXPECT_THAT(columns("calendar video restart", programmeView),
                ElementsAre("EventId", "ProgramStartTime", "ProgramEndTime"));
}

TEST_F(Clauses, OnlyTheFirstNameOfAValueCountsAsTheViewsName) {
    EXPECT_THAT(columns("channel_name|name", channelView), ElementsAre("ChannelName"));
    EXPECT_THAT(columns("channel_name|name", programmeView), ElementsAre("ChannelName"));
    EXPECT_THAT(columns("name|channel_name", channelView), ElementsAre("ChannelName", "ChannelName"));
    EXPECT_THAT(columns("name|channel_name", programmeView), ElementsAre("ProgramName", "ChannelName"));
    EXPECT_THAT(columns("_name", channelView), IsEmpty());
    EXPECT_THAT(columns("|name", channelView), ElementsAre("ChannelName"));
    EXPECT_THAT(columns("surname", programmeView), ElementsAre("ProgramName"));
}

TEST_F(Clauses, ColumnsComeInAFixedOrder) {
    const char* everything =
        "name|end|start|program_name|service_type|scrambled|antenna|channel_num|channel_name|id";
    EXPECT_THAT(
        columns(everything, channelView),
        ElementsAre("ChannelId", "ChannelName", "ChannelName", "ChannelNumber", "AntennaType",
                    "ScrambledFlag", "ServiceType", "ProgramName", "ProgramStartTime", "ProgramEndTime"));
    EXPECT_THAT(
        columns(everything, programmeView),
        ElementsAre("EventId", "ProgramName", "ChannelName", "ChannelNumber", "AntennaType", "ScrambledFlag",
                    "ServiceType", "ProgramName", "ProgramStartTime", "ProgramEndTime"));
    EXPECT_THAT(columns(everything, otherView),
                ElementsAre("ChannelName", "ChannelNumber", "AntennaType", "ScrambledFlag", "ServiceType",
                            "ProgramName", "ProgramStartTime", "ProgramEndTime"));
}

TEST_F(Clauses, ColumnsAreAppended) {
    Columns list{"Before"};
    OpenPlugin::m_getColNamesFrmQueryParam("antenna", list, channelView);
    EXPECT_THAT(list, ElementsAre("Before", "AntennaType"));
}

// SELECT ---------------------------------------------------------------------------------------------

TEST_F(Clauses, SelectTakesTheViewsColumns) {
    EXPECT_EQ(select({}, channelView),
              "SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, "
              "ServiceType ");
    EXPECT_EQ(select({}, programmeView),
              "SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, AntennaType, "
              "ProgramStartTime, ProgramEndTime, ScrambledFlag");
    EXPECT_EQ(select({}, otherView), "SELECT  * ");
}

TEST_F(Clauses, SelectTakesTheClientsColumns) {
    EXPECT_EQ(select({{"select", "name|start"}}, programmeView), "SELECT ProgramName, ProgramStartTime");
    EXPECT_EQ(select({{"select", "start|name"}}, programmeView), "SELECT ProgramName, ProgramStartTime");
    EXPECT_EQ(select({{"select", "name"}}, channelView), "SELECT ChannelName");
    EXPECT_EQ(select({{"antenna", "AIR"}, {"select", "antenna"}, {"sort", "name"}}, otherView),
              "SELECT AntennaType");
}

TEST_F(Clauses, SelectAppendsToTheStatement) {
    std::string sql = "EXPLAIN ";
    OpenPlugin::m_getSqlSelectCols(sql, {}, otherView);
    EXPECT_EQ(sql, "EXPLAIN SELECT  * ");
}

TEST_F(Clauses, SelectAnswersWhoChoseTheColumns) {
    const struct {
        Parameters parameters;
        int view, kind;
    } cases[] = {
        {{}, channelView, 1},
        {{}, programmeView, 2},
        {{}, otherView, 5},
        {{}, 0, 5},
        {{{"sort", "name"}}, channelView, 1},
        {{{"Select", "name"}}, channelView, 1},
        {{{"select", "name"}}, channelView, 4},
        {{{"select", "name"}}, programmeView, 4},
        {{{"select", "name"}}, otherView, 4},
        {{{"select", ""}}, channelView, 4},
    };
    for (const auto& one : cases) {
        std::string sql;
        EXPECT_EQ(OpenPlugin::m_getSqlSelectCols(sql, one.parameters, one.view), one.kind) << sql;
    }
}

TEST_F(Clauses, ASelectOfNoColumnDoesNotCompile) {
    ASSERT_EQ(fill(), 0);
    EXPECT_EQ(select({{"select", ""}}, channelView), "SELECT ");
    EXPECT_EQ(select({{"select", "name"}}, otherView), "SELECT ");
    EXPECT_FALSE(compiles(select({{"select", ""}}, channelView) + " FROM myView;"));
}

TEST_F(Clauses, SelectWithoutMemoryLeavesTheStatementAsFarAsItGot) {
    const Parameters parameters{{"select", "start"}};
    std::string sql;
    sql.reserve(100);
    EXPECT_EQ(withoutMemory([&] { return OpenPlugin::m_getSqlSelectCols(sql, parameters, channelView); }),
              -1);
    EXPECT_EQ(sql, "SELECT ");
}

// WHERE ----------------------------------------------------------------------------------------------

TEST_F(Clauses, ParametersBecomeConditionsByView) {
    const Parameters everything{{"antenna", "a"},      {"channel_id", "b"},   {"channel_name", "c"},
                                {"channel_num", "d"},  {"id", "e"},           {"name", "f"},
                                {"program_id", "g"},   {"program_name", "h"}, {"scrambled", "i"},
                                {"service_type", "j"}, {"select", "k"},       {"items_max", "l"}};
    EXPECT_THAT(conditions(everything, channelView),
                ElementsAre(Pair("AntennaType", "a"), Pair("ChannelName", "f"), Pair("ChannelNumber", "d"),
                            Pair("ProgramName", "h"), Pair("ScrambledFlag", "i"), Pair("ServiceType", "j")));
    EXPECT_THAT(conditions(everything, programmeView),
                ElementsAre(Pair("AntennaType", "a"), Pair("ChannelName", "c"), Pair("ChannelNumber", "d"),
                            Pair("ProgramName", "f"), Pair("ScrambledFlag", "i"), Pair("ServiceType", "j")));
    EXPECT_THAT(conditions(everything, otherView),
                ElementsAre(Pair("AntennaType", "a"), Pair("ChannelNumber", "d"), Pair("ScrambledFlag", "i"),
                            Pair("ServiceType", "j")));
}

TEST_F(Clauses, EachViewLeavesTheOthersNameAlone) {
    EXPECT_THAT(conditions({{"channel_name", "News"}}, channelView), IsEmpty());
    EXPECT_THAT(conditions({{"program_name", "News"}}, programmeView), IsEmpty());
}

TEST_F(Clauses, AConditionReplacesAnEarlierOneOfItsColumn) {
    Conditions map{{"AntennaType", "CABLE"}, {"Kept", "x"}};
    OpenPlugin::m_getWhereConditions(map, {{"antenna", "AIR"}}, channelView);
    EXPECT_THAT(map, ElementsAre(Pair("AntennaType", "AIR"), Pair("Kept", "x")));
}

TEST_F(Clauses, TimesBecomeUnixSeconds) {
    const Parameters times{{"end", "2013-05-06T10:11:13Z"}, {"start", "2013-05-06T10:11:12 09:00"}};
    for (const int view : {channelView, programmeView, otherView}) {
        log.clear();
        EXPECT_THAT(conditions(times, view), ElementsAre(Pair("ProgramEndTime", "1367835073"),
                                                         Pair("ProgramStartTime", "1367802672")));
        EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "WHERE end int time: 1367835073"),
                                          LogLine(Logger::Trace, "WHERE Start int time: 1367802672")));
    }
}

TEST_F(Clauses, TimesAreWrittenWholeAndLoggedIn32Bits) {
    EXPECT_THAT(conditions({{"start", "2040-01-01T00:00:00Z"}}, programmeView),
                ElementsAre(Pair("ProgramStartTime", "2208988800")));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "WHERE Start int time: -2085978496")));
    EXPECT_EQ(log.records().back().format, "WHERE Start int time: %d");
}

TEST_F(Clauses, ATimeThatCannotBeReadIsMinusOne) {
    EXPECT_EQ(where({{"end", "soon"}}, channelView), " WHERE ProgramEndTime<='-1' ");
}

TEST_F(Clauses, WhereWritesNothingWithoutAConditionAndSaysSo) {
    std::string sql = "SELECT 1";
    EXPECT_EQ(OpenPlugin::m_getSqlWhereConditions(sql, {{"sort", "name"}, {"id", "7"}}, channelView), 1);
    EXPECT_EQ(sql, "SELECT 1");
    EXPECT_EQ(OpenPlugin::m_getSqlWhereConditions(sql, {{"antenna", "AIR"}}, channelView), 0);
    EXPECT_EQ(sql, "SELECT 1 WHERE AntennaType='AIR' ");
}

TEST_F(Clauses, WhereWritesEachKindOfTerm) {
    const struct {
        Parameters parameters;
        int view;
        const char* expected;
    } cases[] = {
        {{{"name", "News"}}, channelView, " WHERE SEARCH_SCORE(ChannelName,'News')>0 "},
        {{{"name", "News"}}, programmeView, " WHERE SEARCH_SCORE(ProgramName,'News')>0 "},
        {{{"program_name", "News"}}, channelView, " WHERE SEARCH_SCORE(ProgramName,'News')>0 "},
        {{{"channel_name", "One"}}, programmeView, " WHERE SEARCH_SCORE(ChannelName,'One')>0 "},
        {{{"start", "1970-01-01T00:02:03Z"}}, channelView, " WHERE ProgramStartTime>='123' "},
        {{{"end", "1970-01-01T00:02:03Z"}}, channelView, " WHERE ProgramEndTime<='123' "},
        {{{"channel_num", "7-2"}}, channelView, " WHERE ChannelNumber='7-2' "},
        {{{"antenna", "AIR"}}, programmeView, " WHERE AntennaType='AIR' "},
        {{{"scrambled", "false"}}, programmeView, " WHERE ScrambledFlag='false' "},
        {{{"service_type", "TV"}}, channelView, " WHERE ServiceType='TV' "},
        {{{"service_type", ""}}, channelView, " WHERE ServiceType='' "},
    };
    for (const auto& one : cases)
        EXPECT_EQ(where(one.parameters, one.view), one.expected);
}

TEST_F(Clauses, WhereWritesTermsInTheOrderOfTheirColumns) {
    EXPECT_EQ(where({{"scrambled", "true"}, {"antenna", "AIR"}}, channelView),
              " WHERE AntennaType='AIR' AND ScrambledFlag='true' ");
    EXPECT_EQ(where({{"start", "2013-05-06T10:11:12Z"}, {"end", "2013-05-06T10:11:13Z"}}, programmeView),
              " WHERE ProgramEndTime<='1367835073' AND ProgramStartTime>='1367835072' ");
    EXPECT_EQ(where({{"antenna", "AIR"},
                     {"channel_name", "One"},
                     {"channel_num", "7"},
                     {"end", "1970-01-01T00:00:09Z"},
                     {"name", "News"},
                     {"scrambled", "true"},
                     {"service_type", "TV"},
                     {"start", "1970-01-01T00:00:01Z"}},
                    programmeView),
              " WHERE AntennaType='AIR' AND SEARCH_SCORE(ChannelName,'One')>0 AND ChannelNumber='7' AND "
              "ProgramEndTime<='9' AND SEARCH_SCORE(ProgramName,'News')>0 AND ProgramStartTime>='1' AND "
              "ScrambledFlag='true' AND ServiceType='TV' ");
}

TEST_F(Clauses, WhereTakesAValueAsItCame) {
    ASSERT_EQ(fill(), 0);
    EXPECT_EQ(where({{"antenna", "a'' OR 1=1 -- %s\n"}}, channelView),
              " WHERE AntennaType='a'' OR 1=1 -- %s\n' ");
    const std::string quoted = where({{"name", "O'Neil"}}, channelView);
    EXPECT_EQ(quoted, " WHERE SEARCH_SCORE(ChannelName,'O'Neil')>0 ");
    EXPECT_FALSE(compiles("SELECT * FROM myView" + quoted + ";"));
}

// ORDER BY -------------------------------------------------------------------------------------------

TEST_F(Clauses, SortOrdersByTheOneColumnThatItNames) {
    EXPECT_EQ(sort({{"sort", "program_id"}}, programmeView), " ORDER BY EventId");
    EXPECT_EQ(sort({{"sort", "id"}}, channelView), " ORDER BY ChannelId");
    EXPECT_EQ(sort({{"sort", "name"}}, programmeView), " ORDER BY ProgramName");
    EXPECT_EQ(sort({{"sort", "start"}, {"sort_order", "ascend"}}, programmeView),
              " ORDER BY ProgramStartTime ASC");
    EXPECT_EQ(sort({{"sort", "channel_num"}, {"sort_order", "descend"}}, channelView),
              " ORDER BY ChannelNumber DESC");
}

TEST_F(Clauses, SortIgnoresAValueOfNoneOrSeveralColumns) {
    EXPECT_EQ(sort({}, channelView), "");
    EXPECT_EQ(sort({{"sort", "name"}}, otherView), "");
    EXPECT_EQ(sort({{"sort", ""}}, channelView), "");
    EXPECT_EQ(sort({{"sort", "name|start"}}, programmeView), "");
    EXPECT_EQ(sort({{"sort", "name|channel_name"}}, channelView), "");
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(Clauses, SortKeepsTheDirectionWithoutAColumn) {
    EXPECT_EQ(sort({{"sort_order", "descend"}}, channelView), " DESC");
    EXPECT_EQ(sort({{"sort_order", "ascend"}}, channelView), " ASC");
    EXPECT_EQ(sort({{"sort", "name|start"}, {"sort_order", "ascend"}}, programmeView), " ASC");
}

TEST_F(Clauses, SortTakesAnotherDirectionAsItCame) {
    EXPECT_EQ(sort({{"sort", "id"}, {"sort_order", "sideways"}}, channelView),
              " ORDER BY ChannelId sideways");
    EXPECT_EQ(sort({{"sort_order", ""}}, channelView), " ");
}

TEST_F(Clauses, SortWithoutMemoryLeavesTheStatementAsItWas) {
    const Parameters parameters{{"sort", "start"}, {"sort_order", "ascend"}};
    std::string sql = "SELECT 1";
    EXPECT_EQ(withoutMemory([&] { return OpenPlugin::m_getSqlSortConditions(sql, parameters, channelView); }),
              -1);
    EXPECT_EQ(sql, "SELECT 1");
}

// On the table ---------------------------------------------------------------------------------------

TEST_F(Clauses, ChannelNumbersSortAsTexts) {
    TestGuide guide;
    guide.channel(epgtest::Air, 9);
    guide.channel(epgtest::Air, 10);
    guide.use();
    ASSERT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT ChannelNumber FROM myView" + sort({{"sort", "channel_num"}}, channelView)),
                ElementsAre(ElementsAre("10"), ElementsAre("9")));
}

TEST_F(Clauses, TimesSortAndCompareAsNumbers) {
    TestGuide guide;
    const auto channel = guide.channel(epgtest::Air, 1);
    guide.programme(channel, 999'999, 1'000'000, "Early", 1)
        .programme(channel, 1'000'000, 1'000'100, "Late", 2);
    guide.use();
    ASSERT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT ProgramName FROM myView" + sort({{"sort", "start"}}, programmeView)),
                ElementsAre(ElementsAre("Early"), ElementsAre("Late")));
    EXPECT_THAT(
        rows("SELECT ProgramName FROM myView" + where({{"start", "1970-01-12T13:46:39Z"}}, programmeView)),
        ElementsAre(ElementsAre("Early"), ElementsAre("Late")));
    EXPECT_THAT(
        rows("SELECT ProgramName FROM myView" + where({{"end", "1970-01-12T13:46:40Z"}}, programmeView)),
        ElementsAre(ElementsAre("Early")));
}

}  // namespace
