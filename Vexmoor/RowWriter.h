// Writing the rows of one statement, whose columns are looked up once.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"

/// The rows of one statement as objects of the document. The columns are resolved at the first row.
class EpgSQLPluginVexmoor::RowWriter {
public:
    explicit RowWriter(int keyView) : m_keyView(keyView) {}

    /// Adds the current row's members to an object, in the order of their keys.
    void write(void* object, sqlite3_stmt* statement);

    /// Stores the current row's texts by key.
    void read(sqlite3_stmt* statement, std::map<std::string, std::string>& row);

private:
    /// How the texts of a column go into the document.
    enum class Form { Text, Time, Flag };

    struct Column {
        std::string key;
        int index;
        Form form;
        bool isTime;  ///< of the table: read as a number of 32 bits
    };

    struct WrittenTime {
        int time = 0;
        HeapText text;
    };

    void resolve(sqlite3_stmt* statement);
    void writeTime(void* object, const Column& column, sqlite3_stmt* statement);

    int m_keyView;
    std::vector<std::string> m_unknownNames;  ///< of columns that stand under their own names
    std::vector<Column> m_columns;            ///< ascending by key, which are unique

    /// Times written lately, each in the place of the oldest. Most programmes begin when the one before has
    /// ended, and a row has its end before its start: that is three times ago.
    std::array<WrittenTime, 3> m_times;
    std::size_t m_oldestTime = 0;
};
