// The host's SQLite connection.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "host/Export.h"

namespace epgset {
class StatementCache;
}

/// One SQLite database. Not copyable; closed when it is destroyed, after the statements that were
/// compiled on it, each of which shares it.
class HOST_API Connection {
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Opens the database of that name (":memory:" for one in memory) and answers whether it did;
    /// what failed is logged. The connection gets the function SEARCH_SCORE(column, text), and its
    /// statements are held inside the database: no other file is reached, no limit is changed. A
    /// connection opens once: a second call is a failure and leaves the open database in use.
    bool open(const std::string& name);

    /// The SQLite handle, owned by the connection; null when nothing is open.
    sqlite3* handle() const { return m_handle; }

private:
    friend class Statement;

    sqlite3* m_handle = nullptr;
    std::unique_ptr<epgset::StatementCache> m_kept;  ///< compiled statements for texts that come again
};
