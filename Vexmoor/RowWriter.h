// Writing the rows of one statement, whose columns are looked up once.
#pragma once

#include <sqlite3.h>

#include <map>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

/// The rows of one statement as objects of the document. The columns are resolved at the first row.
class EpgSQLPluginVexmoor::RowWriter {
public:
    explicit RowWriter(int keyView) : m_keyView(keyView) {}

    /// Adds the current row's members to an object, in the order of their keys.
    void write(void* object, sqlite3_stmt* statement);

    /// Stores the current row's texts by key.
    void read(sqlite3_stmt* statement, std::map<std::string, std::string>& row);

private:
    struct Column {
        int index;
        bool isTime;  ///< of the table: read as a number of 32 bits
    };

    void resolve(sqlite3_stmt* statement);

    int m_keyView;
    std::vector<std::string> m_unknownNames;  ///< of columns that stand under their own names
    std::map<std::string, Column> m_columns;  ///< by key; of two with the same key the later one
};
