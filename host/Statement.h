// The host's SQLite statement.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <string>

#include "host/Connection.h"
#include "host/Export.h"
#include "host/SharedPtr.h"

/// One prepared statement, and the SQL text that is still to be compiled. Not copyable. Every
/// operation is harmless on an empty handle, as sqlite3_step and SQLite's column functions by value are.
class HOST_API Statement {
public:
    Statement() = default;
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    void setConnection(Container::SharedPtr<Connection> connection) { m_connection = connection; }
    void setSql(const std::string& sql) { m_sql = sql; }

    /// Prepares the first statement of the SQL text, in place of an earlier one, and keeps the rest
    /// as the new SQL text. On a failure SQLite's message and the text are logged, the handle is
    /// empty, and so is the remaining text. A statement that was closed before may come back, as if
    /// just prepared, when its text does. An INSERT of texts alone may be prepared with parameters, to
    /// which its texts are bound.
    void compile();

    /// Runs one step: true for a row and for completion, false otherwise. The step of a Statement
    /// that compiled nothing is false.
    bool step();

    /// Whether SQL text is left to compile.
    bool hasMoreSql() const { return !m_sql.empty(); }

    /// Ends the prepared statement, which holds nothing from then on; the destructor does the same.
    void close();

    /// The SQLite handle for stepping and reading rows, owned by the statement; null when there is
    /// none.
    sqlite3_stmt* handle() const { return m_handle; }

private:
    sqlite3_stmt* m_handle = nullptr;
    bool m_concernsRowsAlone = false;
    std::string m_sql;
    std::optional<std::string> m_row;  ///< texts that parameters of the prepared statement are bound to
    Container::SharedPtr<Connection> m_connection;
};
