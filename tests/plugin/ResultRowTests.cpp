// Rows of a result as objects of an answer.
#include <gmock/gmock.h>

#include <map>
#include <string>

#include "set/log/LogControl.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/DocumentCalls.h"

namespace {

using Container::Logger;
using epgtest::LogLine;
using epgtest::OpenPlugin;
using epgtest::TestDocument;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using RowMap = std::map<std::string, std::string>;

class ResultRows : public epgtest::TableTest {
protected:
    static constexpr int channelView = 1;
    static constexpr int programmeView = 2;
    static constexpr int scheduleView = 3;
    static constexpr int otherView = 4;

    /// A statement on its first row.
    class FirstRow {
    public:
        FirstRow(const Container::SharedPtr<Connection>& connection, const std::string& sql) {
            statement.setConnection(connection);
            statement.setSql(sql);
            statement.compile();
            EXPECT_EQ(sqlite3_step(statement.handle()), SQLITE_ROW) << sql;
        }
        operator sqlite3_stmt*() const {
            return statement.handle();
        }  // NOLINT: stands where a handle is wanted

        Statement statement;
    };

    RowMap read(const std::string& sql, int view) const {
        const FirstRow row(database, sql);
        RowMap map;
        EXPECT_EQ(OpenPlugin::m_getSqlRowData(row, view, map), 0);
        return map;
    }

    std::string write(const std::string& sql, int view) const {
        const FirstRow row(database, sql);
        const TestDocument document;
        EXPECT_EQ(OpenPlugin::m_output_sql_result(document, view, row), 0);
        return document.json();
    }

    std::vector<LogLine> dump(const std::string& sql) {
        FirstRow row(database, sql);
        log.clear();
        EXPECT_EQ(OpenPlugin::m_printSqlRowData(row.statement), 0);
        return logged();
    }
};

// Reading --------------------------------------------------------------------------------------------

TEST_F(ResultRows, AreReadByTheKeysOfTheView) {
    const char* sql =
        "SELECT 'c' AS ChannelId, 'n' AS ChannelName, 'e' AS EventId, 'p' AS ProgramName, "
        "'s' AS ScheduleId, 'V' AS ScheduleType";
    EXPECT_THAT(read(sql, channelView),
                ElementsAre(Pair("id", "c"), Pair("name", "n"), Pair("program_id", "e"),
                            Pair("program_name", "p"), Pair("schedule_id", "s"), Pair("status", "V")));
    EXPECT_THAT(read(sql, programmeView),
                ElementsAre(Pair("channel_id", "c"), Pair("channel_name", "n"), Pair("id", "e"),
                            Pair("name", "p"), Pair("schedule_id", "s"), Pair("status", "V")));
    EXPECT_THAT(read(sql, scheduleView),
                ElementsAre(Pair("channel_id", "c"), Pair("channel_name", "n"), Pair("id", "s"),
                            Pair("program_id", "e"), Pair("program_name", "p"), Pair("status", "V")));
    EXPECT_THAT(read(sql, otherView),
                ElementsAre(Pair("channel_id", "c"), Pair("channel_name", "n"), Pair("program_id", "e"),
                            Pair("program_name", "p"), Pair("schedule_id", "s"), Pair("status", "V")));
}

TEST_F(ResultRows, HoldTimesAsSigned32BitNumbers) {
    EXPECT_THAT(read("SELECT 1367000000 AS ProgramStartTime, -5 AS ProgramEndTime", programmeView),
                ElementsAre(Pair("end", "-5"), Pair("start", "1367000000")));
    EXPECT_THAT(read("SELECT 2208988800 AS ProgramStartTime", programmeView),
                ElementsAre(Pair("start", "-2085978496")));
    EXPECT_THAT(read("SELECT '' AS ProgramStartTime, '12x' AS ProgramEndTime", programmeView),
                ElementsAre(Pair("end", "12"), Pair("start", "0")));
    EXPECT_THAT(read("SELECT NULL AS ProgramStartTime", programmeView), ElementsAre(Pair("start", "0")));
}

TEST_F(ResultRows, HoldEverythingElseAsText) {
    EXPECT_THAT(
        read("SELECT 7 AS ChannelNumber, 1.5 AS ChannelName, x'4142' AS ChannelId, 1 AS ScrambledFlag",
             channelView),
        ElementsAre(Pair("channel_num", "7"), Pair("id", "AB"), Pair("name", "1.5"), Pair("scrambled", "1")));
    EXPECT_THAT(read("SELECT 5000000000 AS programstarttime, '0012' AS start", channelView),
                ElementsAre(Pair("programstarttime", "5000000000"), Pair("start", "0012")));
}

TEST_F(ResultRows, HoldNullAsAnEmptyText) {
    EXPECT_THAT(read("SELECT NULL AS ChannelName, NULL AS ScrambledFlag", channelView),
                ElementsAre(Pair("name", ""), Pair("scrambled", "")));
}

TEST_F(ResultRows, KeepTheLaterOfTwoColumnsOfOneKey) {
    EXPECT_THAT(read("SELECT 'a' AS ChannelId, 'b' AS ChannelId", channelView), ElementsAre(Pair("id", "b")));
    EXPECT_THAT(read("SELECT 'a' AS name, 'b' AS ChannelName", channelView), ElementsAre(Pair("name", "b")));
    EXPECT_THAT(read("SELECT 'b' AS ChannelName, 'a' AS name", channelView), ElementsAre(Pair("name", "a")));
}

TEST_F(ResultRows, PassUnknownColumnsUnderTheirOwnNameWithAWarning) {
    EXPECT_THAT(read("SELECT 3 AS \"count(*)\", 'x' AS channelid, 'y' AS ChannelId", channelView),
                ElementsAre(Pair("channelid", "x"), Pair("count(*)", "3"), Pair("id", "y")));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Warning, "Could not convert column name.\n"),
                                      LogLine(Logger::Warning, "Could not convert column name.\n")));
}

