#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/plugin/TableTest.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class TableSchema : public TableTest {};

TEST_F(TableSchema, IsOnePlainTable) {
    fill();
    const std::string statement(createTableSql);
    EXPECT_THAT(rows("SELECT type, name, sql FROM sqlite_master WHERE NOT type='index'"),
                ElementsAre(Row{"table", "myView", statement.substr(0, statement.size() - 1)}));
}

TEST_F(TableSchema, IsMadeByOneStatement) {
    fill();
    EXPECT_THAT(pluginLog().front(), "Create tbl sql: " + std::string(createTableSql) + "\n");
}

TEST_F(TableSchema, IsListedUnderItsNameWithItsTemplate) {
    fill();
    EXPECT_THAT(OpenPlugin::epgTableList, ElementsAre(Pair("myView", GuideTable::schemaTemplate)));
    EXPECT_STREQ(GuideTable::schemaTemplate,
                 "CREATE VIEW myView AS ChannelId, ChannelNumber, ChannelName, ChannelPath, ServiceType, "
                 "AntennaType, ScrambledFlag, EventId, ProgramName, ProgramStartTime, ProgramEndTime, "
                 "ScheduleId, ScheduleType, Repeat FROM masterEPG;");
}

TEST_F(TableSchema, KeepsEachValueInItsColumn) {
    TestGuide guide;
    guide.programme(guide.channel(Satellite, 7, 2, "News 24"), 1'000, 2'000, "Morning", 17);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT * FROM myView"),
                ElementsAre(Row{"cid-003-7-2", "News 24", "/ws/epg2/channels/cid-003-7-2", "7-2", "SATELLITE",
                                "false", "TV", "pid-003-7-2-17", "Morning", "1000", "2000", "", "", ""}));
    EXPECT_THAT(rows("SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber FROM myView"),
                ElementsAre(Row{"cid-003-7-2", "News 24", "/ws/epg2/channels/cid-003-7-2", "7-2"}));
}

TEST_F(TableSchema, StoresTimesAsNumbersAndThoseOfAStubAsEmptyTexts) {
    TestGuide guide;
    guide.programme(guide.channel(Air, 1), 1'000, 2'000, "Morning", 17);
    guide.channel(Air, 2);
    guide.use();
    fill();
    const std::string times =
        "SELECT typeof(ProgramStartTime), typeof(ProgramEndTime), ProgramStartTime, ProgramEndTime FROM "
        "myView";
    EXPECT_THAT(rows(times),
                ElementsAre(Row{"integer", "integer", "1000", "2000"}, Row{"text", "text", "", ""}));
}

TEST_F(TableSchema, StoresEmptyTextsInTheScheduleColumns) {
    TestGuide guide;
    guide.programme(guide.channel(Air, 1), 1'000, 2'000, "Morning", 17);
    guide.channel(Air, 2);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT typeof(ScheduleId), typeof(ScheduleType), typeof(Repeat) FROM myView"),
                ElementsAre(Row{"text", "text", "text"}, Row{"text", "text", "text"}));
}

TEST_F(TableSchema, StoresTextsBeyondTheDeclaredWidthsWhole) {
    const std::string name(300, 'n');
    const std::string title(2'000, 't');
    TestGuide guide;
    guide.programme(guide.channel(Air, 1, 0, name), 1'000, 2'000, title, 17);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT ChannelName, ProgramName FROM myView"), ElementsAre(Row{name, title}));
}

// Keys of result columns ------------------------------------------------------------------------------

class ColumnKeys : public PluginTest {
protected:
    static std::string keyOf(const std::string& column, int keyView) {
        std::string key = "what was there before";
        OpenPlugin::m_convertColNameToUrParam(column, keyView, key);
        return key;
    }
};

TEST_F(ColumnKeys, FollowTheKindOfTheRow) {
    struct {
        const char* column;
        const char* plain;
        const char* channelRow;
        const char* programmeRow;
        const char* scheduleRow;
    } const table[] = {
        {"ChannelId", "channel_id", "id", "channel_id", "channel_id"},
        {"ChannelName", "channel_name", "name", "channel_name", "channel_name"},
        {"ChannelPath", "channel_path", "channel_path", "channel_path", "channel_path"},
        {"ChannelNumber", "channel_num", "channel_num", "channel_num", "channel_num"},
        {"AntennaType", "antenna", "antenna", "antenna", "antenna"},
        {"ScrambledFlag", "scrambled", "scrambled", "scrambled", "scrambled"},
        {"ServiceType", "service_type", "service_type", "service_type", "service_type"},
        {"EventId", "program_id", "program_id", "id", "program_id"},
        {"ProgramName", "program_name", "program_name", "name", "program_name"},
        {"ProgramStartTime", "start", "start", "start", "start"},
        {"ProgramEndTime", "end", "end", "end", "end"},
        {"ScheduleId", "schedule_id", "schedule_id", "schedule_id", "id"},
        {"ScheduleType", "status", "status", "status", "status"},
        {"Repeat", "repeat", "repeat", "repeat", "repeat"},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.column);
        EXPECT_EQ(keyOf(row.column, 1), row.channelRow);
        EXPECT_EQ(keyOf(row.column, 2), row.programmeRow);
        EXPECT_EQ(keyOf(row.column, 3), row.scheduleRow);
        for (const int unknownView : {0, 4, -1})
            EXPECT_EQ(keyOf(row.column, unknownView), row.plain);
    }
    EXPECT_THAT(pluginLog(), IsEmpty());
}

TEST_F(ColumnKeys, AreTheNamesOfUnknownColumnsWithAWarningEachTime) {
    const std::vector<std::string> names = {"ThumbURI",  "ProgramSynopsis", "ProgramCRID", "count(*)",
                                            "channelid", "CHANNELID",       "ChannelId ",  "an alias",
                                            "",          "count(*)"};
    for (const auto& name : names)
        EXPECT_EQ(keyOf(name, 1), name);
    EXPECT_EQ(log.messagesOf("Vexmoor/EpgSQLPluginVexmoor", Container::Logger::Warning),
              std::vector<std::string>(names.size(), "Could not convert column name.\n"));
}

}  // namespace
}  // namespace epgtest
