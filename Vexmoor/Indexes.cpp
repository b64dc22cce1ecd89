// Indexes beside the table, for what runs on every request. Every statement gives the same rows in the same
// order with them and without: that of the table where the statement asks for none. (A client's join of the
// table with itself apart, for which SQLite makes itself an index where there is none.)
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace {

/// Pages that stay free for what is booked by hand after a fill.
constexpr int freePages = 64;

/// Pages that handing hints to SQLite takes for a moment.
constexpr int hintPages = 8;

/// An index and what it takes at most, in percent of the pages before it.
struct Index {
    const char* sql;
    int percent;
};

/// In the order in which they are worth their pages.
constexpr Index indexes[] = {
    // One programme, and marking the programme of a booking.
    {"CREATE INDEX myViewEvent ON myView(EventId) WHERE EventId IS NOT NULL;", 30},
    // Clearing the row of one booking.
    {"CREATE INDEX myViewSchedule ON myView(ScheduleId) WHERE ScheduleId IS NOT NULL;", 12},
    // The booked rows, by a constant: that is in the order of the table.
    {"CREATE INDEX myViewBooked ON myView((0)) WHERE NOT ScheduleId='';", 1},
    // The rows that the list of all programmes leaves out, hardly any: it counts its total with them.
    {"CREATE INDEX myViewStub ON myView((0)) WHERE ProgramName='channel_stub' OR ProgramName IS NULL;", 1},
    // One channel, and its programmes.
    {"CREATE INDEX myViewChannel ON myView(ChannelId) WHERE ChannelId IS NOT NULL;", 20},
};

/// What SQLite's planner is to think of the indexes: rows in the index, rows of one key, bytes of an entry.
/// By its own guess it would read ranges and lists of identifiers, or a column alone, from an index, in the
/// index's order. The numbers make each use of an index cost more than reading the whole table, but for a
/// comparison with one identifier, whose rows come in the order of the table. An entry of myViewSchedule
/// costs so much less than the row beside it that a statement of the index's column alone is served (marking
/// and clearing a booking), and the lists of what is not booked, nearly the whole table, are not.
constexpr const char* hints =
    "ANALYZE sqlite_master;"  // makes the table of the statistics
    "INSERT INTO sqlite_stat1(tbl,idx,stat) SELECT 'myView',column1,column2 FROM (VALUES"
    "('myViewEvent','1048576 100000 unordered sz=1000000000'),"
    "('myViewSchedule','1048576 600000 unordered sz=8800'),"
    "('myViewBooked','20 20'),"
    "('myViewStub','20 20'),"
    "('myViewChannel','1048576 120000 unordered sz=1000000000')) WHERE column1 IN (SELECT name FROM "
    "sqlite_master);"
    "ANALYZE sqlite_master;"  // reads them
    "DROP TABLE sqlite_stat1;"
    "DROP TABLE IF EXISTS sqlite_stat4;";

int pragmaNumber(Container::SharedPtr<Connection> connection, const char* sql) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    statement.compile();
    return statement.step() ? sqlite3_column_int(statement.handle(), 0) : -1;
}

/// Pages that hold something: those that a dropped table left behind are there to be used again.
int usedPages(Container::SharedPtr<Connection> connection) {
    return pragmaNumber(connection, "PRAGMA page_count;") -
           pragmaNumber(connection, "PRAGMA freelist_count;");
}

}  // namespace

int EpgSQLPluginVexmoor::m_createIndexes(ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    for (const Index& index : indexes) {
        const int pages = usedPages(connection);
        if (pages <= 0 || pages + pages * index.percent / 100 + freePages > maximumPages) {
            pluginLogger.debug("No room for an index\n");
            break;
        }
        statement.setSql(index.sql);
        statement.compile();
        if (!statement.step()) pluginLogger.debug("An index could not be made\n");
    }
    statement.close();
    m_hintIndexes(connection);
    return 0;
}

void EpgSQLPluginVexmoor::m_hintIndexes(ConnectionPtr connection) {
    sqlite3* const database = connection ? connection->handle() : nullptr;
    // Not in a client's transaction, which a failure could end.
    if (database == nullptr || sqlite3_get_autocommit(database) == 0) return;
    if (usedPages(connection) + hintPages > maximumPages) return;
    // What fails here changes no answer, so it is no failure of the request that is running.
    if (sqlite3_exec(database, hints, nullptr, nullptr, nullptr) == SQLITE_OK) return;
    sqlite3_exec(database, "DROP TABLE IF EXISTS sqlite_stat1;", nullptr, nullptr, nullptr);
    pluginLogger.debug("The indexes stay without hints\n");
}
