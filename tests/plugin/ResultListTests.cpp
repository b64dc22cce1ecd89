// Pages of a result as lists of an answer.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "set/database/OpenConnections.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/DocumentCalls.h"

namespace {

using Container::Logger;
using epgtest::LogLine;
using epgtest::OpenPlugin;
using epgtest::TestDocument;
using testing::ElementsAre;
using testing::IsEmpty;

/// One of the list writers.
struct List {
    const char* name;
    decltype(&OpenPlugin::m_getPrgmListResults) write;
};

constexpr List channelList{"Channels", &OpenPlugin::m_getChnlListResults};
constexpr List channelProgrammeList{"ProgrammesOfAChannel", &OpenPlugin::m_getPrgmListForChnlResults};
constexpr List programmeList{"Programmes", &OpenPlugin::m_getPrgmListResults};

constexpr int defaultColumns = 1;
constexpr int chosenColumns = 4;

/// A statement whose row i has the one column ChannelNumber with the value i.
std::string numbers(int count) {
    return "WITH RECURSIVE number(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM number WHERE i<" +
           std::to_string(count) + ") SELECT i AS ChannelNumber FROM number WHERE i<" + std::to_string(count);
}

/// The answer that holds rows `first` to `first` + `count` - 1 of numbers(`total`).
std::string page(int first, int count, int startIndex, int total) {
    std::string items;
    for (int i = first; i < first + count; ++i)
        items +=
            (items.empty() ? "" : ",") + std::string(R"({"channel_num":")") + std::to_string(i) + R"("})";
    return R"({"items":[)" + items + R"(],"items_start_index":)" + std::to_string(startIndex) +
           R"(,"items_count":)" + std::to_string(count) + R"(,"items_total":)" + std::to_string(total) + "}";
}

class ResultListBase : public epgtest::TableTest {
protected:
    /// The answer as JSON; the status must be the expected one.
    std::string answer(const List& list, const std::string& sql, const std::string& itemsMax = "",
                       const std::string& startIndex = "", int kind = chosenColumns, int status = 200) const {
        const TestDocument document;
        EXPECT_EQ(list.write(sql, document, itemsMax, startIndex, kind, database), status) << sql;
        EXPECT_EQ(epgset::openStatementCount(), 0u) << "a statement was left open";
        return document.json();
    }
};

class EveryResultList : public ResultListBase, public testing::WithParamInterface<List> {
protected:
    std::string answer(const std::string& sql, const std::string& itemsMax = "",
                       const std::string& startIndex = "", int kind = chosenColumns, int status = 200) const {
        return ResultListBase::answer(GetParam(), sql, itemsMax, startIndex, kind, status);
    }
};

INSTANTIATE_TEST_SUITE_P(Of, EveryResultList,
                         testing::Values(channelList, channelProgrammeList, programmeList),
                         [](const auto& list) { return std::string(list.param.name); });

TEST_P(EveryResultList, HoldsTheTimesOfEachRow) {
    EXPECT_EQ(
        answer("SELECT column1 AS ProgramEndTime, column2 AS ProgramStartTime FROM (VALUES(60,0),(120,60),"
               "(60,60),(180,'120'),(0,180))"),
        R"({"items":[)"
        R"({"end":"1970-01-01T00:01:00+00:00","start":"1970-01-01T00:00:00+00:00"},)"
        R"({"end":"1970-01-01T00:02:00+00:00","start":"1970-01-01T00:01:00+00:00"},)"
        R"({"end":"1970-01-01T00:01:00+00:00","start":"1970-01-01T00:01:00+00:00"},)"
        R"({"end":"1970-01-01T00:03:00+00:00","start":"1970-01-01T00:02:00+00:00"},)"
        R"({"end":"1970-01-01T00:00:00+00:00","start":"1970-01-01T00:03:00+00:00"}],)"
        R"("items_start_index":0,"items_count":5,"items_total":5})");
}

TEST_P(EveryResultList, HoldsTheRowsInOrderAndThreeCounts) {
    EXPECT_EQ(answer(numbers(3)), page(0, 3, 0, 3));
}

TEST_P(EveryResultList, ThatIsEmptyHasNoCounts) {
    EXPECT_EQ(answer(numbers(0), "", "", chosenColumns, 204), R"({"items":[]})");
    EXPECT_EQ(answer(numbers(0), "5", "10", chosenColumns, 204), R"({"items":[]})");
}

TEST_P(EveryResultList, HoldsThePageOfAMaximumAndAStart) {
    EXPECT_EQ(answer(numbers(12), "5", "10"), page(10, 2, 10, 12));
    EXPECT_EQ(answer(numbers(12), "5", "3"), page(3, 5, 3, 12));
    EXPECT_EQ(answer(numbers(12), "5", "0"), page(0, 5, 0, 12));
    EXPECT_EQ(answer(numbers(12), "1", "11"), page(11, 1, 11, 12));
    EXPECT_EQ(answer(numbers(300), "250", "0"), page(0, 250, 0, 300));
}

TEST_P(EveryResultList, HoldsTheFirstPageOfAMaximum) {
    EXPECT_EQ(answer(numbers(12), "5"), page(0, 5, 0, 12));
    EXPECT_EQ(answer(numbers(12), "12"), page(0, 12, 0, 12));
    EXPECT_EQ(answer(numbers(12), "13"), page(0, 12, 0, 12));
}

TEST_P(EveryResultList, BeyondTheLastRowIsEmptyAndCounted) {
    EXPECT_EQ(answer(numbers(12), "", "12"), page(0, 0, 12, 12));
    EXPECT_EQ(answer(numbers(12), "5", "1000"), page(0, 0, 1000, 12));
    EXPECT_EQ(answer(numbers(2), "", "2147483647"), page(0, 0, 2147483647, 2));
}

TEST_P(EveryResultList, ReadsTheNumberThatAPagingTextBeginsWith) {
    EXPECT_EQ(answer(numbers(12), "5x", " 3 "), page(3, 5, 3, 12));
    EXPECT_EQ(answer(numbers(12), "5", "x"), page(0, 5, 0, 12));
}

TEST_P(EveryResultList, IgnoresAMaximumBelowOne) {
    for (const char* maximum : {"0", "-1", "x"})
        EXPECT_EQ(answer(numbers(201), maximum), page(0, 200, 0, 201));
}

TEST_P(EveryResultList, IgnoresAStartBelowZero) {
    EXPECT_EQ(answer(numbers(12), "5", "-1"), page(0, 5, 0, 12));
}

TEST_P(EveryResultList, ReckonsTheEndOfThePageWithoutOverflow) {
    EXPECT_EQ(answer(numbers(3), "2147483647", "1"), page(1, 2, 1, 3));
    EXPECT_EQ(answer(numbers(3), "2147483647", "2147483647"), page(0, 0, 2147483647, 3));
    EXPECT_EQ(answer(numbers(3), "99999999999"), page(0, 3, 0, 3));
}

TEST_P(EveryResultList, EndsEachRowWithPlaceholdersUnlessTheClientChoseTheColumns) {
    for (const int kind : {1, 2, 5})
        EXPECT_EQ(answer("SELECT 'TV' AS ServiceType, 'z' AS zone", "", "", kind),
                  R"({"items":[{"service_type":"TV","zone":"z","thumb_uri":")" + std::string(placeholderUrl) +
                      R"(","category":"TBD"}],"items_start_index":0,"items_count":1,"items_total":1})");
    EXPECT_EQ(answer("SELECT 'TV' AS ServiceType", "1", "0", 2),
              R"({"items":[{"service_type":"TV","thumb_uri":")" + std::string(placeholderUrl) +
                  R"(","category":"TBD"}],"items_start_index":0,"items_count":1,"items_total":1})");
    EXPECT_EQ(answer("SELECT 'TV' AS ServiceType", "", "", 4),
              R"({"items":[{"service_type":"TV"}],"items_start_index":0,"items_count":1,"items_total":1})");
}

