// Indexes beside the table, for what runs on every request. The statements of the service give the same
// rows in the same order with them and without.
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace {

/// Pages that stay free for what is booked by hand after a fill.
constexpr int freePages = 64;

/// In the order in which they are worth their pages, but for one thing: among equals SQLite prefers the
/// index made last, and the list of the schedules must keep the order of the table.
constexpr const char* indexes[] = {
    // One programme, and marking the programme of a booking. Not for a scan of all rows, whose order it
    // would change: hence the condition, which a comparison with an identifier implies.
    "CREATE INDEX myViewEvent ON myView(EventId) WHERE EventId IS NOT NULL;",
    // Clearing the row of one booking.
    "CREATE INDEX myViewSchedule ON myView(ScheduleId) WHERE ScheduleId IS NOT NULL;",
    // The booked rows, by a constant: that is in the order of the table.
    "CREATE INDEX myViewBooked ON myView((0)) WHERE NOT ScheduleId='';",
};

}  // namespace

int EpgSQLPluginVexmoor::m_createIndexes(ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    for (const char* sql : indexes) {
        statement.setSql("PRAGMA page_count;");
        statement.compile();
        if (!statement.step()) break;
        const int pages = sqlite3_column_int(statement.handle(), 0);
        // The larger index takes up to a quarter of the table's pages.
        if (pages + pages * 3 / 10 + freePages > maximumPages) {
            pluginLogger.debug("No room for an index\n");
            break;
        }
        statement.setSql(sql);
        statement.compile();
        if (!statement.step()) pluginLogger.debug("An index could not be made\n");
    }
    statement.close();
    return 0;
}
