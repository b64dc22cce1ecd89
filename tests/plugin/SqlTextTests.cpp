#include <gmock/gmock.h>

#include <list>
#include <map>
#include <string>
#include <vector>

#include "tests/plugin/TableTest.h"
#include "tests/set/middleware/ProcessZone.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::vector<std::string> allColumns = {
    "ChannelId",      "ChannelName", "ChannelPath",  "ChannelNumber", "AntennaType",     "ScrambledFlag",
    "ServiceType",    "ThumbURI",    "EventId",      "ProgramName",   "ProgramSynopsis", "ProgramStartTime",
    "ProgramEndTime", "ScheduleId",  "ScheduleType", "Repeat",        "ProgramCRID"};
const std::vector<int> allCodes = {1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

std::vector<std::string> columnsOf(std::string query) {
    std::list<std::string> columns;
    OpenPlugin::m_extractColsFrmQuery(query, &columns);
    return {columns.begin(), columns.end()};
}

std::vector<int> codesOf(std::string query) {
    std::vector<int> codes;
    OpenPlugin::m_extractColsFrmQueryInt(query, &codes);
    return codes;
}

std::string escaped(std::string text) {
    OpenPlugin::m_replaceSingleQuotes(text);
    return text;
}

std::string viewNameOf(const std::string& sql) {
    std::string name;
    OpenPlugin::m_getViewNameFrmSql(sql, name);
    return name;
}

std::string tableNameOf(const std::string& sql) {
    std::string name;
    OpenPlugin::m_getTableNameFrmSql(sql, name);
    return name;
}

template <typename T>
std::vector<T> twice(const std::vector<T>& list) {
    std::vector<T> doubled = list;
    doubled.insert(doubled.end(), list.begin(), list.end());
    return doubled;
}

// Columns ---------------------------------------------------------------------------------------------

TEST(ColumnExtraction, ListsTheTemplatesColumnsInTableOrder) {
    EXPECT_THAT(columnsOf(GuideTable::schemaTemplate),
                ElementsAre("ChannelId", "ChannelName", "ChannelPath", "ChannelNumber", "AntennaType",
                            "ScrambledFlag", "ServiceType", "EventId", "ProgramName", "ProgramStartTime",
                            "ProgramEndTime", "ScheduleId", "ScheduleType", "Repeat"));
    EXPECT_THAT(codesOf(GuideTable::schemaTemplate),
                ElementsAre(1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14));
}

TEST(ColumnExtraction, FollowsItsOwnOrderWhateverTheTextsOrder) {
    std::string reversed;
    for (auto name = allColumns.rbegin(); name != allColumns.rend(); ++name)
        reversed += *name + ", ";
    EXPECT_EQ(columnsOf(reversed), allColumns);
    EXPECT_EQ(codesOf(reversed), allCodes);
}

TEST(ColumnExtraction, GivesThumbAndSynopsisNoCode) {
    EXPECT_THAT(columnsOf("ThumbURI ProgramSynopsis"), ElementsAre("ThumbURI", "ProgramSynopsis"));
    EXPECT_THAT(codesOf("ThumbURI ProgramSynopsis"), IsEmpty());
}

TEST(ColumnExtraction, FindsANameInsideALongerWord) {
    EXPECT_THAT(columnsOf("MyEventIds"), ElementsAre("EventId"));
    EXPECT_THAT(codesOf("MyEventIds"), ElementsAre(8));
}

TEST(ColumnExtraction, IsCaseSensitive) {
    EXPECT_THAT(columnsOf("channelid CHANNELNAME repeat"), IsEmpty());
    EXPECT_THAT(codesOf("channelid CHANNELNAME repeat"), IsEmpty());
}

TEST(ColumnExtraction, ListsANameOnceHoweverOftenItOccurs) {
    EXPECT_THAT(columnsOf("Repeat, Repeat"), ElementsAre("Repeat"));
    EXPECT_THAT(codesOf("Repeat, Repeat"), ElementsAre(14));
}

TEST(ColumnExtraction, AppendsToWhatTheListHolds) {
    std::string query = "Repeat";
    std::list<std::string> columns = {"before"};
    std::vector<int> codes = {99};
    OpenPlugin::m_extractColsFrmQuery(query, &columns);
    OpenPlugin::m_extractColsFrmQueryInt(query, &codes);
    EXPECT_THAT(columns, ElementsAre("before", "Repeat"));
    EXPECT_THAT(codes, ElementsAre(99, 14));
}

TEST(ColumnExtraction, TakesATimeWithAnEqualsSignForACondition) {
    EXPECT_THAT(columnsOf("ProgramStartTime='5'"), IsEmpty());
    EXPECT_THAT(codesOf("ProgramStartTime='5'"), IsEmpty());
    EXPECT_THAT(columnsOf("ProgramEndTime='5'"), IsEmpty());
    EXPECT_THAT(codesOf("ProgramEndTime='5'"), IsEmpty());

    EXPECT_THAT(columnsOf("ProgramStartTime, ProgramEndTime"),
                ElementsAre("ProgramStartTime", "ProgramEndTime"));
    EXPECT_THAT(codesOf("ProgramStartTime, ProgramEndTime"), ElementsAre(10, 11));
    EXPECT_THAT(codesOf("ProgramStartTime ='5'"), ElementsAre(10)) << "only the very next character counts";
    EXPECT_THAT(codesOf("ProgramEndTime"), ElementsAre(11)) << "at the end of the text";
}

TEST(ColumnExtraction, LooksAtTheFirstOccurrenceOfATimeOnly) {
    EXPECT_THAT(columnsOf("ProgramStartTime='5', ProgramStartTime"), IsEmpty());
    EXPECT_THAT(codesOf("ProgramStartTime='5', ProgramStartTime"), IsEmpty());
    EXPECT_THAT(codesOf("ProgramEndTime, ProgramEndTime='5'"), ElementsAre(11));
}

TEST(ColumnExtraction, ListsOtherColumnsBeforeAnEqualsSign) {
    EXPECT_THAT(columnsOf("ChannelId='5'"), ElementsAre("ChannelId"));
    EXPECT_THAT(codesOf("ChannelId='5'"), ElementsAre(1));
}

TEST(ColumnExtraction, ListsEveryColumnForAStar) {
    EXPECT_EQ(columnsOf("CREATE VIEW x AS SELECT * FROM y"), allColumns);
    EXPECT_EQ(codesOf("CREATE VIEW x AS SELECT * FROM y"), allCodes);
    EXPECT_THAT(columnsOf("CREATE VIEW x AS SELECT *"), IsEmpty()) << "without a blank behind the star";
    EXPECT_THAT(codesOf("CREATE VIEW x AS SELECT *"), IsEmpty());
}

TEST(ColumnExtraction, ListsNamesTwiceBesideAStar) {
    std::string query = "AS SELECT * ";
    for (const auto& name : allColumns)
        query += name + " ";
    EXPECT_EQ(columnsOf(query), twice(allColumns));
    EXPECT_EQ(codesOf(query), twice(allCodes));
}

// CREATE TABLE ----------------------------------------------------------------------------------------

TEST(CreateStatement, IsMadeFromTheTemplate) {
    std::string sql;
    std::string table = "myView";
    OpenPlugin::m_getCreateTblSql(GuideTable::schemaTemplate, sql, table);
    EXPECT_EQ(sql, createTableSql);
}

TEST(CreateStatement, KnowsTheColumnsThatTheTemplateLeavesOut) {
    std::string sql;
    std::string table = "wide";
    OpenPlugin::m_getCreateTblSql("ThumbURI ProgramSynopsis ProgramCRID", sql, table);
    EXPECT_EQ(sql,
              "CREATE TABLE wide (ThumbURI varchar(255), ProgramSynopsis varchar(1), "
              "ProgramCRID varchar(255));");
}

TEST(CreateStatement, IsAppendedToTheText) {
    std::string sql = "before ";
    std::string table = "t";
    std::list<std::string> definitions = {"a int", "b int"};
    OpenPlugin::m_formatCreateSql(definitions, sql, table);
    EXPECT_EQ(sql, "before CREATE TABLE t (a int, b int);");
}

TEST(CreateStatement, HasNoSeparatorForOneDefinition) {
    std::string sql;
    std::string table = "t";
    std::list<std::string> definitions = {"a int"};
    OpenPlugin::m_formatCreateSql(definitions, sql, table);
    EXPECT_EQ(sql, "CREATE TABLE t (a int);");
}

TEST(CreateStatement, StaysOpenWithoutDefinitions) {
    std::string sql;
    std::string table = "t";
    std::list<std::string> definitions;
    OpenPlugin::m_formatCreateSql(definitions, sql, table);
    EXPECT_EQ(sql, "CREATE TABLE t (");
}

// INSERT ----------------------------------------------------------------------------------------------

std::string insertOf(std::list<std::string> values, std::string sql = "") {
    std::string table = "myView";
    OpenPlugin::m_getInsertSql(&values, sql, table);
    return sql;
}

TEST(InsertStatement, QuotesEveryValue) {
    EXPECT_EQ(insertOf({"a", "", "17"}), "INSERT INTO myView values('a', '', '17');");
}

TEST(InsertStatement, HasNoSeparatorForOneValue) {
    EXPECT_EQ(insertOf({"x"}), "INSERT INTO myView values('x');");
}

TEST(InsertStatement, IsAppendedToTheText) {
    EXPECT_EQ(insertOf({"x"}, "before "), "before INSERT INTO myView values('x');");
}

TEST(InsertStatement, StaysOpenWithoutValues) {
    EXPECT_EQ(insertOf({}), "INSERT INTO myView values(");
}

TEST(InsertStatement, HoldsEscapedValues) {
    std::list<std::string> values;
    std::string name = "O'Neil";
    OpenPlugin::m_addItemsToInsertSql(&values, name);
    std::string quote = "'";
    OpenPlugin::m_addItemsToInsertSql(&values, quote);
    EXPECT_EQ(insertOf(values), "INSERT INTO myView values('O''Neil', '''');");
}

TEST(InsertStatement, LeavesTheCallersValueEscaped) {
    std::list<std::string> values;
    std::string name = "O'Neil";
    OpenPlugin::m_addItemsToInsertSql(&values, name);
    EXPECT_EQ(name, "O''Neil");
    OpenPlugin::m_addItemsToInsertSql(&values, name);
    EXPECT_THAT(values, ElementsAre("O''Neil", "O''''Neil"));
}

// Quotes ----------------------------------------------------------------------------------------------

TEST(QuoteEscaping, DoublesEachQuoteOnce) {
    EXPECT_EQ(escaped("O'Neil"), "O''Neil");
    EXPECT_EQ(escaped("'"), "''");
    EXPECT_EQ(escaped("''"), "''''");
    EXPECT_EQ(escaped("''''"), "''''''''");
    EXPECT_EQ(escaped("'a'b'"), "''a''b''");
    EXPECT_EQ(escaped("at the end'"), "at the end''");
}

TEST(QuoteEscaping, DoublesAgainOnASecondCall) {
    EXPECT_EQ(escaped(escaped("O'Neil")), "O''''Neil");
}

TEST(QuoteEscaping, LeavesOtherTextsAlone) {
    EXPECT_EQ(escaped(""), "");
    EXPECT_EQ(escaped("plain \"text\" `too`"), "plain \"text\" `too`");
}

// Names -----------------------------------------------------------------------------------------------

TEST(NameAfterAKeyword, EndsAtABlank) {
    EXPECT_EQ(viewNameOf("CREATE VIEW abc AS x"), "abc");
    EXPECT_EQ(tableNameOf("SELECT * FROM abc WHERE x"), "abc");
    EXPECT_EQ(viewNameOf(GuideTable::schemaTemplate), "myView");
}

TEST(NameAfterAKeyword, EndsAtASemicolonWithoutABlank) {
    EXPECT_EQ(viewNameOf("CREATE VIEW abc;"), "abc");
    EXPECT_EQ(tableNameOf(GuideTable::schemaTemplate), "masterEPG");
}

TEST(NameAfterAKeyword, PrefersABlankToAnEarlierSemicolon) {
    EXPECT_EQ(viewNameOf("CREATE VIEW abc;x AS y"), "abc;x");
}

TEST(NameAfterAKeyword, IsMissingWithoutAnEnd) {
    EXPECT_EQ(viewNameOf("CREATE VIEW abc"), "");
    EXPECT_EQ(tableNameOf("SELECT * FROM abc"), "");
}

TEST(NameAfterAKeyword, FollowsTheFirstKeyword) {
    EXPECT_EQ(viewNameOf("VIEW one VIEW two "), "one");
}

TEST(NameAfterAKeyword, IsAppended) {
    std::string name = "before ";
    OpenPlugin::m_getViewNameFrmSql("CREATE VIEW abc;", name);
    EXPECT_EQ(name, "before abc");
    OpenPlugin::m_getTableNameFrmSql("FROM def;", name);
    EXPECT_EQ(name, "before abcdef");
}

TEST(NameAfterAKeyword, HasAtMost32Characters) {
    const std::string longest(32, 'n');
    EXPECT_EQ(viewNameOf("CREATE VIEW " + longest + " AS x"), longest);

    const std::string tooLong(100'000, 'n');
    EXPECT_LE(viewNameOf("CREATE VIEW " + tooLong + " AS x").size(), 32U);
    EXPECT_LE(viewNameOf("CREATE VIEW " + tooLong + ";").size(), 32U);
    EXPECT_LE(tableNameOf("FROM " + tooLong + ";").size(), 32U);
}

TEST(NameAfterAKeyword, KeepsTheGivenTextWithoutAKeywordOrBehindAKeywordAtTheEnd) {
    for (const char* sql :
         {"", "VIEW", "FROM", "CREATE VIEW", "no keyword", "no keyword;", "VIEW;", "FROM "}) {
        std::string view = "kept";
        OpenPlugin::m_getViewNameFrmSql(sql, view);
        EXPECT_THAT(view, StartsWith("kept")) << sql;
        std::string table = "kept";
        OpenPlugin::m_getTableNameFrmSql(sql, table);
        EXPECT_THAT(table, StartsWith("kept")) << sql;
    }
}

// Table list ------------------------------------------------------------------------------------------

TEST(TableList, HoldsATableUnderANonEmptyText) {
    std::map<std::string, std::string> tables = {{"made", "a text"}, {"empty", ""}};
    const auto created = [&tables](std::string name) { return OpenPlugin::m_TableCreated(name, tables); };
    EXPECT_TRUE(created("made"));
    EXPECT_FALSE(created("empty"));
    EXPECT_FALSE(created("unknown"));
    EXPECT_FALSE(created("MADE"));
}

// Times -----------------------------------------------------------------------------------------------

TEST(TimeTexts, AreReadAsLocalTime) {
    {
        const epgset::ProcessZone utc("UTC");
        EXPECT_EQ(OpenPlugin::m_getIntFrmDateTimeString("1970-01-02T00:00:00"), 86'400);
        EXPECT_EQ(OpenPlugin::m_getIntFrmDateTimeString("2013-05-06T10:11:12"), 1'367'835'072);
    }
    const epgset::ProcessZone nineEast("JST-9");
    EXPECT_EQ(OpenPlugin::m_getIntFrmDateTimeString("1970-01-02T00:00:00"), 86'400 - 9 * 3600);
}

struct TimeTextReader {
    const char* prefix;
    int (*read)(const std::string& sql, std::string& time);
};

class TimeInAStatement : public testing::TestWithParam<TimeTextReader> {};

TEST_P(TimeInAStatement, IsTheTextInQuotes) {
    std::string time = "before ";
    EXPECT_EQ(GetParam().read("WHERE " + std::string(GetParam().prefix) + "='123' AND x='4'", time), 0);
    EXPECT_EQ(time, "before 123");
}

TEST_P(TimeInAStatement, IsMissingWithoutItsPrefix) {
    std::string time = "before";
    for (const char* sql : {"", "WHERE x='4'", "ProgramStartTime>='1' ProgramEndTime<='2'",
                            "ProgramStartTime ='1' ProgramEndTime ='2'"})
        EXPECT_EQ(GetParam().read(sql, time), -1) << sql;
    EXPECT_EQ(time, "before");
}

TEST_P(TimeInAStatement, HasAtMost32Characters) {
    const std::string prefix = std::string(GetParam().prefix) + "='";
    std::string fits;
    EXPECT_EQ(GetParam().read(prefix + std::string(32, '1') + "'", fits), 0);
    EXPECT_EQ(fits, std::string(32, '1'));
    std::string cut;
    GetParam().read(prefix + std::string(100'000, '1') + "'", cut);
    EXPECT_LE(cut.size(), 32U);
}

INSTANTIATE_TEST_SUITE_P(
    , TimeInAStatement,
    testing::Values(TimeTextReader{"ProgramStartTime", &OpenPlugin::m_getPrgStartTimeFrmSql},
                    TimeTextReader{"ProgramEndTime", &OpenPlugin::m_getPrgEndTimeFrmSql}),
    [](const auto& instance) { return instance.param.prefix; });

TEST(ProgrammeTime, IsInARangeBothEndsIncluded) {
    EXPECT_TRUE(OpenPlugin::m_isProgramTimeInQueryRange(10, 20, 10, 20));
    EXPECT_TRUE(OpenPlugin::m_isProgramTimeInQueryRange(11, 19, 10, 20));
    EXPECT_FALSE(OpenPlugin::m_isProgramTimeInQueryRange(9, 20, 10, 20));
    EXPECT_FALSE(OpenPlugin::m_isProgramTimeInQueryRange(10, 21, 10, 20));
}

}  // namespace
}  // namespace epgtest
