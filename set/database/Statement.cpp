#include "host/Statement.h"

#include <climits>
#include <string_view>
#include <utility>

#include "host/Logger.h"
#include "set/database/DatabaseFaults.h"
#include "set/database/DatabaseGuard.h"
#include "set/database/DatabaseRequest.h"
#include "set/database/StatementCache.h"
#include "set/database/StatementText.h"

using epgset::DatabaseFault;

namespace {

const Container::Logger logger = Container::Logger::logger("set/database");

constexpr const char* injectedFault = "fault set by a test";

/// Holds a connection's lock, so that its error message is that of our own call.
class ConnectionLock {
public:
    explicit ConnectionLock(sqlite3* database) : m_mutex(sqlite3_db_mutex(database)) {
        sqlite3_mutex_enter(m_mutex);
    }
    ~ConnectionLock() { sqlite3_mutex_leave(m_mutex); }
    ConnectionLock(const ConnectionLock&) = delete;
    ConnectionLock& operator=(const ConnectionLock&) = delete;

private:
    sqlite3_mutex* m_mutex;
};

void reportCompileError(const char* message, const std::string& sql) {
    epgset::noteDatabaseError(message);
    logger.error("Cannot compile SQL: %s: %s", message, sql);
}

/// Notes and logs how the last run of a statement failed, if it did. The reset answers that also for a
/// handle that others stepped.
void reportRunError(sqlite3_stmt* statement) {
    sqlite3* const database = sqlite3_db_handle(statement);
    const ConnectionLock lock(database);
    const int code = sqlite3_reset(statement);
    if (code == SQLITE_OK) return;
    const char* const message = sqlite3_errmsg(database);
    epgset::noteDatabaseError(message);
    // An interruption was logged when it happened.
    if (code != SQLITE_INTERRUPT)
        logger.warning("An SQL statement failed: %s: %s", message, sqlite3_sql(statement));
}

/// Whether SQLite's reading ended at a NUL inside the text and not behind a statement's ";".
bool endsAtNul(const std::string& sql, std::size_t read) {
    return read < sql.size() && sql[read] == '\0' && (read == 0 || sql[read - 1] != ';');
}

/// Compiles the first statement of `sql`, or takes it as kept. Answers how much of the text it took, and all
/// of it, with a null `statement`, when that failed.
std::size_t compileFirst(sqlite3* database, epgset::StatementCache& kept, const std::string& sql,
                         sqlite3_stmt*& statement, bool& concernsRowsAlone) {
    statement = nullptr;
    if (sql.size() >= INT_MAX) {
        reportCompileError(sqlite3_errstr(SQLITE_TOOBIG), "(a text of more than 2 GiB)");
        return sql.size();
    }
    const ConnectionLock lock(database);
    statement = kept.take(sql);
    concernsRowsAlone = statement != nullptr;
    if (statement) return sql.size();
    const char* tail = nullptr;
    int code;
    {
        const epgset::TextCompilation compilation;
        // With the terminating NUL counted in, SQLite makes no copy of the text.
        code = sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size() + 1), &statement, &tail);
        concernsRowsAlone = compilation.concernsRowsAlone();
    }
    if (code != SQLITE_OK) {
        reportCompileError(sqlite3_errmsg(database), sql);
        return sql.size();
    }
    const auto read = static_cast<std::size_t>(tail - sql.c_str());
    if (endsAtNul(sql, read)) {
        sqlite3_finalize(std::exchange(statement, nullptr));
        reportCompileError("a NUL byte in the text", sql);
        return sql.size();
    }
    if (statement && !concernsRowsAlone) kept.clear();
    return statement ? read : sql.size();
}

/// Ends a statement that has been reset and belongs to the open connection of `kept`.
void keepOrFinalize(sqlite3_stmt* statement, epgset::StatementCache& kept, bool concernsRowsAlone) {
    const ConnectionLock lock(sqlite3_db_handle(statement));
    if (concernsRowsAlone) {
        kept.put(statement);
    } else {
        sqlite3_finalize(statement);
        kept.clear();  // a table that it dropped, say: texts that name it fail to compile from here on
    }
}

}  // namespace

Statement::~Statement() {
    close();
}

void Statement::compile() {
    close();
    const std::string sql = std::exchange(m_sql, std::string());
    sqlite3* const database = m_connection ? m_connection->handle() : nullptr;
    if (!database) {
        reportCompileError("no database is open", sql);
        return;
    }
    if (DatabaseFault::hits(DatabaseFault::Compile, sql)) {
        reportCompileError(injectedFault, sql);
        return;
    }
    epgset::beginStatementTime();
    const std::size_t read =
        compileFirst(database, *m_connection->m_kept, sql, m_handle, m_concernsRowsAlone);
    const std::size_t next = read + epgset::nextStatement(std::string_view(sql).substr(read));
    if (next < sql.size()) m_sql = sql.substr(next);
}

bool Statement::step() {
    if (!m_handle) return false;
    if (DatabaseFault::hits(DatabaseFault::Step, sqlite3_sql(m_handle))) {
        epgset::noteDatabaseError(injectedFault);
        return false;
    }
    const int code = sqlite3_step(m_handle);
    return code == SQLITE_ROW || code == SQLITE_DONE;
}

void Statement::close() {
    if (!m_handle) return;
    reportRunError(m_handle);
    sqlite3_stmt* const ended = std::exchange(m_handle, nullptr);
    if (m_connection && m_connection->handle() == sqlite3_db_handle(ended))
        keepOrFinalize(ended, *m_connection->m_kept, m_concernsRowsAlone);
    else
        sqlite3_finalize(ended);  // of a connection that was exchanged since
}
