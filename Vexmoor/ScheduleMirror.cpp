// The schedule mirror: the reminder store's bookings in the table's schedule columns.
#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Vexmoor/CachedChannels.h"
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

/// Clears the schedule columns.
void clearSchedules(const Container::SharedPtr<Connection>& connection, KeptMirror::Writing& writing) {
    Statement scheduled;
    scheduled.setConnection(connection);
    scheduled.setSql(scheduledRowsSql);
    scheduled.compile();
    Statement change;
    change.setConnection(connection);
    int result = SQLITE_OK;
    while ((result = sqlite3_step(scheduled.handle())) == SQLITE_ROW) {
        const std::string id = columnText(scheduled.handle(), 0);
        const std::string name = columnText(scheduled.handle(), 1);
        pluginLogger.trace("A schedule has been found:%s, %s\n", id, name);
        // NULL and not an empty text, on purpose: pruning passes over rows that were once booked.
        const std::string sql =
            name == manualBookingName
                ? "DELETE FROM myView WHERE ScheduleId='" + id + "';"
                : "UPDATE myView SET ScheduleId=NULL, ScheduleType=NULL, Repeat=NULL WHERE ScheduleId='" +
                      id + "';";
        const int changed = run(change, sql);
        writing.wrote(changed);
        // The step answers SQLITE_DONE on success and not 0: the trace stays silent, as it should.
        if (changed == SQLITE_OK) pluginLogger.trace("Removed/Updated schedule entry in DB.\n");
    }
    writing.read(result);
    scheduled.close();
    change.close();
}

CachedChannels::Number channelNumber(const CRemindInfo& info) {
    return {TCChannel::GetTVMode(info.ChannelType()), info.Major(), info.Minor()};
}

/// What the mirror writes for a booking on that channel; nothing when there is none.
std::optional<MirroredBooking> mirrored(CRemindInfo& info, TCChannel* channel) {
    TCProgram program;
    info.CopyDetailsInto(program);
    if (!channel) {
        pluginLogger.error("ERROR! get remind item failed!\n");
        return std::nullopt;
    }
    MirroredBooking booking;
    const ChannelSource source(t_create_channel_source(channel));
    const auto field = [&source](char* ws_epg_channel_source::*member) {
        return source ? textOf(source.get()->*member) : std::string();
    };
    booking.channelId = field(&ws_epg_channel_source::channel_id);
    pluginLogger.trace("Determining program name..\n");
    booking.programId = takeText(t_get_program_id(channel, &program));
    pluginLogger.trace("Determining schedule details\n");
    const unsigned short* title = info.GetTitle();
    booking.scheduleId = takeText(t_get_schedule_id(&info));
    booking.scheduleType = takeText(t_get_schedule_status_str(info.ReserveType()));
    booking.repeat = takeText(t_get_schedule_repeat(&info));
    if (title != nullptr && title[0] != 0) return booking;
    booking.manual = {.channelNumber = field(&ws_epg_channel_source::channel_num),
                      .channelName = field(&ws_epg_channel_source::channel_name),
                      .serviceType = field(&ws_epg_channel_source::service_type),
                      .antenna = field(&ws_epg_channel_source::antenna),
                      .scrambled = field(&ws_epg_channel_source::scrambled),
                      .start = std::to_string(program.StartTime()),
                      .end = std::to_string(program.EndTime())};
    return booking;
}

