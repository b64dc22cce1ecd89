// The schedule mirror: the reminder store's bookings in the table's schedule columns.
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "host/ChannelSource.h"

namespace {

constexpr int allBookings = 2;  // the kind of bookings asked for, the middleware's number
constexpr int insertRetries = 5;
constexpr int prunedPerRetry = 5;

/// Marks the row of a manual booking.
const char* const manualBooking = "scheduled_event";

struct DeleteChannelSource {
    void operator()(ws_epg_channel_source* source) const { t_delete_channel_source(source); }
};
using ChannelSource = std::unique_ptr<ws_epg_channel_source, DeleteChannelSource>;

/// The text of a field, empty when it is absent.
std::string textOf(const char* text) {
    return text == nullptr ? "" : text;
}

/// The same for a heap text, which is released.
std::string takeText(char* heapText) {
    const HeapText text(heapText);
    return textOf(text.get());
}

/// The statement that adds a manual booking's row; a null value is an empty text. The texts are put in as
/// they are, on purpose: one with a quote is a statement that fails.
std::string insertText(std::initializer_list<const std::string*> values) {
    std::string sql =
        "INSERT into myView ('ChannelId','ChannelNumber','ChannelName','ChannelPath','ServiceType',"
        "'AntennaType','ScrambledFlag','EventId','ProgramName','ProgramStartTime','ProgramEndTime',"
        "'ScheduleId','ScheduleType','Repeat') VALUES('";
    const char* separator = "";
    for (const std::string* value : values) {
        sql += separator;
        if (value != nullptr) sql += *value;
        separator = "','";
    }
    return sql + "');";
}

/// Compiles and steps a statement's new text; SQLite's answer.
int run(Statement& statement, const std::string& sql) {
    statement.setSql(sql);
    statement.compile();
    return sqlite3_step(statement.handle());
}

}  // namespace

int EpgSQLPluginVexmoor::m_removeDBSchedData(ConnectionPtr connection) {
    Statement scheduled;
    scheduled.setConnection(connection);
    scheduled.setSql("SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';");
    scheduled.compile();
    Statement change;
    change.setConnection(connection);
    while (sqlite3_step(scheduled.handle()) == SQLITE_ROW) {
        const std::string id = columnText(scheduled.handle(), 0);
        const std::string name = columnText(scheduled.handle(), 1);
        pluginLogger.trace("A schedule has been found:%s, %s\n", id, name);
        // NULL and not an empty text, on purpose: pruning passes over rows that were once booked.
        const std::string sql =
            name == manualBooking
                ? "DELETE FROM myView WHERE ScheduleId='" + id + "';"
                : "UPDATE myView SET ScheduleId=NULL, ScheduleType=NULL, Repeat=NULL WHERE ScheduleId='" +
                      id + "';";
        // The step answers SQLITE_DONE on success and not 0: the trace stays silent, as it should.
        if (run(change, sql) == SQLITE_OK) pluginLogger.trace("Removed/Updated schedule entry in DB.\n");
    }
    scheduled.close();
    change.close();
    return 0;
}

