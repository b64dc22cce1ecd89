// The guide table alone: a database of the test's own that the import fills.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/PluginTest.h"

namespace epgtest {

/// The statement that makes the table.
constexpr const char* createTableSql =
    "CREATE TABLE myView (ChannelId varchar(32), ChannelName varchar(255), ChannelPath varchar(255), "
    "ChannelNumber varchar(255), AntennaType varchar(32), ScrambledFlag varchar(5), ServiceType varchar(10), "
    "EventId varchar(32), ProgramName varchar(255), ProgramStartTime INTEGER UNSIGNED, "
    "ProgramEndTime INTEGER UNSIGNED, ScheduleId varchar(32), ScheduleType varchar(32), Repeat varchar(32));";

/// A log message with its level.
using LogLine = std::pair<Container::Logger::Level, std::string>;

// What an import logs: the statement, the start, each antenna with channels, the programmes.
inline const LogLine createLine{Container::Logger::Debug,
                                "Create tbl sql: " + std::string(createTableSql) + "\n"};
inline const LogLine startLine{Container::Logger::Debug,
                               "Start of m_retrieveEpgData, looping through channels...\n"};
inline const LogLine antennaLine{Container::Logger::Debug, "End of retrieveEpgData\n"};
inline LogLine countLine(int programmes) {
    return {Container::Logger::Debug,
            "\n*** Number of programs parsed: " + std::to_string(programmes) + "\n"};
}

/// A configured, empty database beside the plug-in's own.
class TableTest : public PluginTest {
protected:
    TableTest() { log.clear(); }

    /// Makes the table in the test's database and fills it from the guide.
    int fill() const { return fill(database); }

    /// The same in another database.
    static int fill(const Container::SharedPtr<Connection>& connection) {
        return OpenPlugin::m_CreateDBTable(GuideTable::source, GuideTable::schemaTemplate, nullptr,
                                           connection);
    }

    /// Rows of a statement on the test's database.
    std::vector<Row> rows(const std::string& sql) const { return rowsOf(*database, sql); }

    /// What the plug-in class logged, with the levels.
    std::vector<LogLine> logged() const {
        std::vector<LogLine> lines;
        for (const auto& record : log.records())
            if (record.logger == "Vexmoor/EpgSQLPluginVexmoor")
                lines.emplace_back(record.level, record.message);
        return lines;
    }

    const Container::SharedPtr<Connection> database = OpenPlugin::m_createSqlDB("");
};

}  // namespace epgtest
