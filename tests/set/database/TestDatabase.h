// A database in memory and short ways to run SQL on it, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/Connection.h"
#include "host/SharedPtr.h"
#include "host/Statement.h"

namespace epgset {

inline Container::SharedPtr<Connection> openDatabase(const std::string& name = ":memory:") {
    Container::SharedPtr<Connection> connection(new Connection);
    EXPECT_TRUE(connection->open(name));
    return connection;
}

/// Runs the first statement of `sql` through to its end as a plug-in does and answers the last result
/// code; SQLITE_MISUSE when it does not compile.
inline int run(const Container::SharedPtr<Connection>& connection, const std::string& sql) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    statement.compile();
    if (!statement.handle()) return SQLITE_MISUSE;
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW)
        code = sqlite3_step(statement.handle());
    return code;
}

/// The first column of the first row as text; "no row" when there is none.
inline std::string valueOf(const Container::SharedPtr<Connection>& connection, const std::string& sql) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    statement.compile();
    if (sqlite3_step(statement.handle()) != SQLITE_ROW) return "no row";
    const unsigned char* const text = sqlite3_column_text(statement.handle(), 0);
    return text ? reinterpret_cast<const char*>(text) : "NULL";
}

}  // namespace epgset
