#include "Vexmoor/RowWriter.h"

#include <algorithm>
#include <utility>

#include "Vexmoor/ColumnText.h"
#include "host/ResponseDocument.h"

void EpgSQLPluginVexmoor::RowWriter::resolve(sqlite3_stmt* statement) {
    if (!m_columns.empty()) {
        std::string unused;
        for (const std::string& name : m_unknownNames)
            m_convertColNameToUrParam(name, m_keyView, unused);  // which warns, for each row
        return;
    }
    std::map<std::string, Column> columns;  // of two with the same key the later one
    const int columnCount = sqlite3_data_count(statement);
    for (int i = 0; i < columnCount; ++i) {
        const char* const columnName = sqlite3_column_name(statement, i);
        const std::string name = columnName == nullptr ? "" : columnName;  // null without memory
        std::string key;
        m_convertColNameToUrParam(name, m_keyView, key);
        if (key == name) m_unknownNames.push_back(name);
        const Form form = key == "start" || key == "end" ? Form::Time
                          : key == "scrambled"           ? Form::Flag
                                                         : Form::Text;
        const bool isTime = name == "ProgramStartTime" || name == "ProgramEndTime";
        columns[key] = {key, i, form, isTime};
    }
    for (auto& [key, column] : columns)
        m_columns.push_back(std::move(column));
}

void EpgSQLPluginVexmoor::RowWriter::writeTime(void* object, const Column& column, sqlite3_stmt* statement) {
    const int time = column.isTime ? sqlite3_column_int(statement, column.index)
                                   : t_read_int(columnText(statement, column.index));
    auto written = std::ranges::find_if(
        m_times, [time](const WrittenTime& lately) { return lately.text && lately.time == time; });
    if (written == m_times.end()) {
        written = m_times.begin() + m_oldestTime;
        *written = {time, HeapText(t_get_ISO8601_from_UNIX(time))};
        m_oldestTime = (m_oldestTime + 1) % m_times.size();
    }
    TARNO_rdoc_add_UTF8(object, column.key.c_str(), written->text.get());
}

void EpgSQLPluginVexmoor::RowWriter::write(void* object, sqlite3_stmt* statement) {
    resolve(statement);
    for (const Column& column : m_columns) {
        if (column.form == Form::Time) {
            writeTime(object, column, statement);
            continue;
        }
        const char* const text = columnText(statement, column.index);
        const auto add = column.form == Form::Flag ? &TARNO_rdoc_add_boolean : &TARNO_rdoc_add_UTF8;
        add(object, column.key.c_str(), text);
    }
}

void EpgSQLPluginVexmoor::RowWriter::read(sqlite3_stmt* statement, std::map<std::string, std::string>& row) {
    resolve(statement);
    for (const Column& column : m_columns)
        row[column.key] = column.isTime ? std::to_string(sqlite3_column_int(statement, column.index))
                                        : columnText(statement, column.index);
}
