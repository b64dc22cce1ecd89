#include "Vexmoor/RowWriter.h"

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/HeapText.h"
#include "host/ResponseDocument.h"

void EpgSQLPluginVexmoor::RowWriter::resolve(sqlite3_stmt* statement) {
    if (!m_columns.empty()) {
        std::string unused;
        for (const std::string& name : m_unknownNames)
            m_convertColNameToUrParam(name, m_keyView, unused);  // which warns, for each row
        return;
    }
    const int columnCount = sqlite3_data_count(statement);
    for (int i = 0; i < columnCount; ++i) {
        const char* const columnName = sqlite3_column_name(statement, i);
        const std::string name = columnName == nullptr ? "" : columnName;  // null without memory
        std::string key;
        m_convertColNameToUrParam(name, m_keyView, key);
        if (key == name) m_unknownNames.push_back(name);
        const bool isTime = name == "ProgramStartTime" || name == "ProgramEndTime";
        m_columns[key] = {.index = i, .isTime = isTime};
    }
}

void EpgSQLPluginVexmoor::RowWriter::write(void* object, sqlite3_stmt* statement) {
    resolve(statement);
    for (const auto& [name, column] : m_columns) {
        const auto [index, isTime] = column;
        const char* const key = name.c_str();
        if (name == "start" || name == "end") {
            const int time =
                isTime ? sqlite3_column_int(statement, index) : t_read_int(columnText(statement, index));
            const HeapText text(t_get_ISO8601_from_UNIX(time));
            TARNO_rdoc_add_UTF8(object, key, text.get());
        } else if (name == "scrambled") {
            TARNO_rdoc_add_boolean(object, key, columnText(statement, index));
        } else {
            TARNO_rdoc_add_UTF8(object, key, columnText(statement, index));
        }
    }
}

void EpgSQLPluginVexmoor::RowWriter::read(sqlite3_stmt* statement, std::map<std::string, std::string>& row) {
    resolve(statement);
    for (const auto& [key, column] : m_columns)
        row[key] = column.isTime ? std::to_string(sqlite3_column_int(statement, column.index))
                                 : columnText(statement, column.index);
}
