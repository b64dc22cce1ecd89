// Holds the statements of a connection inside its database.
#pragma once

#include <sqlite3.h>

#include <cstdint>

namespace epgset {

/// Bounds what the connection's statements may do and answers SQLite's result code:
///  - no other database: no ATTACH, DETACH, VACUUM INTO, temporary tables, extensions, virtual tables;
///  - no PRAGMA but those that read the schema, and "max_page_size = 1024", "max_page_count = 5120";
///  - a value of 4 MiB, an SQL text of 1 MiB, an expression depth of 200, 50 compound terms at most;
///  - an end to a statement whose time is up (DatabaseRequest), and no function call that could go on
///    for long without looking at the time (ExpensiveFunctions).
/// Each refusal is one line of the log. Plain VACUUM works.
int guardDatabase(sqlite3* database);

/// How many statements that make a table were compiled in this process: the guide's own table each time that
/// it is filled, and tables of clients.
std::uint64_t tablesMade();

/// Lives while an SQL text is compiled by this thread, as opposed to what SQLite itself compiles in the
/// course of a step: VACUUM attaches a database of its own, a statement may not.
class TextCompilation {
public:
    TextCompilation();
    ~TextCompilation();
    TextCompilation(const TextCompilation&) = delete;
    TextCompilation& operator=(const TextCompilation&) = delete;

    /// Whether what was compiled so far reads and changes rows of tables and nothing else.
    bool concernsRowsAlone() const;
};

}  // namespace epgset