TEST_P(EveryResultList, AttachesEachObjectBeforeItIsFilled) {
    const epgtest::DocumentCalls calls;
    answer(numbers(2), "", "", defaultColumns);
    EXPECT_THAT(
        calls.lines,
        ElementsAre("make object 1", "root \"items\": object 1",                                        //
                    "make object 2", "object 1 unnamed: object 2", "object 2 \"channel_num\": text 0",  //
                    "object 2 \"thumb_uri\": text " + std::string(placeholderUrl),
                    "object 2 \"category\": text TBD",                                                  //
                    "make object 3", "object 1 unnamed: object 3", "object 3 \"channel_num\": text 1",  //
                    "object 3 \"thumb_uri\": text " + std::string(placeholderUrl),
                    "object 3 \"category\": text TBD", "root \"items_start_index\": integer 0",
                    "root \"items_count\": integer 2", "root \"items_total\": integer 2"));
}

TEST_P(EveryResultList, MakesObjectsOnlyForTheRowsOfThePage) {
    const epgtest::DocumentCalls calls;
    answer(numbers(5), "1", "3");
    EXPECT_THAT(calls.lines,
                ElementsAre("make object 1", "root \"items\": object 1", "make object 2",
                            "object 1 unnamed: object 2", "object 2 \"channel_num\": text 3",
                            "root \"items_start_index\": integer 3", "root \"items_count\": integer 1",
                            "root \"items_total\": integer 5"));
}

