// The bounds of one request's work on the databases.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace epgset {

/// Put around each call of a plug-in, by the thread that makes it and by one thread at a time.
///
/// While it lives, a statement of this thread that runs longer than the limit after it was compiled
/// ends as interrupted (SQLITE_INTERRUPT), which is logged once a request. When it ends, transactions
/// that were left open are rolled back on all connections, and in debug builds statements left open
/// are logged.
class DatabaseRequest {
public:
    static constexpr std::chrono::milliseconds defaultLimit{10'000};

    explicit DatabaseRequest(std::chrono::milliseconds limit = defaultLimit);
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

/// Whether the statement that this thread runs has used up its time. Logs the first time in a request.
bool statementTimeIsUp();

}  // namespace epgset
