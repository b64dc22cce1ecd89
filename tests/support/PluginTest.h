// The plug-in in process: its operations one by one, on a guide, a clock and a log that the test owns.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "host/ResponseDocument.h"
#include "set/document/DocumentFaults.h"
#include "set/log/LogCapture.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "tests/support/OpenPlugin.h"
#include "tests/support/TestGuide.h"

namespace epgtest {

/// A response document that prints what was added to it.
class TestDocument {
public:
    TestDocument() : document_(TARNO_rdoc_create_root()) {}
    ~TestDocument() { TARNO_rdoc_destroy(document_); }
    TestDocument(const TestDocument&) = delete;
    TestDocument& operator=(const TestDocument&) = delete;

    operator void*() const { return document_; }  // NOLINT: stands where a handle is wanted

    /// The document as compact JSON.
    std::string json() const {
        char* text = nullptr;
        int length = 0;
        if (TARNO_rdoc_print_opt(document_, TARNO_RDOC_JSON, &text, &length, 1) != 0) return "(failed)";
        const std::unique_ptr<char, void (*)(void*)> owned(text, std::free);
        return std::string(text, static_cast<std::size_t>(length));
    }

private:
    void* document_;
};

/// A query record that goes with the object.
class TestQuery {
public:
    explicit TestQuery(const char* query) : record_(TARNO_rstr_uri_parse_query(query, -1)) {}
    ~TestQuery() { TARNO_rstr_uri_delete_query(record_); }
    TestQuery(const TestQuery&) = delete;
    TestQuery& operator=(const TestQuery&) = delete;

    operator TARNO_rstr_uri_query_st*() const { return record_; }  // NOLINT: as above

private:
    TARNO_rstr_uri_query_st* record_;
};

/// A row of a result as texts; NULL reads as "NULL".
using Row = std::vector<std::string>;

/// Runs one statement and answers its rows; fails the test when it does not run.
inline std::vector<Row> rowsOf(Connection& connection, const std::string& sql) {
    std::vector<Row> rows;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(connection.handle(), sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection.handle()) << " in " << sql;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        Row row;
        for (int i = 0; i < sqlite3_data_count(statement); ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            row.push_back(text == nullptr ? "NULL" : text);
        }
        rows.push_back(row);
    }
    sqlite3_finalize(statement);
    return rows;
}

/// A plug-in as freshly loaded, an empty guide, a clock at 2026-08-23T00:00:00Z in UTC, and every log
/// message kept.
class PluginTest : public testing::Test {
protected:
    static constexpr std::int64_t startTime = 1'787'443'200;

    PluginTest() {
        epgset::useClock(&clock);
        TestGuide().use();
        OpenPlugin::forget();
    }
    ~PluginTest() override {
        OpenPlugin::forget();
        TestGuide().use();
        epgset::useReminder(nullptr);
        epgset::failDocumentObjectsAfter(-1);
        epgset::failDocumentPrinting(false);
        epgset::failChannelAllocationsAfter(-1);
        epgset::useClock(nullptr);
    }

    /// The plug-in's instance, made on first use.
    static Container::SharedPtr<EpgSQLPluginVexmoor> plugin() { return EpgSQLPluginVexmoor::Instance(); }

    /// The rows of a statement on the plug-in's own database.
    static std::vector<Row> table(const std::string& sql) {
        return rowsOf(*OpenPlugin::epgDBConnection, sql);
    }

    /// Messages of the plug-in class's logger.
    std::vector<std::string> pluginLog() const { return log.messagesOf("Vexmoor/EpgSQLPluginVexmoor"); }

    /// Messages of the adapter's logger.
    std::vector<std::string> adapterLog() const { return log.messagesOf("Vexmoor/EpgSQLPluginVexmoorUtil"); }

    /// Messages of the frame's logger.
    std::vector<std::string> frameLog() const { return log.messagesOf("EpgSQLPlugin"); }

    epgset::ManualClock clock{startTime};
    epgset::LogCapture log;
};

}  // namespace epgtest
