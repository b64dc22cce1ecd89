// What the service accepts as query parameters.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/plugin/TableTest.h"

namespace {

using Container::Logger;
using epgtest::LogLine;
using epgtest::OpenPlugin;
using epgtest::TestQuery;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class QueryParameters : public epgtest::TableTest {
protected:
    static int validate(const char* query) { return OpenPlugin::m_validateQueryParams(TestQuery(query)); }
};

/// A query record with a name or a value missing, which the parser itself never makes.
struct RecordOfTwo {
    std::string firstName, firstValue, secondName, secondValue;
    char* names[2] = {firstName.data(), secondName.data()};
    char* values[2] = {firstValue.data(), secondValue.data()};
    TARNO_rstr_uri_query_st record{2, names, values};
};

TEST_F(QueryParameters, AreFieldNamesOfAFixedSet) {
    for (const char* name : {"name", "id", "channel_num", "channel_name", "program_id", "program_name",
                             "scrambled", "antenna", "service_type", "start", "end"})
        EXPECT_EQ(OpenPlugin::m_validateQueryParamsFieldName(name), 0) << name;
}

TEST_F(QueryParameters, AreFieldNamesExactly) {
    for (const char* name : {"", "Name", "NAME", "name ", " name", "channel_id", "channel_path", "synopsis",
                             "ChannelName", "name|id", "nam", "names", "status", "repeat"})
        EXPECT_EQ(OpenPlugin::m_validateQueryParamsFieldName(name), -1) << name;
    EXPECT_EQ(OpenPlugin::m_validateQueryParamsFieldName(std::string("name\0", 5)), -1);
}

TEST_F(QueryParameters, PassWhenThereAreNone) {
    EXPECT_EQ(OpenPlugin::m_validateQueryParams(nullptr), 0);
    EXPECT_EQ(validate(""), 0);
}

TEST_F(QueryParameters, PassWithTheirAcceptedValues) {
    for (const char* query :
         {"sort=name", "sort=name&sort_order=ascend", "sort=program_id&sort_order=descend",
          "sort_order=ascend", "scrambled=true", "scrambled=false", "start=2026-08-23T10:00:00Z",
          "end=2026-08-23T10:00:00%2B09:00", "start=1970-01-01T00:00:00Z", "select=name",
          "select=name|start|end"})
        EXPECT_EQ(validate(query), 0) << query;
}

TEST_F(QueryParameters, FailWithOtherValues) {
    for (const char* query : {"sort=Name",
                              "sort=channel_id",
                              "sort=name|id",
                              "sort=",
                              "sort",
                              "sort=name|",
                              "sort_order=ASC",
                              "sort_order=Ascend",
                              "sort_order=",
                              "sort_order=desc",
                              "scrambled=TRUE",
                              "scrambled=True",
                              "scrambled=1",
                              "scrambled=0",
                              "scrambled=",
                              "start=",
                              "start=now",
                              "start=2026-08-23T10:00:00",
                              "end=",
                              "end=2026-08-23T10:00:00.5Z",
                              "end=x",
                              "select=name|nothing",
                              "select=nothing",
                              "select=name|channel_id",
                              "select=name,start",
                              "select=name | start",
                              "select=Name"})
        EXPECT_EQ(validate(query), -1) << query;
}

TEST_F(QueryParameters, FailQuietly) {
    for (const char* query : {"sort=Name", "sort_order=ASC", "scrambled=1", "select=nothing"})
        validate(query);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(QueryParameters, SelectDropsEmptyPieces) {
    for (const char* query : {"select=", "select", "select=|", "select=|||", "select=|name", "select=name|",
                              "select=name||start"})
        EXPECT_EQ(validate(query), 0) << query;
}

TEST_F(QueryParameters, OfOtherNamesAreNotLookedAt) {
    for (const char* query : {"unknown=whatever", "items_max=0", "items_max=x", "items_start_index=-1",
                              "Sort=x", "name='", "channel_name=", "program_name=%FF", "channel_num=x",
                              "antenna=MOON", "service_type=x", "id=x", "channel_id=x", "=x"})
        EXPECT_EQ(validate(query), 0) << query;
}

TEST_F(QueryParameters, LogATimeAsTextAndNumber) {
    EXPECT_EQ(validate("start=2013-05-06T10:11:12Z&end=2013-05-06T10:11:13%2B00:00"), 0);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "end string: 2013-05-06T10:11:13+00:00\n"),
                                      LogLine(Logger::Trace, "end int: 1367835073\n"),
                                      LogLine(Logger::Trace, "start string: 2013-05-06T10:11:12Z\n"),
                                      LogLine(Logger::Trace, "start int: 1367835072\n")));
}

TEST_F(QueryParameters, LogATimeBeforeTheyRefuseIt) {
    EXPECT_EQ(validate("start=soon"), -1);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "start string: soon\n"),
                                      LogLine(Logger::Trace, "start int: -1\n")));
}

TEST_F(QueryParameters, StartMayNotBeLaterThanEnd) {
    EXPECT_EQ(validate("start=2026-08-23T10:00:00Z&end=2026-08-23T09:00:00Z"), -1);
    EXPECT_EQ(logged().back(), LogLine(Logger::Warning, "!!startTime is later than the start time\n"));
}

TEST_F(QueryParameters, StartMayEqualEnd) {
    EXPECT_EQ(validate("start=2026-08-23T10:00:00Z&end=2026-08-23T10:00:00Z"), 0);
    EXPECT_EQ(validate("start=2026-08-23T10:00:00Z&end=2026-08-23T19:00:00%2B09:00"), 0);
    EXPECT_EQ(validate("start=1970-01-01T00:00:00Z&end=1970-01-01T00:00:00Z"), 0);
    EXPECT_THAT(log.messagesOf("Vexmoor/EpgSQLPluginVexmoor", Logger::Warning), IsEmpty());
}

