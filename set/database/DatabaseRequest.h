// The bounds of one request's work on the databases.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace epgset {

/// Put around each call of a plug-in, by the thread that makes it and by one thread at a time.
///
/// While it lives, statements of this thread may work no longer than the limit; one that does ends as
/// interrupted (SQLITE_INTERRUPT), which is logged once a request. When it ends, transactions that were left
/// open are rolled back on all connections of host/Connection.h, and in debug builds statements left open are
/// logged.
///
/// The time of a statement counts from when it is compiled, but only of one that runs for more than a hundred
/// of SQLite's instructions. So the inserts of a table fill, each of which is over sooner, do not count: a
/// fill may take longer on a slow set. What counts, searches and a client's own SQL, may hold the set's turn
/// no longer than the limit in all, however many statements it is made of.
class DatabaseRequest {
public:
    static constexpr std::chrono::milliseconds defaultLimit{10'000};

    /// What the limit holds for.
    enum class Bound {
        AllStatements,  ///< for what the statements take together: a client's request
        EachStatement,  ///< for each statement on its own: maintenance, which no client prolongs
    };

    explicit DatabaseRequest(std::chrono::milliseconds limit = defaultLimit,
                             Bound bound = Bound::AllStatements);
    ~DatabaseRequest();
    DatabaseRequest(const DatabaseRequest&) = delete;
    DatabaseRequest& operator=(const DatabaseRequest&) = delete;
};

/// What SQLite said of the last statement that failed to compile or to run in the current request of
/// this thread, or in its last one; empty when none failed.
const std::string& lastDatabaseError();

/// Keeps `message` as the last error of this thread's request.
void noteDatabaseError(std::string_view message);

/// Begins the time of a statement that is about to be compiled.
void beginStatementTime();

/// Counts the time of the statement that this thread runs, and answers whether the limit is reached. Called
/// while the statement works, after each hundred instructions. Logs the first time in a request.
bool statementTimeIsUp();

}  // namespace epgset