TEST_F(ResultRows, CannotBeReadWithoutAStatement) {
    RowMap map{{"kept", "x"}};
    EXPECT_EQ(OpenPlugin::m_getSqlRowData(nullptr, channelView, map), -1);
    EXPECT_THAT(map, ElementsAre(Pair("kept", "x")));
}

TEST_F(ResultRows, AreReadWithoutAStep) {
    const FirstRow row(database, "SELECT 'one' AS name UNION ALL SELECT 'two'");
    for (int reading = 0; reading < 3; ++reading) {
        const TestDocument document;
        EXPECT_EQ(OpenPlugin::m_output_sql_result(document, channelView, row), 0);
        EXPECT_EQ(document.json(), R"({"name":"one"})");
    }
    EXPECT_EQ(sqlite3_step(row), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(row, 0)), "two");
}

// Writing --------------------------------------------------------------------------------------------

TEST_F(ResultRows, AreWrittenInTheByteOrderOfTheirKeys) {
    EXPECT_EQ(
        write("SELECT 'true' AS ScrambledFlag, 'News' AS ChannelName, 'cid-000-7' AS ChannelId", channelView),
        R"({"id":"cid-000-7","name":"News","scrambled":true})");
    EXPECT_EQ(
        write("SELECT 'TV' AS ServiceType, '/p' AS ChannelPath, '7' AS ChannelNumber, 'i' AS ChannelId, "
              "'AIR' AS AntennaType, 'u' AS Zone",
              channelView),
        R"({"Zone":"u","antenna":"AIR","channel_num":"7","channel_path":"/p","id":"i","service_type":"TV"})");
}

TEST_F(ResultRows, WriteTheScrambledTextUnchangedAsABoolean) {
    for (const char* text : {"true", "false", "TRUE", "1", ""}) {
        const epgtest::DocumentCalls calls;
        write("SELECT '" + std::string(text) + "' AS ScrambledFlag", channelView);
        EXPECT_THAT(calls.lines, ElementsAre("root \"scrambled\": boolean " + std::string(text)));
    }
    EXPECT_EQ(write("SELECT NULL AS ScrambledFlag", channelView), R"({"scrambled":false})");
}

