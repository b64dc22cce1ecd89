// The client's own SQL: one statement, its rows as the answer.
#include <string>

#include "Vexmoor/RowWriter.h"
#include "host/ResponseDocument.h"

int EpgSQLPluginVexmoor::m_SendSQLCmd(TARNO_rstr_uri_query_st* queryRecord, ConnectionPtr connection,
                                      void* document) {
    const std::string sql = queryRecord->values[0];
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.compile();
    void* items = TARNO_rdoc_create_object(document);
    if (items == nullptr) return -1;
    TARNO_rdoc_add_object(document, "items", items);
    RowWriter writer(ChannelView);
    int rowCount = 0;
    for (; sqlite3_step(statement.handle()) == SQLITE_ROW; ++rowCount) {
        if (pluginLogger.isTraceEnabled()) m_printSqlRowData(statement);
        void* row = TARNO_rdoc_create_object(document);
        if (row == nullptr) return -1;
        TARNO_rdoc_add_object(items, nullptr, row);
        writer.write(row, statement.handle());
    }
    const bool mayChangeSchema = sqlite3_stmt_readonly(statement.handle()) == 0;
    statement.close();
    if (mayChangeSchema) m_hintIndexes(connection);
    return rowCount == 0 ? 204 : 200;
}
