// SQLite alone: what its part of a request costs at least.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace epgbench {

/// A database in memory on a plain connection: no functions, no bounds, no progress handler of the service.
class BareDatabase {
public:
    BareDatabase();

    /// Takes over all pages of another database.
    void copyFrom(sqlite3* other);
    void dropIndexes();

    /// Compiles a statement and steps it to its end. Answers how many rows came. Throws std::runtime_error.
    std::int64_t run(const std::string& sql) const;

    /// The same for many, in one transaction.
    void runAll(const std::vector<std::string>& statements) const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
    };
    std::unique_ptr<sqlite3, Close> database_;
};

}  // namespace epgbench