/// Hands `take` what the mirror writes for each of the store's bookings: 0, or -1 when it stopped at one
/// without a channel.
template <typename Take>
int visitBookings(Take take) {
    pluginLogger.trace("Getting remind items\n");
    CReminder* reminder = CReminder::GetInstance();
    if (reminder == nullptr) return 0;
    int count = 0;
    std::vector<CRemindInfo> items;
    reminder->GetRemindItemByType(count, items, allBookings);
    items.resize(std::min(items.size(), static_cast<std::size_t>(std::max(count, 0))));
    std::vector<CachedChannels::Number> numbers;
    std::ranges::transform(items, std::back_inserter(numbers), channelNumber);
    const CachedChannels channels(numbers);
    for (int i = 0; i < static_cast<int>(items.size()); ++i) {
        pluginLogger.trace("Getting remind item: %d\n", i);
        const auto place = static_cast<std::size_t>(i);
        CRemindInfo info = items[place];
        const auto& [tvmode, major, minor] = numbers[place];
        std::unique_ptr<TCChannel> channel;
        if (channels.of(place) == nullptr) channel.reset(t_get_cached_channel_by_num(tvmode, major, minor));
        std::optional<MirroredBooking> booking = mirrored(info, channel ? channel.get() : channels.of(place));
        if (!booking) return -1;
        take(std::move(*booking));
    }
    return 0;
}

}  // namespace

void EpgSQLPluginVexmoor::m_mirrorSchedules(ConnectionPtr connection) {
    if (pluginLogger.isTraceEnabled()) {  // whoever reads the trace wants to see every step of it
        m_removeDBSchedData(connection);
        m_updateDBSchedData(connection);
        return;
    }
    std::vector<MirroredBooking> bookings;
    visitBookings([&bookings](MirroredBooking booking) { bookings.push_back(std::move(booking)); });
    if (KeptMirror::holds(connection, bookings)) return;
    KeptMirror::Writing writing(connection);
    clearSchedules(connection, writing);
    {
        Statement update;
        update.setConnection(connection);
        for (const MirroredBooking& booking : bookings)
            m_writeBooking(booking, update, connection, writing);
    }
    writing.keep(std::move(bookings), [] {
        std::string createSql;
        m_createTblFrmEpg(GuideTable::schemaTemplate, createSql, {});
        return createSql;
    });
}

int EpgSQLPluginVexmoor::m_removeDBSchedData(ConnectionPtr connection) {
    KeptMirror::Writing unkept(connection);
    clearSchedules(connection, unkept);
    return 0;
}

int EpgSQLPluginVexmoor::m_updateDBSchedData(ConnectionPtr connection) {
    KeptMirror::Writing unkept(connection);
    Statement update;
    update.setConnection(connection);
    return visitBookings(
        [&](const MirroredBooking& booking) { m_writeBooking(booking, update, connection, unkept); });
}

void EpgSQLPluginVexmoor::m_writeBooking(const MirroredBooking& booking, Statement& update,
                                         ConnectionPtr connection, KeptMirror::Writing& writing) {
    if (!booking.manual) {
        const std::string sql = "UPDATE myView SET ScheduleId='" + booking.scheduleId + "', ScheduleType='" +
                                booking.scheduleType + "', Repeat='" + booking.repeat +
                                "' WHERE ChannelId='" + booking.channelId + "' AND EventId='" +
                                booking.programId + "';";
        pluginLogger.trace("SQL STATEMENT: %s\n", sql);
        const int result = run(update, sql);
        writing.wrote(result);
        if (result == SQLITE_DONE) pluginLogger.trace("Schedule data updated!\n");
        return;
    }
    pluginLogger.trace("Remind info: ChnldId: %s, EventId: %s, SchedId: %s\n", booking.channelId,
                       booking.programId, booking.scheduleId);
    if (m_checkIfEventIsInDB(booking.channelId, booking.programId, booking.scheduleId, connection)) return;
    const MirroredBooking::ManualRow& row = *booking.manual;
    m_insertSchedData(booking.channelId, row.channelNumber, row.channelName, row.serviceType, row.antenna,
                      row.scrambled, booking.programId, row.start, row.end, booking.scheduleId,
                      booking.scheduleType, booking.repeat, connection);
    writing.wrote(SQLITE_DONE);  // another try, with its pruning, takes the version further
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
        const std::string name = manualBookingName;
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