TEST_P(EveryResultList, EndsWhenAnObjectCannotBeMade) {
    const char* const soFar[] = {"{}", R"({"items":[]})", R"({"items":[{"channel_num":"0"}]})"};
    for (int objects = 0; objects < 3; ++objects) {
        for (const char* maximum : {"", "5"}) {
            const TestDocument document;
            epgset::failDocumentObjectsAfter(objects);
            EXPECT_EQ(GetParam().write(numbers(3), document, maximum, "", chosenColumns, database), -1);
            epgset::failDocumentObjectsAfter(-1);
            EXPECT_EQ(document.json(), soFar[objects]);
            EXPECT_EQ(epgset::openStatementCount(), 0u);
        }
    }
}

TEST_P(EveryResultList, NeedsNoRowObjectForAnEmptyResult) {
    const TestDocument document;
    epgset::failDocumentObjectsAfter(1);
    EXPECT_EQ(GetParam().write(numbers(0), document, "", "", chosenColumns, database), 204);
}

TEST_P(EveryResultList, IsEmptyForAStatementThatDoesNotCompile) {
    EXPECT_EQ(answer("SELECT * FROM nothing", "", "", defaultColumns, 204), R"({"items":[]})");
    EXPECT_EQ(answer("", "", "", defaultColumns, 204), R"({"items":[]})");
}

TEST_P(EveryResultList, RunsOnlyTheFirstStatement) {
    EXPECT_EQ(answer(numbers(1) + "; DROP TABLE myView; SELECT 2"), page(0, 1, 0, 1));
}

TEST_P(EveryResultList, LogsTheConnectionAndTheStatement) {
    answer(numbers(2));
    const auto records = log.records();
    ASSERT_GE(records.size(), 2U);
    EXPECT_EQ(records[0].logger, "Vexmoor/EpgSQLPluginVexmoor");
    EXPECT_EQ(records[0].level, Logger::Trace);
    EXPECT_EQ(records[0].format, "EPG Database handle: %d\n");
    EXPECT_EQ(logged()[1], LogLine(Logger::Trace, "SQL query set as: " + numbers(2)));
    EXPECT_EQ(records[1].format, "SQL query set as: %s");
}

TEST_P(EveryResultList, LogsNothingMoreWithoutPaging) {
    answer(numbers(2));
    EXPECT_EQ(logged().size(), 2U);
}

// What tells them apart -------------------------------------------------------------------------------

class ResultLists : public ResultListBase {
protected:
    /// What a list logs after its statement.
    std::vector<LogLine> loggedFor(const List& list, int rows, const char* itemsMax, const char* startIndex) {
        log.clear();
        answer(list, numbers(rows), itemsMax, startIndex);
        const auto lines = logged();
        return {lines.begin() + 2, lines.end()};
    }
};