TEST_F(ResultRows, WriteTimesAsIsoTexts) {
    EXPECT_EQ(write("SELECT 1367835072 AS ProgramStartTime, 1367835073 AS ProgramEndTime", programmeView),
              R"({"end":"2013-05-06T10:11:13+00:00","start":"2013-05-06T10:11:12+00:00"})");
    EXPECT_EQ(write("SELECT 0 AS ProgramStartTime", programmeView),
              R"({"start":"1970-01-01T00:00:00+00:00"})");
    EXPECT_EQ(write("SELECT '' AS ProgramStartTime", programmeView),
              R"({"start":"1970-01-01T00:00:00+00:00"})");
    EXPECT_EQ(write("SELECT -1 AS ProgramStartTime", programmeView),
              R"({"start":"1969-12-31T23:59:59+00:00"})");
    EXPECT_EQ(write("SELECT -2147483648 AS ProgramEndTime", programmeView),
              R"({"end":"1901-12-13T20:45:52+00:00"})");
}

TEST_F(ResultRows, WriteTimesInTheZoneOfTheSet) {
    clock.setZone(540, false);
    EXPECT_EQ(write("SELECT 0 AS ProgramStartTime", programmeView),
              R"({"start":"1970-01-01T09:00:00+09:00"})");
}

TEST_F(ResultRows, AreTypedByTheirKeysAndNotByTheirColumns) {
    EXPECT_EQ(write("SELECT '60x' AS start, '' AS end, 'true' AS scrambled", channelView),
              R"({"end":"1970-01-01T00:00:00+00:00","scrambled":true,"start":"1970-01-01T00:01:00+00:00"})");
}

TEST_F(ResultRows, NeverWriteAnInteger) {
    EXPECT_EQ(write("SELECT 7 AS ChannelNumber, 2.5 AS Repeat, 1+1", channelView),
              R"({"1+1":"2","channel_num":"7","repeat":"2.5"})");
}

TEST_F(ResultRows, WriteNullAsAnEmptyText) {
    const epgtest::DocumentCalls calls;
    write("SELECT NULL AS ChannelName", channelView);
    EXPECT_THAT(calls.lines, ElementsAre("root \"name\": text "));
}

TEST_F(ResultRows, WriteNothingWithoutAnObjectOrAStatement) {
    const FirstRow row(database, "SELECT 'x' AS ChannelName");
    const TestDocument document;
    const epgtest::DocumentCalls calls;
    EXPECT_EQ(OpenPlugin::m_output_sql_result(nullptr, channelView, row), -1);
    EXPECT_EQ(OpenPlugin::m_output_sql_result(document, channelView, nullptr), -1);
    EXPECT_EQ(OpenPlugin::m_output_sql_result(nullptr, channelView, nullptr), -1);
    EXPECT_THAT(calls.lines, IsEmpty());
    EXPECT_EQ(document.json(), "{}");
}

// Dump -----------------------------------------------------------------------------------------------

TEST_F(ResultRows, AreDumpedInOneLineOfEightColumns) {
    EXPECT_THAT(dump("SELECT 'a', 2, 3.5, 'd', 'e', 'f', 'g', 'h'"),
                ElementsAre(LogLine(Logger::Trace, "a, 2, 3.5, d, e, f, g, h\n")));
    EXPECT_THAT(dump("SELECT 1, 2, 3, 4, 5, 6, 7, 8, 9, 10"),
                ElementsAre(LogLine(Logger::Trace, "1, 2, 3, 4, 5, 6, 7, 8\n")));
}

TEST_F(ResultRows, AreDumpedWithEmptyTextsForWhatIsMissing) {
    EXPECT_THAT(dump("SELECT 1"), ElementsAre(LogLine(Logger::Trace, "1, , , , , , , \n")));
    EXPECT_THAT(dump("SELECT NULL, 'b', NULL"), ElementsAre(LogLine(Logger::Trace, ", b, , , , , , \n")));
}

TEST_F(ResultRows, AreDumpedAsTextWhateverTheyHold) {
    EXPECT_THAT(dump("SELECT '%s%n', '%d'"), ElementsAre(LogLine(Logger::Trace, "%s%n, %d, , , , , , \n")));
}

TEST_F(ResultRows, AreDumpedOnlyWhenTraceIsOn) {
    epgset::LogControl::setLevel(Logger::Debug);
    EXPECT_THAT(dump("SELECT 1"), IsEmpty());
    epgset::LogControl::setLevel(Logger::Trace);
}

TEST_F(ResultRows, OfNoStatementAreDumpedEmpty) {
    Statement statement;
    EXPECT_EQ(OpenPlugin::m_printSqlRowData(statement), 0);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, ", , , , , , , \n")));
}

}  // namespace
