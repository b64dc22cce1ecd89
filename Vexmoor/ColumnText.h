// Reading a column of a stepped statement.
#pragma once

#include <sqlite3.h>

/// The text of a result column, borrowed until the next step; empty for NULL and for a column that the
/// row does not have.
inline const char* columnText(sqlite3_stmt* statement, int column) {
    const unsigned char* text = sqlite3_column_text(statement, column);
    return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}
