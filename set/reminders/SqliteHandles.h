// An SQLite database of the set's own and its statements.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace epgset {

/// Why a database cannot be used; what() is one line that names the file.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One open database. Used by one thread at a time.
class OwnDatabase {
public:
    /// Opens the file or makes it. Throws DatabaseError.
    explicit OwnDatabase(const std::filesystem::path& file);

    /// Runs SQL text without results, all its statements. Throws DatabaseError.
    void run(const char* sql);

    sqlite3* handle() const { return handle_.get(); }

    /// Throws DatabaseError when the file is not in its place any more: what is written then is in no file
    /// that the next start opens.
    void requireInPlace() const;

    /// Throws what SQLite says of the last failure.
    [[noreturn]] void fail() const;

    /// Throws a DatabaseError of this file.
    [[noreturn]] void fail(std::string_view message) const;

private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };

    std::string name_;
    std::unique_ptr<sqlite3, Close> handle_;
};

/// One statement, compiled once and run as often as needed. The database must outlive it.
class OwnStatement {
public:
    /// Throws DatabaseError.
    OwnStatement(OwnDatabase& database, std::string_view sql);

    /// Gives the next parameter its value; the first after a run is the first. Texts are copied.
    OwnStatement& bind(std::int64_t value);
    OwnStatement& bind(std::string_view text);
    OwnStatement& bindNull();

    /// Runs to the next row: false at the end, after which the statement can be run again. Throws
    /// DatabaseError, and can be run again then too.
    bool step();

    std::int64_t integer(int column) const;
    bool isNull(int column) const;
    std::string text(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };

    OwnStatement& checked(int code);
    void rewind();

    OwnDatabase& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> handle_;
    int bound_ = 0;
};

/// A transaction that is rolled back when it goes without having been committed.
class OwnTransaction {
public:
    /// Throws DatabaseError.
    explicit OwnTransaction(OwnDatabase& database);
    ~OwnTransaction();
    OwnTransaction(const OwnTransaction&) = delete;
    OwnTransaction& operator=(const OwnTransaction&) = delete;

    /// Puts everything on disk. Throws DatabaseError.
    void commit();

private:
    OwnDatabase& database_;
    bool open_ = true;
};

}  // namespace epgset
