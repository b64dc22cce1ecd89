// The list of the database connections that plug-ins have open.
#pragma once

#include <sqlite3.h>

#include <cstddef>

#include "set/database/StatementCache.h"

namespace epgset {

/// Keeps an open connection in the list until it is removed, before it is closed; its kept statements live as
/// long. Any thread. Only
/// connections opened through host/Connection.h stand here: the set's own databases, which other threads
/// write to, are opened with SQLite's own calls and are not touched.
void addOpenConnection(sqlite3* database, const StatementCache& kept);
void removeOpenConnection(sqlite3* database);

/// Rolls back every transaction that is open now, and logs it. Answers how many there were. No thread
/// may be at work inside a transaction of its own.
std::size_t rollBackOpenTransactions();

/// How many statements are compiled and in use, over all those connections: those kept for later are not.
std::size_t openStatementCount();

}  // namespace epgset
