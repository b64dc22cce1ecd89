// The client's own SQL: statements, each a request of its own, parted by lines of "====".
#include <sqlite3.h>

#include <string>

#include "fuzz/Input.h"
#include "fuzz/Require.h"
#include "fuzz/Service.h"
#include "fuzz/Target.h"
#include "set/database/SqliteMemory.h"

namespace epgfuzz {
namespace {

constexpr std::size_t mostStatements = 5;
constexpr int maximumPages = 5120;

/// All bytes as escapes.
std::string escaped(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        out.append({'%', digits[byte >> 4], digits[byte & 0xF]});
    }
    return out;
}

int number(sqlite3* database, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    int value = 0;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        value = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return value;
}

/// Whether a statement is at work: was begun, and neither ended nor reset. Those that are kept are not.
bool isBusy(sqlite3* database) {
    sqlite3_stmt* statement = nullptr;
    while ((statement = sqlite3_next_stmt(database, statement)) != nullptr)
        if (sqlite3_stmt_busy(statement) != 0) return true;
    return false;
}

/// What no statement of a client may change.
void checkDatabase(sqlite3* database, std::string_view sql) {
    constexpr int main = 0;
    constexpr int temporary = 1;
    require(sqlite3_db_name(database, temporary + 1) == nullptr, "no database is attached", sql);
    require(std::string_view(sqlite3_db_filename(database, sqlite3_db_name(database, main))).empty(),
            "the database stays in memory", sql);
    require(sqlite3_get_autocommit(database) != 0, "no transaction stays open", sql);
    require(!isBusy(database), "no statement stays at work", sql);
    require(epgset::sqliteMemoryUsed() < epgset::mostSqliteMemory / 100 * 101,
            "SQLite stays within its memory", sql);
    require(number(database, "SELECT count(*) FROM sqlite_temp_schema") == 0, "nothing temporary is made",
            sql);
    require(number(database, "PRAGMA page_count") <= maximumPages, "the database stays within its pages",
            sql);
}

}  // namespace

void fuzzClientSql(std::string_view input) {
    const RestoredService service;
    for (const std::string_view piece : pieces(input, mostStatements)) {
        const std::string_view sql = upToNul(piece);
        service->answer("GET", "/ws/epg2?sql=" + escaped(sql));
        checkDatabase(Service::database(), sql);
    }
    if (service->isAsAtFirst()) return;
    // What other clients ask for, whatever was done to the table.
    service->answer("GET", "/ws/epg2/channels");
    service->answer("POST", "/ws/epg2/programs/pid-000-7-2-3/schedule", R"({"status":"RECORD"})");
    service->answer("GET", "/ws/epg2/programs?name=film&sort=start");
    service->maintain();
    checkDatabase(Service::database(), input);
}

}  // namespace epgfuzz
