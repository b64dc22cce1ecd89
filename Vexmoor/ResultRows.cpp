// Result rows: the current row of a statement as an object of the document, and pages of rows.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/RowWriter.h"
#include "host/ResponseDocument.h"

namespace {

constexpr int dumpedColumns = 8;
constexpr int defaultItemsMax = 200;

/// The page of one list answer, and how far it has come.
struct Page {
    std::int32_t itemsMax = defaultItemsMax;
    std::int32_t startIndex = 0;
    std::int32_t emitted = 0;
    std::int32_t total = 0;

    bool isFull() const { return static_cast<std::int64_t>(startIndex) + itemsMax <= total; }

    bool holdsNextRow() const { return total >= startIndex && !isFull(); }
};

/// How a statement ends that lists the programmes of the whole table as they stand there.
constexpr std::string_view wholeTable = " FROM myView WHERE NOT ProgramName='channel_stub' ;";

/// Counts the same rows without reading them: those of the table less those that the condition leaves out,
/// which are a handful and have an index.
constexpr const char* wholeTableCount =
    "SELECT (SELECT count(*) FROM myView) - (SELECT count(*) FROM myView WHERE ProgramName='channel_stub' OR "
    "ProgramName IS NULL);";

/// Whether a statement gives one row for each that wholeTableCount counts.
bool listsWholeTable(std::string_view sql) {
    if (!sql.ends_with(wholeTable)) return false;
    const std::string_view columns = sql.substr(0, sql.size() - wholeTable.size());
    return columns.starts_with("SELECT ") && columns.find_first_of("('") == std::string_view::npos &&
           columns.find("DISTINCT") == std::string_view::npos;
}

}  // namespace

/// How one list differs from its like.
struct EpgSQLPluginVexmoor::ListStyle {
    int keyView;
    bool writesAllUnpaged;       ///< every row when neither paging text is given
    int itemsMaxWithStartAlone;  ///< page size when only a start index is given
    bool logsPagedRows;          ///< "Writing to RDOC\n" for each row written under paging
    bool logsPaging;             ///< the paging numbers, for each row

    /// Reads the paging texts into `page`. Called for every row, which changes nothing after the first.
    void readPaging(const std::string& itemsMax, const std::string& startIndex, Page& page) const {
        if (!itemsMax.empty()) {
            const int parsed = t_read_int(itemsMax.c_str());
            if (parsed > 0) page.itemsMax = parsed;
            if (logsPaging) pluginLogger.debug("ITEMS_MAX : %d (%d)", page.itemsMax, parsed);
        }
        if (!startIndex.empty()) {
            const int parsed = t_read_int(startIndex.c_str());
            if (parsed >= 0) {
                page.startIndex = parsed;
                if (itemsMax.empty()) page.itemsMax = itemsMaxWithStartAlone;
            }
            if (logsPaging) pluginLogger.debug("ITEMS_START_IDX : %d (%d)", page.startIndex, parsed);
        }
    }
};

int EpgSQLPluginVexmoor::m_getSqlRowData(sqlite3_stmt* statement, int keyView,
                                         std::map<std::string, std::string>& row) {
    if (statement == nullptr) return -1;
    RowWriter(keyView).read(statement, row);
    return 0;
}

int EpgSQLPluginVexmoor::m_output_sql_result(void* object, int keyView, sqlite3_stmt* statement) {
    if (object == nullptr || statement == nullptr) return -1;
    RowWriter(keyView).write(object, statement);
    return 0;
}

int EpgSQLPluginVexmoor::m_printSqlRowData(Statement& statement) {
    const char* texts[dumpedColumns];
    for (int i = 0; i < dumpedColumns; ++i)
        texts[i] = columnText(statement.handle(), i);
    if (!pluginLogger.isTraceEnabled()) return 0;
    std::string line = texts[0];
    for (int i = 1; i < dumpedColumns; ++i)
        line.append(", ").append(texts[i]);
    pluginLogger.trace("%s\n", line);
    return 0;
}