int EpgSQLPluginVexmoor::m_updateDBSchedData(ConnectionPtr connection) {
    pluginLogger.trace("Getting remind items\n");
    CReminder* reminder = CReminder::GetInstance();
    if (reminder == nullptr) return 0;
    int count = 0;
    std::vector<CRemindInfo> items;
    reminder->GetRemindItemByType(count, items, allBookings);

    Statement update;
    update.setConnection(connection);
    for (int i = 0; i < count && i < static_cast<int>(items.size()); ++i) {
        pluginLogger.trace("Getting remind item: %d\n", i);
        CRemindInfo info = items[static_cast<std::size_t>(i)];
        const std::unique_ptr<TCChannel> channel(t_get_cached_channel_by_num(
            TCChannel::GetTVMode(info.ChannelType()), info.Major(), info.Minor()));
        TCProgram program;
        info.CopyDetailsInto(program);
        if (!channel) {
            pluginLogger.error("ERROR! get remind item failed!\n");
            update.close();
            return -1;
        }
        const ChannelSource source(t_create_channel_source(channel.get()));
        const auto field = [&source](char* ws_epg_channel_source::*member) {
            return source ? textOf(source.get()->*member) : std::string();
        };
        const std::string channelId = field(&ws_epg_channel_source::channel_id);
        pluginLogger.trace("Determining program name..\n");
        const std::string programId = takeText(t_get_program_id(channel.get(), &program));
        pluginLogger.trace("Determining schedule details\n");
        const unsigned short* title = info.GetTitle();
        const std::string scheduleId = takeText(t_get_schedule_id(&info));
        const std::string scheduleType = takeText(t_get_schedule_status_str(info.ReserveType()));
        const std::string repeat = takeText(t_get_schedule_repeat(&info));

        if (title != nullptr && title[0] != 0) {
            const std::string sql = "UPDATE myView SET ScheduleId='" + scheduleId + "', ScheduleType='" +
                                    scheduleType + "', Repeat='" + repeat + "' WHERE ChannelId='" +
                                    channelId + "' AND EventId='" + programId + "';";
            pluginLogger.trace("SQL STATEMENT: %s\n", sql);
            if (run(update, sql) == SQLITE_DONE) pluginLogger.trace("Schedule data updated!\n");
            continue;
        }
        pluginLogger.trace("Remind info: ChnldId: %s, EventId: %s, SchedId: %s\n", channelId, programId,
                           scheduleId);
        if (m_checkIfEventIsInDB(channelId, programId, scheduleId, connection)) continue;
        m_insertSchedData(channelId, field(&ws_epg_channel_source::channel_num),
                          field(&ws_epg_channel_source::channel_name),
                          field(&ws_epg_channel_source::service_type), field(&ws_epg_channel_source::antenna),
                          field(&ws_epg_channel_source::scrambled), programId,
                          std::to_string(program.StartTime()), std::to_string(program.EndTime()), scheduleId,
                          scheduleType, repeat, connection);
    }
    update.close();
    return 0;
}

bool EpgSQLPluginVexmoor::m_checkIfEventIsInDB(const std::string& channelId, const std::string& eventId,
                                               const std::string& scheduleId, ConnectionPtr connection) {
    const std::string sql = "select ChannelId, EventId from myView WHERE ChannelId='" + channelId +
                            "' AND EventId='" + eventId + "' AND ScheduleId='" + scheduleId + "';";
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL STATEMENT: %s\n", sql);
    const int result = run(statement, sql);
    pluginLogger.trace("QUERY Result: %d\n\n", result);
    if (result == SQLITE_ROW) pluginLogger.trace("Event entry exist!\n");
    statement.close();
    return result == SQLITE_ROW;
}

void EpgSQLPluginVexmoor::m_insertSchedData(const std::string& channelId, const std::string& channelNumber,
                                            const std::string& channelName, const std::string& serviceType,
                                            const std::string& antennaType, const std::string& scrambledFlag,
                                            const std::string& eventId, const std::string& startTime,
                                            const std::string& endTime, const std::string& scheduleId,
                                            const std::string& scheduleType, const std::string& repeat,
                                            ConnectionPtr connection) {
    std::string sql;
    try {
        const std::string name = manualBooking;
        sql = insertText({&channelId, &channelNumber, &channelName, nullptr, &serviceType, &antennaType,
                          &scrambledFlag, &eventId, &name, &startTime, &endTime, &scheduleId, &scheduleType,
                          &repeat});
    } catch (const std::bad_alloc&) {
        pluginLogger.trace("Memory not allocated for SQL query string\n");
        return;
    }

    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL STATEMENT: %s\n", sql);
    int result = run(statement, sql);
    pluginLogger.trace("SQL Return code: %d\n", result);
    if (result == SQLITE_DONE) {
        pluginLogger.trace("Schedule data added!\n");
        return;
    }
    for (int retry = 0; retry < insertRetries && result != SQLITE_DONE; ++retry) {
        statement.close();  // an open statement would keep the pruning's vacuum from running
        removeLastNProgramEntries(connection, prunedPerRetry);
        result = run(statement, sql);
        pluginLogger.trace("SQL Return code: %d\n", result);
        if (result != SQLITE_DONE) continue;
        pluginLogger.trace("Schedule data added!\n");
        pluginLogger.trace("SQL Return code: %d\n", result);
    }
    statement.close();
    m_hintIndexes(connection);  // the pruning ended in a vacuum
}
