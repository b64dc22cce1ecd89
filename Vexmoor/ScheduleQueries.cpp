// The read-only schedule resources: the list, one schedule, and a programme's schedule.
#include <memory>
#include <string>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/RowWriter.h"
#include "Vexmoor/TextCompare.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "host/ResponseDocument.h"

namespace {

constexpr const char* scheduleColumns =
    "SELECT ScheduleId, ScheduleType, Repeat, ChannelId, ChannelName, ChannelNumber, AntennaType, "
    "ProgramStartTime, ProgramEndTime, EventId FROM myView WHERE ";

/// The text of the row's first column named ChannelId; empty without one.
std::string channelIdOf(sqlite3_stmt* statement) {
    const int columnCount = sqlite3_data_count(statement);
    for (int i = 0; i < columnCount; ++i)
        if (isText(sqlite3_column_name(statement, i), "ChannelId")) return columnText(statement, i);
    return "";
}

/// Adds what the table does not hold: the channel's path, and where and how the schedule is kept.
void addMiddlewareMembers(void* document, TCChannel* channel, CRemindInfo* info) {
    pluginLogger.trace("Retrieving/Writting additional schedule data to output\n");
    const HeapText sourcePath(t_get_channel_path(channel));
    const HeapText storagePath(t_get_schedule_storage_path(info));
    const HeapText method(t_get_schedule_method(info));
    TARNO_rdoc_add_UTF8(document, "source_path", sourcePath.get());
    TARNO_rdoc_add_UTF8(document, "storage_path", storagePath.get());
    TARNO_rdoc_add_UTF8(document, "method", method.get());
}

}  // namespace

int EpgSQLPluginVexmoor::m_execSchedulesSqlQuery(void* document, const char* method,
                                                 ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const std::string sql =
        "SELECT  ScheduleId, ScheduleType, EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, "
        "AntennaType, ProgramStartTime, ProgramEndTime, Repeat FROM myView WHERE NOT ScheduleId='';";
    pluginLogger.debug("selectSql statement\n");
    return m_getSchedulesResults(sql, document, connection);
}

int EpgSQLPluginVexmoor::m_getSchedulesResults(std::string sql, void* document, ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();
    void* items = TARNO_rdoc_create_object(document);
    if (items == nullptr) return -1;
    TARNO_rdoc_add_object(document, "items", items);
    RowWriter writer(ScheduleView);
    int total = 0;
    for (; sqlite3_step(statement.handle()) == SQLITE_ROW; ++total) {
        void* row = TARNO_rdoc_create_object(document);
        if (row == nullptr) return -1;
        TARNO_rdoc_add_object(items, nullptr, row);
        writer.write(row, statement.handle());
    }
    if (total != 0) TARNO_rdoc_add_integer(document, "items_total", total);
    statement.close();
    return total == 0 ? 204 : 200;
}

int EpgSQLPluginVexmoor::m_execSchedInfoSqlQuery(const char* scheduleId, void* document, const char* method,
                                                 ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const std::string sql = scheduleColumns + ("ScheduleId='" + std::string(scheduleId)) + "';";
    pluginLogger.debug("selectSql statement\n");
    return m_getSchedInfoResults(sql, scheduleId, document, connection);
}

int EpgSQLPluginVexmoor::m_getSchedInfoResults(std::string sql, const char* scheduleId, void* document,
                                               ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();
    if (sqlite3_step(statement.handle()) != SQLITE_ROW) {
        statement.close();
        return 404;
    }
    m_output_sql_result(document, ScheduleView, statement.handle());
    pluginLogger.trace("Retrieving ChannelId from the DB\n");
    const std::string channelId = channelIdOf(statement.handle());
    pluginLogger.trace("ChannelID val: %s\n", channelId);
    pluginLogger.trace("Creating channel object\n");
    const std::unique_ptr<TCChannel> channel(t_get_cached_channel_by_id(channelId.c_str()));
    if (channel) {
        pluginLogger.trace("Channel pointer is not null\n");
        const std::unique_ptr<CRemindInfo> info(t_get_cached_schedule_by_id(scheduleId, nullptr));
        if (info) addMiddlewareMembers(document, channel.get(), info.get());
    }
    statement.close();
    return 200;
}

int EpgSQLPluginVexmoor::m_execPrgmSchedInfoSqlQuery(const char* programId, void* document,
                                                     const char* method, ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const std::string sql =
        scheduleColumns + ("EventId='" + std::string(programId)) + "' AND NOT ScheduleId='';";
    pluginLogger.debug("selectSql statement\n");
    return m_getPrgmSchedInfoResults(sql, programId, document, connection);
}

int EpgSQLPluginVexmoor::m_getPrgmSchedInfoResults(std::string sql, const char* programId, void* document,
                                                   ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();
    if (m_checkForProgramInDB(programId, connection) != 0) {
        pluginLogger.trace("Program ID is not valid, not in DB\n");
        statement.close();
        return 404;
    }
    if (sqlite3_step(statement.handle()) != SQLITE_ROW) {
        TARNO_rdoc_add_UTF8(document, "type", "NONE");
        TARNO_rdoc_add_UTF8(document, "status", "NONE");
        statement.close();
        return 200;
    }
    m_output_sql_result(document, ProgramView, statement.handle());
    pluginLogger.trace("Retrieving ChannelId from the DB\n");
    const std::string channelId = channelIdOf(statement.handle());
    pluginLogger.trace("ChannelID val: %s\n", channelId);
    const std::unique_ptr<TCChannel> channel(t_get_cached_channel_by_id(channelId.c_str()));
    if (channel) {
        pluginLogger.trace("Channel pointer is not null\n");
        const std::unique_ptr<TCProgram> program(t_get_cached_program_by_id(programId, nullptr));
        pluginLogger.trace("ProgramObjectRetrieved\n");
        CReminder* reminder = CReminder::GetInstance();
        CRemindInfo info;
        if (program && reminder != nullptr && reminder->FindRemindItemFromProgram(*program, info))
            addMiddlewareMembers(document, channel.get(), &info);
    }
    statement.close();
    return 200;
}
