// The list of the database connections that plug-ins have open.
#pragma once

#include <sqlite3.h>

#include <cstddef>

namespace epgset {

/// Keeps an open connection in the list until it is removed, before it is closed. Any thread. Only
/// connections opened through host/Connection.h stand here: the set's own databases, which other threads
/// write to, are opened with SQLite's own calls and are not touched.
void addOpenConnection(sqlite3* database);
void removeOpenConnection(sqlite3* database);

/// Rolls back every transaction that is open now, and logs it. Answers how many there were. No thread
/// may be at work inside a transaction of its own.
std::size_t rollBackOpenTransactions();

/// How many statements are compiled and not yet finalised, over all those connections.
std::size_t openStatementCount();

}  // namespace epgset
