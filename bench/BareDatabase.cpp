#include "bench/BareDatabase.h"

#include <stdexcept>

namespace epgbench {

BareDatabase::BareDatabase() {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open(":memory:", &opened);
    database_.reset(opened);
    if (code != SQLITE_OK) throw std::runtime_error("SQLite opens no database in memory");
}

void BareDatabase::copyFrom(sqlite3* other) {
    sqlite3_backup* const copy = sqlite3_backup_init(database_.get(), "main", other, "main");
    constexpr int allPages = -1;
    sqlite3_backup_step(copy, allPages);
    if (sqlite3_backup_finish(copy) != SQLITE_OK)
        throw std::runtime_error(std::string("copying the table: ") + sqlite3_errmsg(database_.get()));
}

void BareDatabase::dropIndexes() {
    std::vector<std::string> drops;
    const auto keep = [](void* list, int, char** values, char**) {
        static_cast<std::vector<std::string>*>(list)->push_back(std::string("DROP INDEX ") + values[0]);
        return 0;
    };
    sqlite3_exec(database_.get(), "SELECT name FROM sqlite_master WHERE type='index' AND sql IS NOT NULL",
                 keep, &drops, nullptr);
    for (const std::string& drop : drops)
        run(drop);
}

std::int64_t BareDatabase::run(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &statement, nullptr);
    std::int64_t rows = 0;
    int code = sqlite3_step(statement);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement))
        ++rows;
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) throw std::runtime_error(sql + ": " + sqlite3_errmsg(database_.get()));
    return rows;
}

void BareDatabase::runAll(const std::vector<std::string>& statements) const {
    run("BEGIN");
    for (const std::string& sql : statements)
        run(sql);
    run("COMMIT");
}

}  // namespace epgbench