TEST_F(ResultLists, HoldAllChannelsButOnlyTheFirstProgrammesWithoutPaging) {
    EXPECT_EQ(answer(channelList, numbers(1500)), page(0, 1500, 0, 1500));
    EXPECT_EQ(answer(channelProgrammeList, numbers(1500)), page(0, 200, 0, 1500));
    EXPECT_EQ(answer(programmeList, numbers(1500)), page(0, 200, 0, 1500));
}

TEST_F(ResultLists, HoldALongerPageOfChannelsFromAStart) {
    EXPECT_EQ(answer(channelList, numbers(1500), "", "3"), page(3, 1000, 3, 1500));
    EXPECT_EQ(answer(channelList, numbers(1500), "", "0"), page(0, 1000, 0, 1500));
    EXPECT_EQ(answer(channelList, numbers(1500), "", "x"), page(0, 1000, 0, 1500));
    EXPECT_EQ(answer(channelProgrammeList, numbers(1500), "", "3"), page(3, 200, 3, 1500));
    EXPECT_EQ(answer(programmeList, numbers(1500), "", "3"), page(3, 200, 3, 1500));
    EXPECT_EQ(answer(programmeList, numbers(1500), "", "0"), page(0, 200, 0, 1500));
}

TEST_F(ResultLists, NameTheirRowsByTheirOwnView) {
    const char* sql =
        "SELECT 'c' AS ChannelId, 'n' AS ChannelName, 'e' AS EventId, 'p' AS ProgramName, "
        "'s' AS ScheduleId";
    const std::string counts = R"(],"items_start_index":0,"items_count":1,"items_total":1})";
    EXPECT_EQ(
        answer(channelList, sql),
        R"({"items":[{"id":"c","name":"n","program_id":"e","program_name":"p","schedule_id":"s"})" + counts);
    for (const List& list : {channelProgrammeList, programmeList})
        EXPECT_EQ(answer(list, sql),
                  R"({"items":[{"channel_id":"c","channel_name":"n","id":"e","name":"p","schedule_id":"s"})" +
                      counts);
}

TEST_F(ResultLists, OfChannelsLogEachRowThatPagingWrites) {
    const LogLine writing(Logger::Debug, "Writing to RDOC\n");
    EXPECT_THAT(loggedFor(channelList, 5, "2", "1"), ElementsAre(writing, writing));
    EXPECT_THAT(loggedFor(channelList, 3, "", "2"), ElementsAre(writing));
    EXPECT_THAT(loggedFor(channelList, 3, "", ""), IsEmpty());
}

TEST_F(ResultLists, OfAChannelsProgrammesLogTheirPageForEachRow) {
    const LogLine maximum(Logger::Debug, "ITEMS_MAX : 5 (5)");
    const LogLine start(Logger::Debug, "ITEMS_START_IDX : 1 (1)");
    EXPECT_THAT(loggedFor(channelProgrammeList, 2, "5x", "1"), ElementsAre(maximum, start, maximum, start));
    EXPECT_THAT(loggedFor(channelProgrammeList, 2, "5", ""), ElementsAre(maximum, maximum));
    EXPECT_THAT(loggedFor(channelProgrammeList, 1, "", "1"), ElementsAre(start));
    EXPECT_THAT(loggedFor(channelProgrammeList, 1, "", ""), IsEmpty());
}

TEST_F(ResultLists, OfAChannelsProgrammesLogTheValueInForceAndTheOneRead) {
    EXPECT_THAT(loggedFor(channelProgrammeList, 1, "-7", "-8"),
                ElementsAre(LogLine(Logger::Debug, "ITEMS_MAX : 200 (-7)"),
                            LogLine(Logger::Debug, "ITEMS_START_IDX : 0 (-8)")));
    EXPECT_EQ(log.records().back().format, "ITEMS_START_IDX : %d (%d)");
}

TEST_F(ResultLists, OfProgrammesLogNoRow) {
    EXPECT_THAT(loggedFor(programmeList, 3, "5", "1"), IsEmpty());
    EXPECT_THAT(loggedFor(programmeList, 3, "", ""), IsEmpty());
}

}  // namespace
