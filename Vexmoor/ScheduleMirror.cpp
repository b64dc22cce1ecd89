// The schedule mirror: the reminder store's bookings in the table's schedule columns.
#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
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

/// The database of a connection; null without one.
sqlite3* handleOf(const Container::SharedPtr<Connection>& connection) {
    return connection ? connection->handle() : nullptr;
}

/// What of a booking goes into the table.
struct Booking {
    ChannelSource channel;
    std::string programId;
    std::string scheduleId;
    std::string scheduleType;
    std::string repeat;
    std::string start;
    std::string end;
    bool titled = false;  ///< made from a programme

    /// A field of the channel, empty when it is absent.
    std::string field(char* ws_epg_channel_source::*member) const {
        return channel ? textOf(channel.get()->*member) : std::string();
    }
};

/// The booking as the table holds it; nothing when its channel is not there.
std::optional<Booking> readBooking(CRemindInfo& info) {
    const std::unique_ptr<TCChannel> channel(
        t_get_cached_channel_by_num(TCChannel::GetTVMode(info.ChannelType()), info.Major(), info.Minor()));
    TCProgram program;
    info.CopyDetailsInto(program);
    if (!channel) return std::nullopt;
    Booking booking;
    booking.channel.reset(t_create_channel_source(channel.get()));
    pluginLogger.trace("Determining program name..\n");
    booking.programId = takeText(t_get_program_id(channel.get(), &program));
    pluginLogger.trace("Determining schedule details\n");
    const unsigned short* title = info.GetTitle();
    booking.titled = title != nullptr && title[0] != 0;
    booking.scheduleId = takeText(t_get_schedule_id(&info));
    booking.scheduleType = takeText(t_get_schedule_status_str(info.ReserveType()));
    booking.repeat = takeText(t_get_schedule_repeat(&info));
    booking.start = std::to_string(program.StartTime());
    booking.end = std::to_string(program.EndTime());
    return booking;
}

/// The store's bookings.
std::vector<CRemindInfo> storedBookings(CReminder& reminder) {
    int count = 0;
    std::vector<CRemindInfo> items;
    reminder.GetRemindItemByType(count, items, allBookings);
    const auto stated = static_cast<std::size_t>(std::max(count, 0));
    if (stated < items.size()) items.erase(items.begin() + static_cast<std::ptrdiff_t>(stated), items.end());
    return items;
}

/// All that the mirror puts into the table, as one text; nothing when a channel is not there.
std::optional<std::string> describeBookings(std::vector<CRemindInfo>& items) {
    std::string described;
    const auto add = [&described](const std::string& text) {
        described.append(std::to_string(text.size())).append(":").append(text);
    };
    for (CRemindInfo& info : items) {
        const std::optional<Booking> booking = readBooking(info);
        if (!booking) return std::nullopt;
        for (const auto member : {&ws_epg_channel_source::channel_id, &ws_epg_channel_source::channel_num,
                                  &ws_epg_channel_source::channel_name, &ws_epg_channel_source::service_type,
                                  &ws_epg_channel_source::antenna, &ws_epg_channel_source::scrambled})
            add(booking->field(member));
        for (const std::string* text : {&booking->programId, &booking->scheduleId, &booking->scheduleType,
                                        &booking->repeat, &booking->start, &booking->end})
            add(*text);
        described += booking->titled ? 't' : 'm';
    }
    return described;
}

}  // namespace

void EpgSQLPluginVexmoor::m_mirrorSchedules(ConnectionPtr connection) {
    const auto mirror = [&connection](const auto& write) {
        const MirrorState::Change change(mirrorState);
        mirrorState.begin(handleOf(connection));
        m_removeDBSchedData(connection);
        write();
    };
    CReminder* reminder = CReminder::GetInstance();
    // At trace level the mirror tells its steps, and therefore takes them.
    if (reminder == nullptr || pluginLogger.isTraceEnabled()) {
        mirror([&connection] { m_updateDBSchedData(connection); });
        return;
    }
    std::vector<CRemindInfo> items = storedBookings(*reminder);
    const std::optional<std::string> bookings = describeBookings(items);
    if (bookings && mirrorState.holds(handleOf(connection), *bookings)) return;
    mirror([&] {
        m_writeBookings(items, connection);
        if (bookings) mirrorState.finish(handleOf(connection), *bookings);
    });
}

int EpgSQLPluginVexmoor::m_removeDBSchedData(ConnectionPtr connection) {
    Statement scheduled;
    scheduled.setConnection(connection);
    scheduled.setSql("SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';");
    scheduled.compile();
    Statement change;
    change.setConnection(connection);
    int result = sqlite3_step(scheduled.handle());
    for (; result == SQLITE_ROW; result = sqlite3_step(scheduled.handle())) {
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
        const int changed = run(change, sql);
        mirrorState.ended(handleOf(connection), changed, true);
        if (changed == SQLITE_OK) pluginLogger.trace("Removed/Updated schedule entry in DB.\n");
    }
    mirrorState.ended(handleOf(connection), result, false);
    scheduled.close();
    change.close();
    return 0;
}

int EpgSQLPluginVexmoor::m_updateDBSchedData(ConnectionPtr connection) {
    pluginLogger.trace("Getting remind items\n");
    CReminder* reminder = CReminder::GetInstance();
    if (reminder == nullptr) return 0;
    std::vector<CRemindInfo> items = storedBookings(*reminder);
    return m_writeBookings(items, connection);
}

int EpgSQLPluginVexmoor::m_writeBookings(std::vector<CRemindInfo>& items, ConnectionPtr connection) {
    Statement update;
    update.setConnection(connection);
    int number = 0;
    for (CRemindInfo& info : items) {
        pluginLogger.trace("Getting remind item: %d\n", number++);
        const std::optional<Booking> booking = readBooking(info);
        if (!booking) {
            pluginLogger.error("ERROR! get remind item failed!\n");
            update.close();
            return -1;
        }
        const std::string channelId = booking->field(&ws_epg_channel_source::channel_id);
        if (booking->titled) {
            const std::string sql = "UPDATE myView SET ScheduleId='" + booking->scheduleId +
                                    "', ScheduleType='" + booking->scheduleType + "', Repeat='" +
                                    booking->repeat + "' WHERE ChannelId='" + channelId + "' AND EventId='" +
                                    booking->programId + "';";
            pluginLogger.trace("SQL STATEMENT: %s\n", sql);
            const int result = run(update, sql);
            mirrorState.ended(handleOf(connection), result, true);
            if (result == SQLITE_DONE) pluginLogger.trace("Schedule data updated!\n");
            continue;
        }
        pluginLogger.trace("Remind info: ChnldId: %s, EventId: %s, SchedId: %s\n", channelId,
                           booking->programId, booking->scheduleId);
        if (m_checkIfEventIsInDB(channelId, booking->programId, booking->scheduleId, connection)) continue;
        m_insertSchedData(channelId, booking->field(&ws_epg_channel_source::channel_num),
                          booking->field(&ws_epg_channel_source::channel_name),
                          booking->field(&ws_epg_channel_source::service_type),
                          booking->field(&ws_epg_channel_source::antenna),
                          booking->field(&ws_epg_channel_source::scrambled), booking->programId,
                          booking->start, booking->end, booking->scheduleId, booking->scheduleType,
                          booking->repeat, connection);
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
    mirrorState.ended(handleOf(connection), result, false);
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
    mirrorState.ended(handleOf(connection), result, true);
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