TEST_F(QueryParameters, AnEndAtTheEpochIsComparedToo) {
    EXPECT_EQ(validate("start=1970-01-01T00:00:01Z&end=1970-01-01T00:00:00Z"), -1);
}

TEST_F(QueryParameters, HoldTimesInASigned32BitNumber) {
    EXPECT_EQ(validate("start=2038-01-19T03:14:07Z"), 0);
    EXPECT_EQ(validate("start=2038-01-19T03:14:08Z"), -1);
    EXPECT_EQ(validate("end=2040-01-01T00:00:00Z"), -1);
    // 2^32 seconds, by a calendar in which 2100 is a leap year.
    EXPECT_EQ(validate("start=2106-02-06T06:28:15Z"), -1);
    EXPECT_EQ(validate("start=2106-02-06T06:28:16Z"), 0);
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "start int: 0\n"));
}

TEST_F(QueryParameters, AreWalkedInTheOrderOfTheirNamesUpToTheFirstThatFails) {
    EXPECT_EQ(validate("start=2013-05-06T10:11:12Z&sort_order=ASC&select=nothing&end=2013-05-06T10:11:12Z"),
              -1);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "end string: 2013-05-06T10:11:12Z\n"),
                                      LogLine(Logger::Trace, "end int: 1367835072\n")));
    log.clear();
    EXPECT_EQ(validate("start=x&end=x"), -1);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "end string: x\n"),
                                      LogLine(Logger::Trace, "end int: -1\n")));
}

TEST_F(QueryParameters, TheLastOfOneNameCounts) {
    EXPECT_EQ(validate("sort=nothing&sort=name"), 0);
    EXPECT_EQ(validate("sort=name&sort=nothing"), -1);
    EXPECT_EQ(validate("start=2026-08-23T10:00:00Z&end=2026-08-23T09:00:00Z&start=2026-08-23T08:00:00Z"), 0);
}

TEST_F(QueryParameters, WithoutANameOrAValueAreSkipped) {
    RecordOfTwo query{"sort", "nothing", "scrambled", "true"};
    EXPECT_EQ(OpenPlugin::m_validateQueryParams(&query.record), -1);
    query.values[0] = nullptr;
    EXPECT_EQ(OpenPlugin::m_validateQueryParams(&query.record), 0);
    EXPECT_THAT(OpenPlugin::m_copyQueryParams(&query.record), ElementsAre(Pair("scrambled", "true")));
    query.names[1] = nullptr;
    EXPECT_THAT(OpenPlugin::m_copyQueryParams(&query.record), IsEmpty());
}

TEST_F(QueryParameters, AValueThatIsMissingDoesNotReplaceAnEarlierOne) {
    RecordOfTwo query{"sort", "name", "sort", "nothing"};
    query.values[1] = nullptr;
    EXPECT_THAT(OpenPlugin::m_copyQueryParams(&query.record), ElementsAre(Pair("sort", "name")));
}

TEST_F(QueryParameters, AreCopiedByName) {
    EXPECT_THAT(
        OpenPlugin::m_copyQueryParams(TestQuery("sort=name&antenna=AIR&Zone=1&antenna=CABLE&empty=")),
        ElementsAre(Pair("Zone", "1"), Pair("antenna", "CABLE"), Pair("empty", ""), Pair("sort", "name")));
    EXPECT_THAT(OpenPlugin::m_copyQueryParams(nullptr), IsEmpty());
}

// Paging ---------------------------------------------------------------------------------------------

struct Page {
    bool accepted;
    std::string itemsMax, startIndex;

    bool operator==(const Page& other) const {
        return accepted == other.accepted && itemsMax == other.itemsMax && startIndex == other.startIndex;
    }
    friend void PrintTo(const Page& page, std::ostream* out) {
        *out << (page.accepted ? "accepted" : "refused") << " '" << page.itemsMax << "' '" << page.startIndex
             << "'";
    }
};

Page pageOf(const OpenPlugin::ParameterMap& parameters) {
    Page page{false, "", ""};
    page.accepted = OpenPlugin::m_getPagingParams(parameters, page.itemsMax, page.startIndex);
    return page;
}

TEST_F(QueryParameters, PagingTextsAreKeptAsTheyAre) {
    EXPECT_EQ(pageOf({{"items_max", "5x"}, {"items_start_index", "10"}}), (Page{true, "5x", "10"}));
    EXPECT_EQ(pageOf({{"items_max", " 7"}, {"items_start_index", "x"}}), (Page{true, " 7", "x"}));
    EXPECT_EQ(pageOf({{"items_max", "99999999999"}}), (Page{true, "99999999999", ""}));
}

TEST_F(QueryParameters, PagingTextsThatAreEmptyCountAsAbsent) {
    EXPECT_EQ(pageOf({}), (Page{true, "", ""}));
    EXPECT_EQ(pageOf({{"items_max", ""}, {"items_start_index", ""}}), (Page{true, "", ""}));
}

TEST_F(QueryParameters, AMaximumBelowOneIsRefused) {
    for (const char* text : {"0", "-1", "x", "x5", " ", "0x10", "-2147483648"})
        EXPECT_FALSE(pageOf({{"items_max", text}}).accepted) << text;
}

TEST_F(QueryParameters, AStartIndexBelowZeroIsRefused) {
    for (const char* text : {"-1", "-5x", " -2", "-2147483648"})
        EXPECT_FALSE(pageOf({{"items_start_index", text}}).accepted) << text;
    for (const char* text : {"0", "-0", "x", "-", "-x", "2147483647"})
        EXPECT_TRUE(pageOf({{"items_start_index", text}}).accepted) << text;
}

}  // namespace
