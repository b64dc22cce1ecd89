#include "host/Statement.h"

#include <climits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/Logger.h"
#include "set/database/DatabaseFaults.h"
#include "set/database/DatabaseGuard.h"
#include "set/database/DatabaseRequest.h"
#include "set/database/InsertText.h"
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

/// The text that a statement was compiled from: with its row where that stands in parameters. Throws
/// std::bad_alloc.
std::string textOf(sqlite3_stmt* statement, bool hasRow) {
    const std::unique_ptr<char, decltype(&sqlite3_free)> whole(
        hasRow ? sqlite3_expanded_sql(statement) : nullptr, &sqlite3_free);
    return whole ? whole.get() : sqlite3_sql(statement);
}

/// Notes and logs how the last run of a statement failed, if it did. The reset answers that also for a
/// handle that others stepped.
void reportRunError(sqlite3_stmt* statement, bool hasRow) noexcept {
    sqlite3* const database = sqlite3_db_handle(statement);
    const ConnectionLock lock(database);
    const int code = sqlite3_reset(statement);
    if (code == SQLITE_OK) return;
    const char* const message = sqlite3_errmsg(database);
    epgset::noteDatabaseError(message);
    // An interruption was logged when it happened.
    if (code == SQLITE_INTERRUPT) return;
    try {
        const std::string told = message;  // what follows may take SQLite's place for it
        logger.warning("An SQL statement failed: %s: %s", told, textOf(statement, hasRow));
    } catch (const std::bad_alloc&) {
        logger.warning("An SQL statement failed: %s: %s", sqlite3_errstr(code), sqlite3_sql(statement));
    }
}

/// Whether SQLite's reading ended at a NUL inside the text and not behind a statement's ";".
bool endsAtNul(const std::string& sql, std::size_t read) {
    return read < sql.size() && sql[read] == '\0' && (read == 0 || sql[read - 1] != ';');
}

struct Compiled {
    sqlite3_stmt* statement = nullptr;
    bool concernsRowsAlone = false;
    std::size_t read = 0;  ///< how much of the text it took
    int code = SQLITE_OK;
};

/// Compiles the first statement of a text, or takes it as kept.
Compiled takeOrCompile(sqlite3* database, epgset::StatementCache& kept, const std::string& sql) {
    if (sqlite3_stmt* const statement = kept.take(sql)) return {statement, true, sql.size()};
    Compiled compiled;
    const char* tail = sql.c_str();
    const epgset::TextCompilation compilation;
    // With the terminating NUL counted in, SQLite makes no copy of the text.
    compiled.code = sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size() + 1),
                                       &compiled.statement, &tail);
    compiled.concernsRowsAlone = compilation.concernsRowsAlone();
    compiled.read = static_cast<std::size_t>(tail - sql.c_str());
    return compiled;
}

/// Compiles the first statement of `sql`; one without a handle took all of the text. Texts that it refers to
/// are put into `row`, which must stay as it is until the statement is closed.
Compiled compileFirst(sqlite3* database, epgset::StatementCache& kept, const std::string& sql,
                      std::optional<std::string>& row) {
    row.reset();
    if (sql.size() >= INT_MAX) {
        reportCompileError(sqlite3_errstr(SQLITE_TOOBIG), "(a text of more than 2 GiB)");
        return {nullptr, false, sql.size()};
    }
    auto insert = epgset::InsertText::of(sql);
    const ConnectionLock lock(database);
    Compiled compiled = takeOrCompile(database, kept, insert ? insert->withParameters() : sql);
    if (insert && compiled.statement) {
        row = insert->takeRow();
        compiled.code = insert->bind(compiled.statement, *row);
    }
    if (compiled.code != SQLITE_OK) {
        reportCompileError(sqlite3_errmsg(database), sql);
        sqlite3_finalize(std::exchange(compiled.statement, nullptr));
    } else if (!insert && endsAtNul(sql, compiled.read)) {
        sqlite3_finalize(std::exchange(compiled.statement, nullptr));
        reportCompileError("a NUL byte in the text", sql);
    } else if (compiled.statement && !compiled.concernsRowsAlone) {
        kept.clear();
    }
    if (insert || !compiled.statement) compiled.read = sql.size();
    return compiled;
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
    const Compiled compiled = compileFirst(database, *m_connection->m_kept, sql, m_row);
    m_handle = compiled.statement;
    m_concernsRowsAlone = compiled.concernsRowsAlone;
    const std::size_t next =
        compiled.read + epgset::nextStatement(std::string_view(sql).substr(compiled.read));
    if (next < sql.size()) m_sql = sql.substr(next);
}

bool Statement::step() {
    if (!m_handle) return false;
    if (DatabaseFault::areSet() &&
        DatabaseFault::hits(DatabaseFault::Step, textOf(m_handle, m_row.has_value()))) {
        epgset::noteDatabaseError(injectedFault);
        return false;
    }
    const int code = sqlite3_step(m_handle);
    return code == SQLITE_ROW || code == SQLITE_DONE;
}

void Statement::close() {
    if (!m_handle) return;
    reportRunError(m_handle, m_row.has_value());
    sqlite3_stmt* const ended = std::exchange(m_handle, nullptr);
    if (m_connection && m_connection->handle() == sqlite3_db_handle(ended))
        keepOrFinalize(ended, *m_connection->m_kept, m_concernsRowsAlone);
    else
        sqlite3_finalize(ended);  // of a connection that was exchanged since
}