std::int32_t EpgSQLPluginVexmoor::m_countWholeTable(ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(wholeTableCount);
    statement.compile();
    return sqlite3_step(statement.handle()) == SQLITE_ROW ? sqlite3_column_int(statement.handle(), 0) : -1;
}

int EpgSQLPluginVexmoor::m_getListResults(const ListStyle& style, const std::string& sql, void* document,
                                          const std::string& itemsMax, const std::string& startIndex,
                                          int selectKind, ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("EPG Database handle: %d\n",
                       static_cast<int>(reinterpret_cast<std::intptr_t>(connection->handle())));
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();

    void* items = TARNO_rdoc_create_object(document);
    if (items == nullptr) return -1;
    TARNO_rdoc_add_object(document, "items", items);

    const bool writesAll = style.writesAllUnpaged && itemsMax.empty() && startIndex.empty();
    const bool isCountable = listsWholeTable(sql);
    RowWriter writer(style.keyView);
    Page page;
    for (; sqlite3_step(statement.handle()) == SQLITE_ROW; ++page.total) {
        style.readPaging(itemsMax, startIndex, page);
        if (!writesAll && !page.holdsNextRow()) {
            if (!isCountable || !page.isFull()) continue;
            const std::int32_t counted = m_countWholeTable(connection);
            if (counted <= page.total) continue;  // it could not be counted, or changes meanwhile
            page.total = counted;
            break;
        }
        if (!writesAll && style.logsPagedRows) pluginLogger.debug("Writing to RDOC\n");
        void* row = TARNO_rdoc_create_object(document);
        if (row == nullptr) return -1;
        TARNO_rdoc_add_object(items, nullptr, row);
        writer.write(row, statement.handle());
        if (selectKind != ChosenColumns) {
            TARNO_rdoc_add_UTF8(row, "thumb_uri", placeholderUrl);
            TARNO_rdoc_add_UTF8(row, "category", "TBD");
        }
        ++page.emitted;
    }

    if (page.total != 0) {
        TARNO_rdoc_add_integer(document, "items_start_index", page.startIndex);
        TARNO_rdoc_add_integer(document, "items_count", page.emitted);
        TARNO_rdoc_add_integer(document, "items_total", page.total);
    }
    statement.close();
    return page.total == 0 ? 204 : 200;
}

int EpgSQLPluginVexmoor::m_getChnlListResults(std::string sql, void* document, std::string itemsMax,
                                              std::string startIndex, int selectKind,
                                              ConnectionPtr connection) {
    constexpr ListStyle style = {.keyView = ChannelView,
                                 .writesAllUnpaged = true,
                                 .itemsMaxWithStartAlone = 1000,
                                 .logsPagedRows = true,
                                 .logsPaging = false};
    return m_getListResults(style, sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_getPrgmListForChnlResults(std::string sql, void* document, std::string itemsMax,
                                                     std::string startIndex, int selectKind,
                                                     ConnectionPtr connection) {
    constexpr ListStyle style = {.keyView = ProgramView,
                                 .writesAllUnpaged = false,
                                 .itemsMaxWithStartAlone = defaultItemsMax,
                                 .logsPagedRows = false,
                                 .logsPaging = true};
    return m_getListResults(style, sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_getPrgmListResults(std::string sql, void* document, std::string itemsMax,
                                              std::string startIndex, int selectKind,
                                              ConnectionPtr connection) {
    constexpr ListStyle style = {.keyView = ProgramView,
                                 .writesAllUnpaged = false,
                                 .itemsMaxWithStartAlone = defaultItemsMax,
                                 .logsPagedRows = false,
                                 .logsPaging = false};
    return m_getListResults(style, sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_writeFirstRow(const std::string& sql, int keyView, void* document,
                                         ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();
    const bool found = sqlite3_step(statement.handle()) == SQLITE_ROW;
    if (found) m_output_sql_result(document, keyView, statement.handle());
    statement.close();
    return found ? 200 : 404;
}

bool EpgSQLPluginVexmoor::m_hasRow(const std::string& sql, ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    statement.compile();
    const bool found = sqlite3_step(statement.handle()) == SQLITE_ROW;
    statement.close();
    return found;
}
