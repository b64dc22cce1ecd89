#include "host/Connection.h"

#include <memory>

#include "host/Logger.h"
#include "set/database/DatabaseGuard.h"
#include "set/database/OpenConnections.h"
#include "set/database/SearchScore.h"
#include "set/database/SqliteMemory.h"
#include "set/database/StatementCache.h"

namespace {

const Container::Logger logger = Container::Logger::logger("set/database");

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

}  // namespace

Connection::Connection() = default;

Connection::~Connection() {
    if (!m_handle) return;
    epgset::removeOpenConnection(m_handle);
    m_kept->clear();
    sqlite3_close_v2(m_handle);
}

bool Connection::open(const std::string& name) {
    if (m_handle) {
        logger.error("Cannot open database %s: the connection is open already", name);
        return false;
    }
    if (name.find('\0') != std::string::npos) {
        logger.error("Cannot open database %s: its name holds a NUL", name);
        return false;
    }
    epgset::boundSqliteMemory();
    sqlite3* opened = nullptr;
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    int code = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
    std::unique_ptr<sqlite3, CloseDatabase> database(opened);
    if (code == SQLITE_OK) code = epgset::registerSearchScore(opened);
    if (code == SQLITE_OK) code = epgset::guardDatabase(opened);
    if (code != SQLITE_OK) {
        logger.error("Cannot open database %s: %s", name,
                     opened ? sqlite3_errmsg(opened) : sqlite3_errstr(code));
        return false;
    }
    m_kept = std::make_unique<epgset::StatementCache>();
    epgset::addOpenConnection(opened, *m_kept);
    m_handle = database.release();
    return true;
}
