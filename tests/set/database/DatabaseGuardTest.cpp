#include "set/database/DatabaseGuard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "host/Logger.h"
#include "set/database/DatabaseRequest.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace epgset {
namespace {

class DatabaseGuard : public testing::Test {
protected:
    DatabaseGuard() {
        std::filesystem::create_directories(folder);
        EXPECT_EQ(run(connection, "CREATE TABLE myView (a INTEGER, b TEXT)"), SQLITE_DONE);
        EXPECT_EQ(run(connection, "INSERT INTO myView VALUES (1, 'one'), (2, 'two')"), SQLITE_DONE);
    }
    ~DatabaseGuard() override { std::filesystem::remove_all(folder); }

    std::string file() const { return (folder / "out.db").string(); }
    bool wroteAFile() const { return !std::filesystem::is_empty(folder); }

    /// What is logged as refused while `sql` runs, which must fail.
    std::vector<std::string> refusals(const std::string& sql) {
        capture.clear();
        EXPECT_NE(run(connection, sql), SQLITE_DONE) << sql;
        EXPECT_NE(lastDatabaseError(), "") << sql;
        return capture.messagesOf("set/database", Logger::Warning);
    }

    void expectFailure(const std::string& sql) {
        EXPECT_NE(run(connection, sql), SQLITE_DONE) << sql.substr(0, 100);
        EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM myView"), "2") << "the connection still works";
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("guard-test-" + std::to_string(getpid()));
    LogCapture capture;
    Container::SharedPtr<Connection> connection = openDatabase();
};

TEST_F(DatabaseGuard, RefusesToAttachAnotherDatabase) {
    EXPECT_EQ(refusals("ATTACH '" + file() + "' AS other")[0],
              "Refused in an SQL statement: ATTACH " + file());
    for (const std::string& sql : std::vector<std::string>{
             "ATTACH '' AS other", "ATTACH ':memory:' AS other", "ATTACH ('" + file() + "') AS other",
             "ATTACH 'a' || 'b' AS other", "ATTACH 'file:" + file() + "?mode=rwc' AS other"})
        EXPECT_FALSE(refusals(sql).empty()) << sql;
    EXPECT_FALSE(wroteAFile());
}

TEST_F(DatabaseGuard, RefusesToDetach) {
    EXPECT_EQ(refusals("DETACH main")[0], "Refused in an SQL statement: DETACH main");
}

TEST_F(DatabaseGuard, LetsVacuumRunButNotIntoAFile) {
    EXPECT_EQ(run(connection, "vacuum;"), SQLITE_DONE);
    EXPECT_EQ(run(connection, "VACUUM main;"), SQLITE_DONE);
    EXPECT_EQ(refusals("VACUUM INTO '" + file() + "'")[0], "Refused in an SQL statement: ATTACH " + file());
    EXPECT_FALSE(wroteAFile());
    EXPECT_EQ(valueOf(connection, "SELECT count(*) FROM myView"), "2");
}

TEST_F(DatabaseGuard, AcceptsTheTwoLimitsThatAPluginSets) {
    EXPECT_EQ(run(connection, "PRAGMA max_page_size = 1024;"), SQLITE_DONE);
    EXPECT_EQ(valueOf(connection, "PRAGMA max_page_count = 5120;"), "5120");
    EXPECT_EQ(valueOf(connection, "PRAGMA page_size"), "4096") << "the first of the two has no effect";
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST_F(DatabaseGuard, KeepsThePageLimitThroughAVacuum) {
    ASSERT_EQ(run(connection, "PRAGMA max_page_count = 5120;"), SQLITE_DONE);
    const std::string fill =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000)"
        " INSERT INTO myView SELECT i, hex(zeroblob(500)) FROM n";
    EXPECT_EQ(run(connection, fill), SQLITE_FULL);
    EXPECT_EQ(lastDatabaseError(), "database or disk is full");
    ASSERT_EQ(
        run(connection, "INSERT INTO myView SELECT column1, hex(zeroblob(2000)) FROM (VALUES (3), (4))"),
        SQLITE_DONE);
    EXPECT_EQ(run(connection, "vacuum;"), SQLITE_DONE);
    EXPECT_EQ(run(connection, fill), SQLITE_FULL);
    EXPECT_EQ(valueOf(connection, "PRAGMA max_page_count"), "5120");
}

TEST_F(DatabaseGuard, RefusesOtherPragmas) {
    EXPECT_THAT(refusals("PRAGMA journal_mode = wal"),
                ElementsAre("Refused in an SQL statement: PRAGMA journal_mode = wal"));
    for (const char* sql : {"PRAGMA max_page_count = 5121",
                            "PRAGMA max_page_count = 1073741823",
                            "PRAGMA max_page_count(0)",
                            "PRAGMA max_page_size = 4096",
                            "PRAGMA page_size = 65536",
                            "PRAGMA writable_schema = ON",
                            "PRAGMA writable_schema = RESET",
                            "PRAGMA temp_store_directory = '/tmp'",
                            "PRAGMA temp_store = FILE",
                            "PRAGMA data_store_directory = '/tmp'",
                            "PRAGMA hard_heap_limit = 1",
                            "PRAGMA soft_heap_limit = 1",
                            "PRAGMA cache_size = 100000",
                            "PRAGMA mmap_size = 1000000",
                            "PRAGMA trusted_schema = 1",
                            "PRAGMA user_version = 7",
                            "PRAGMA encoding = 'UTF-16'",
                            "PRAGMA query_only = 1",
                            "PRAGMA threads = 8",
                            "PRAGMA recursive_triggers = 1",
                            "PRAGMA integrity_check",
                            "PRAGMA journal_mode",
                            "pragma UNKNOWN",
                            "PRAGMA wal_checkpoint",
                            "PRAGMA optimize",
                            "PRAGMA main.locking_mode = EXCLUSIVE"})
        EXPECT_EQ(refusals(sql).size(), 1u) << sql;
}

TEST_F(DatabaseGuard, AllowsPragmasThatReadTheSchema) {
    EXPECT_EQ(valueOf(connection, "PRAGMA table_info(myView)"), "0");
    EXPECT_EQ(valueOf(connection, "PRAGMA Table_Info = 'myView'"), "0");
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(name) FROM pragma_table_info('myView')"), "a,b");
    for (const char* sql :
         {"PRAGMA page_count", "PRAGMA freelist_count", "PRAGMA database_list", "PRAGMA compile_options",
          "PRAGMA function_list", "SELECT * FROM pragma_table_list"})
        EXPECT_EQ(run(connection, sql), SQLITE_DONE) << sql;
    EXPECT_THAT(capture.records(), IsEmpty());
}

TEST_F(DatabaseGuard, RefusesPragmasInTheirTableForm) {
    EXPECT_FALSE(refusals("SELECT * FROM pragma_journal_mode").empty());
    EXPECT_FALSE(refusals("SELECT * FROM pragma_integrity_check").empty());
    expectFailure("SELECT * FROM pragma_user_version(7)");
    EXPECT_EQ(valueOf(connection, "PRAGMA user_version"), "0");
}

TEST_F(DatabaseGuard, RefusesExtensionsAndVirtualTables) {
    EXPECT_FALSE(refusals("SELECT load_extension('/tmp/x.so')").empty());
    EXPECT_FALSE(refusals("SELECT fts3_tokenizer('simple')").empty());
    for (const char* module : {"fts5", "fts4", "rtree", "dbstat"})
        EXPECT_FALSE(refusals("CREATE VIRTUAL TABLE v USING " + std::string(module) + "(x)").empty())
            << module;
    for (const char* sql :
         {"SELECT * FROM dbstat", "SELECT * FROM sqlite_dbpage", "SELECT * FROM sqlite_stmt",
          "SELECT writefile('x', 'y')", "SELECT readfile('/etc/passwd')"})
        expectFailure(sql);
}

TEST_F(DatabaseGuard, RefusesTemporaryTables) {
    for (const char* sql : {"CREATE TEMP TABLE x (a)", "CREATE TABLE temp.x (a)",
                            "CREATE TEMP TABLE x AS SELECT 1", "CREATE TEMP VIEW x AS SELECT 1",
                            "CREATE TEMP TRIGGER x AFTER INSERT ON myView BEGIN SELECT 1; END"})
        EXPECT_FALSE(refusals(sql).empty()) << sql;
}

TEST_F(DatabaseGuard, RefusesToWriteTheSchemaTable) {
    expectFailure("UPDATE sqlite_master SET sql = 'x'");
    expectFailure("DELETE FROM sqlite_schema");
    expectFailure("INSERT INTO sqlite_master VALUES ('table', 'x', 'x', 2, 'CREATE TABLE x (a)')");
}

TEST_F(DatabaseGuard, RefusesGiantValuesTextsAndExpressions) {
    for (const char* sql :
         {"SELECT randomblob(1000000000)", "SELECT zeroblob(5000000)",
          "SELECT length(zeroblob(1000000000) || 'x')", "SELECT printf('%.*c', 1000000000, 'x')",
          "SELECT replace(hex(zeroblob(1000000)), '0', 'xxxxxxxx')"})
        expectFailure(sql);

    std::string deep = "1";
    for (int depth = 0; depth < 300; ++depth)
        deep = "(" + deep + "+1)";
    expectFailure("SELECT " + deep);

    std::string compound = "SELECT 1";
    for (int term = 0; term < 1000; ++term)
        compound += " UNION ALL SELECT 1";
    expectFailure(compound);

    expectFailure("SELECT '" + std::string(1024 * 1024, 'x') + "'");
    expectFailure("SELECT " + std::string(100000, '('));
}

TEST_F(DatabaseGuard, RefusesFunctionCallsThatNeverEnd) {
    const std::string many = "replace(hex(zeroblob(1000000)), '0', 'a')";
    const std::string fewer = "replace(hex(zeroblob(500000)), '0', 'a')";
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& call :
         {"instr(" + many + ", " + fewer + " || 'b')", "replace(" + many + ", " + fewer + " || 'b', 'c')",
          "trim(" + many + ", replace(" + fewer + ", 'a', 'b') || 'a')", "ltrim(" + many + ", " + fewer + ")",
          "rtrim(" + many + ", " + fewer + ")", "json_patch(" + many + ", " + many + ")",
          std::string("printf('%.*c', 1000000000, 'x')"), std::string("printf('%.1000000000c', 'x')"),
          std::string("format('%d %-.*c', 1, -2000000000, 'x')"),
          std::string("printf('%%%,.*c', '999999999', 'x')")}) {
        EXPECT_EQ(run(connection, "SELECT " + call), SQLITE_TOOBIG) << call;
        EXPECT_EQ(lastDatabaseError(), "string or blob too big");
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(DatabaseGuard, AnswersBoundedFunctionsAsSqliteDoes) {
    EXPECT_EQ(valueOf(connection, "SELECT instr('größe', 'ße')"), "4");
    EXPECT_EQ(valueOf(connection, "SELECT typeof(instr(NULL, 'a'))"), "null");
    EXPECT_EQ(valueOf(connection, "SELECT replace('a-b-c', '-', '')"), "abc");
    EXPECT_EQ(valueOf(connection,
                      "SELECT trim('  a ') || trim('xax', 'x') || ltrim('xa', 'x') || rtrim('ax', 'x')"),
              "aaaa");
    EXPECT_EQ(valueOf(connection, "SELECT json_patch('{\"a\":1}', '{\"b\":2}')"), "{\"a\":1,\"b\":2}");
    EXPECT_EQ(valueOf(connection, "SELECT printf('%03d|%s|%.5c|%c', 7, 'x', 'y', 'z')"), "007|x|yyyyy|z");
    EXPECT_EQ(valueOf(connection, "SELECT format('%,d', 1234567)"), "1,234,567");
    EXPECT_EQ(valueOf(connection, "SELECT length(printf('%.*c', 1000, 'x'))"), "1000");
    EXPECT_EQ(valueOf(connection, "SELECT length(printf('%1000000000d', 1)) IS NULL"), "1");
    EXPECT_EQ(run(connection, "SELECT instr('a')"), SQLITE_MISUSE);
}

TEST_F(DatabaseGuard, LetsLargeButReasonableStatementsRun) {
    EXPECT_EQ(valueOf(connection, "SELECT length(zeroblob(4000000))"), "4000000");
    EXPECT_EQ(valueOf(connection, "SELECT length('" + std::string(1000000, 'x') + "')"), "1000000");
    std::string sum = "1";
    for (int depth = 0; depth < 150; ++depth)
        sum += "+1";
    EXPECT_EQ(valueOf(connection, "SELECT " + sum), "151");
    EXPECT_EQ(valueOf(connection, "SELECT value FROM json_each('[7]')"), "7");
}

TEST_F(DatabaseGuard, BoundsTheMemoryOfAStatement) {
    const DatabaseRequest request;
    expectFailure(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000)"
        " SELECT i, randomblob(2000000) AS r FROM n ORDER BY r");
    EXPECT_EQ(lastDatabaseError(), "out of memory");
}

TEST_F(DatabaseGuard, AllowsWhatChangesTheTable) {
    for (const char* sql : {"UPDATE myView SET b = 'x' WHERE a = 1", "DELETE FROM myView WHERE a = 1",
                            "CREATE INDEX i ON myView (a)", "REINDEX", "ANALYZE",
                            "ALTER TABLE myView ADD COLUMN c", "CREATE VIEW v AS SELECT * FROM myView",
                            "SAVEPOINT s", "RELEASE s", "BEGIN", "COMMIT", "DROP TABLE myView"})
        EXPECT_EQ(run(connection, sql), SQLITE_DONE) << sql;
    EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace epgset
