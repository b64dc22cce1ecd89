#include "set/database/OpenConnections.h"

#include <mutex>
#include <vector>

#include "host/Logger.h"

namespace epgset {
namespace {

const Container::Logger logger = Container::Logger::logger("set/database");

struct OpenConnection {
    sqlite3* database;
    const StatementCache* kept;
};

/// Never destroyed: a plug-in's static connection may close after the statics of this library.
struct OpenConnections {
    std::mutex mutex;
    std::vector<OpenConnection> list;
};

OpenConnections& openConnections() {
    static auto* const connections = new OpenConnections;
    return *connections;
}

}  // namespace

void addOpenConnection(sqlite3* database, const StatementCache& kept) {
    OpenConnections& connections = openConnections();
    const std::lock_guard lock(connections.mutex);
    connections.list.push_back({database, &kept});
}

void removeOpenConnection(sqlite3* database) {
    OpenConnections& connections = openConnections();
    const std::lock_guard lock(connections.mutex);
    std::erase_if(connections.list,
                  [database](const OpenConnection& open) { return open.database == database; });
}

std::size_t rollBackOpenTransactions() {
    OpenConnections& connections = openConnections();
    const std::lock_guard lock(connections.mutex);
    std::size_t count = 0;
    for (const auto& [database, kept] : connections.list) {
        if (sqlite3_get_autocommit(database) != 0) continue;
        ++count;
        if (sqlite3_exec(database, "ROLLBACK", nullptr, nullptr, nullptr) == SQLITE_OK) {
            logger.warning("Rolled back a transaction that a request left open");
        } else {
            logger.error("Cannot roll back a transaction that a request left open: %s",
                         sqlite3_errmsg(database));
        }
    }
    return count;
}

std::size_t openStatementCount() {
    OpenConnections& connections = openConnections();
    const std::lock_guard lock(connections.mutex);
    std::size_t count = 0;
    for (const auto& [database, kept] : connections.list) {
        sqlite3_mutex* const mutex = sqlite3_db_mutex(database);
        sqlite3_mutex_enter(mutex);
        for (sqlite3_stmt* statement = sqlite3_next_stmt(database, nullptr); statement;
             statement = sqlite3_next_stmt(database, statement))
            ++count;
        count -= kept->size();
        sqlite3_mutex_leave(mutex);
    }
    return count;
}

}  // namespace epgset
