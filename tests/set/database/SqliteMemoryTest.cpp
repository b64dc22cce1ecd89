#include "set/database/SqliteMemory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "set/database/DatabaseRequest.h"
#include "tests/set/database/TestDatabase.h"

namespace epgset {
namespace {

/// Sorts that many megabytes.
std::string sortOf(int megabytes) {
    return "WITH RECURSIVE counted(n) AS (VALUES (1) UNION ALL SELECT n + 1 FROM counted WHERE n < " +
           std::to_string(megabytes) +
           ") SELECT length(v) FROM (SELECT n || hex(zeroblob(500000)) AS v FROM counted ORDER BY 1)";
}

TEST(SqliteMemory, CountsWhatATableHolds) {
    const auto connection = openDatabase();
    const std::size_t before = sqliteMemoryUsed();
    ASSERT_EQ(run(connection, "CREATE TABLE kept AS SELECT hex(zeroblob(500000)) AS v"), SQLITE_DONE);
    EXPECT_GT(sqliteMemoryUsed(), before + 1'000'000);
    EXPECT_LT(sqliteMemoryUsed(), before + 2'000'000);
    EXPECT_EQ(sqlite3_memory_used(), 0) << "SQLite counts as well";
}

TEST(SqliteMemory, GivesBackWhatAConnectionHeld) {
    const std::size_t before = sqliteMemoryUsed();
    {
        const auto connection = openDatabase();
        ASSERT_EQ(run(connection, sortOf(20)), SQLITE_DONE);
        EXPECT_GT(sqliteMemoryUsed(), before);
    }
    EXPECT_EQ(sqliteMemoryUsed(), before);
}

TEST(SqliteMemory, EndsAStatementThatWouldHoldMoreThanTheBound) {
    const auto connection = openDatabase();
    constexpr int megabytes = mostSqliteMemory >> 20;
    EXPECT_EQ(run(connection, sortOf(megabytes / 2)), SQLITE_DONE);
    EXPECT_EQ(run(connection, sortOf(megabytes * 3 / 2)), SQLITE_NOMEM);
    EXPECT_EQ(lastDatabaseError(), "out of memory");
    EXPECT_EQ(run(connection, sortOf(megabytes / 2)), SQLITE_DONE) << "it is there for the next one again";
}

}  // namespace
}  // namespace epgset
