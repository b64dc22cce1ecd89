#include "set/reminders/SqliteHandles.h"

#include <new>

#include "set/database/SqliteMemory.h"

namespace epgset {

OwnDatabase::OwnDatabase(const std::filesystem::path& file) : name_(file.string()) {
    boundSqliteMemory();
    sqlite3* opened = nullptr;
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    const int code = sqlite3_open_v2(name_.c_str(), &opened, flags, nullptr);
    handle_.reset(opened);
    if (code != SQLITE_OK) fail(opened ? sqlite3_errmsg(opened) : sqlite3_errstr(code));
    sqlite3_extended_result_codes(opened, 1);
    constexpr int patience = 2000;  // milliseconds: somebody may look at the file with a tool
    sqlite3_busy_timeout(opened, patience);
}

void OwnDatabase::run(const char* sql) {
    if (sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

void OwnDatabase::requireInPlace() const {
    int moved = 0;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved != 0) fail("the file is gone, or another one stands in its place");
}

void OwnDatabase::fail() const {
    fail(sqlite3_errmsg(handle()));
}

void OwnDatabase::fail(std::string_view message) const {
    throw DatabaseError(name_ + ": " + std::string(message));
}

OwnStatement::OwnStatement(OwnDatabase& database, std::string_view sql) : database_(database) {
    sqlite3_stmt* compiled = nullptr;
    if (sqlite3_prepare_v2(database.handle(), sql.data(), static_cast<int>(sql.size()), &compiled, nullptr) !=
        SQLITE_OK) {
        database.fail();
    }
    handle_.reset(compiled);
}

OwnStatement& OwnStatement::bind(std::int64_t value) {
    return checked(sqlite3_bind_int64(handle_.get(), ++bound_, value));
}

OwnStatement& OwnStatement::bind(std::string_view text) {
    const char* const start = text.empty() ? "" : text.data();  // null would be bound as NULL
    return checked(
        sqlite3_bind_text64(handle_.get(), ++bound_, start, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

OwnStatement& OwnStatement::bindNull() {
    return checked(sqlite3_bind_null(handle_.get(), ++bound_));
}

OwnStatement& OwnStatement::checked(int code) {
    if (code != SQLITE_OK) {
        rewind();
        database_.fail(sqlite3_errstr(code));
    }
    return *this;
}

bool OwnStatement::step() {
    const int code = sqlite3_step(handle_.get());
    if (code == SQLITE_ROW) return true;
    // Also when the message takes more memory than there is.
    struct Rewinding {
        OwnStatement& statement;
        ~Rewinding() { statement.rewind(); }
    } const afterwards{*this};
    if (code != SQLITE_DONE) database_.fail();
    return false;
}

std::int64_t OwnStatement::integer(int column) const {
    return sqlite3_column_int64(handle_.get(), column);
}

bool OwnStatement::isNull(int column) const {
    return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

std::string OwnStatement::text(int column) const {
    const auto* const start = reinterpret_cast<const char*>(sqlite3_column_text(handle_.get(), column));
    const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column));
    if (!start && !isNull(column)) throw std::bad_alloc();
    return start ? std::string(start, bytes) : std::string();
}

void OwnStatement::rewind() {
    sqlite3_reset(handle_.get());
    bound_ = 0;
}

OwnTransaction::OwnTransaction(OwnDatabase& database) : database_(database) {
    database_.requireInPlace();
    database_.run("BEGIN IMMEDIATE");
}

// What cannot be rolled back has been already: SQLite does so itself on some failures.
OwnTransaction::~OwnTransaction() {
    if (open_) sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void OwnTransaction::commit() {
    database_.run("COMMIT");
    open_ = false;
}

}  // namespace epgset
