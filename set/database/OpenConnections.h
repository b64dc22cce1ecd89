// The list of all open database connections of the process.
#pragma once

#include <sqlite3.h>

#include <cstddef>

namespace epgset {

/// Keeps an open connection in the list until it is removed, before it is closed. Any thread.
void addOpenConnection(sqlite3* database);
void removeOpenConnection(sqlite3* database);

/// Rolls back every transaction that is open now, and logs it. Answers how many there were. No thread
/// may be at work inside a transaction of its own.
std::size_t rollBackOpenTransactions();

/// How many statements are compiled and not yet finalised, over all connections.
std::size_t openStatementCount();

}  // namespace epgset
