// The plug-in in process: its operations one by one, on a guide, a clock and a log that the test owns.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "host/ResponseDocument.h"
#include "set/document/DocumentFaults.h"
#include "set/log/LogCapture.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "tests/support/TestGuide.h"

namespace epgtest {

/// Opens the plug-in class's operations and state to tests.
class OpenPlugin : public EpgSQLPluginVexmoor {
public:
    using EpgSQLPluginVexmoor::ListStyle;
    using EpgSQLPluginVexmoor::ParameterMap;
    using EpgSQLPluginVexmoor::channelCounts;
    using EpgSQLPluginVexmoor::epgDBConnection;
    using EpgSQLPluginVexmoor::epgSQLPluginInstance;
    using EpgSQLPluginVexmoor::epgTableList;
    using EpgSQLPluginVexmoor::lastUpdateTime;
    using EpgSQLPluginVexmoor::m_addItemsToInsertSql;
    using EpgSQLPluginVexmoor::m_checkForChannelInDB;
    using EpgSQLPluginVexmoor::m_configEpgDB;
    using EpgSQLPluginVexmoor::m_convertColNameToUrParam;
    using EpgSQLPluginVexmoor::m_copyQueryParams;
    using EpgSQLPluginVexmoor::m_CreateDBTable;
    using EpgSQLPluginVexmoor::m_createSqlDB;
    using EpgSQLPluginVexmoor::m_createTblFrmEpg;
    using EpgSQLPluginVexmoor::m_deleteDBTable;
    using EpgSQLPluginVexmoor::m_execChnlInfoSqlQuery;
    using EpgSQLPluginVexmoor::m_execChnlListSqlQuery;
    using EpgSQLPluginVexmoor::m_extractColsFrmQuery;
    using EpgSQLPluginVexmoor::m_extractColsFrmQueryInt;
    using EpgSQLPluginVexmoor::m_formatCreateSql;
    using EpgSQLPluginVexmoor::m_getChnlInfoResults;
    using EpgSQLPluginVexmoor::m_getChnlListResults;
    using EpgSQLPluginVexmoor::m_getColNamesFrmQueryParam;
    using EpgSQLPluginVexmoor::m_getCreateTblSql;
    using EpgSQLPluginVexmoor::m_getCRIDsForPrgm;
    using EpgSQLPluginVexmoor::m_getDataFromEpgCacheFAST;
    using EpgSQLPluginVexmoor::m_getInsertSql;
    using EpgSQLPluginVexmoor::m_getIntFrmDateTimeString;
    using EpgSQLPluginVexmoor::m_getPagingParams;
    using EpgSQLPluginVexmoor::m_getPrgEndTimeFrmSql;
    using EpgSQLPluginVexmoor::m_getPrgmListForChnlResults;
    using EpgSQLPluginVexmoor::m_getPrgmListResults;
    using EpgSQLPluginVexmoor::m_getPrgStartTimeFrmSql;
    using EpgSQLPluginVexmoor::m_getSchedDataFromEpgCache;
    using EpgSQLPluginVexmoor::m_getSqlRowData;
    using EpgSQLPluginVexmoor::m_getSqlSelectCols;
    using EpgSQLPluginVexmoor::m_getSqlSortConditions;
    using EpgSQLPluginVexmoor::m_getSqlWhereConditions;
    using EpgSQLPluginVexmoor::m_getTableNameFrmSql;
    using EpgSQLPluginVexmoor::m_getViewNameFrmSql;
    using EpgSQLPluginVexmoor::m_getWhereConditions;
    using EpgSQLPluginVexmoor::m_insertFakeProgram;
    using EpgSQLPluginVexmoor::m_isProgramTimeInQueryRange;
    using EpgSQLPluginVexmoor::m_output_sql_result;
    using EpgSQLPluginVexmoor::m_parseEpgData;
    using EpgSQLPluginVexmoor::m_ParseClientCommand;
    using EpgSQLPluginVexmoor::m_printSqlRowData;
    using EpgSQLPluginVexmoor::m_replaceSingleQuotes;
    using EpgSQLPluginVexmoor::m_TableCreated;
    using EpgSQLPluginVexmoor::m_validateQueryParams;
    using EpgSQLPluginVexmoor::m_validateQueryParamsFieldName;
    using EpgSQLPluginVexmoor::programCounts;

    /// Brings the class back to the state in which the library is loaded.
    static void forget() {
        epgSQLPluginInstance = Container::SharedPtr<EpgSQLPluginVexmoor>();
        epgDBConnection = Container::SharedPtr<Connection>();
        epgTableList.clear();
        lastUpdateTime = 0;
        for (auto& count : channelCounts) count = 0;
        for (auto& count : programCounts) count = 0;
    }
};

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
