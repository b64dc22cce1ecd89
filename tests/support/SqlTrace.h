// What a connection runs.
#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

#include "host/Connection.h"

namespace epgtest {

/// While it lives, keeps the texts of the statements that a connection begins to run, in order.
class SqlTrace {
public:
    explicit SqlTrace(Connection& connection) : database_(connection.handle()) {
        sqlite3_trace_v2(database_, SQLITE_TRACE_STMT, &SqlTrace::keep, this);
    }
    ~SqlTrace() { sqlite3_trace_v2(database_, 0, nullptr, nullptr); }
    SqlTrace(const SqlTrace&) = delete;
    SqlTrace& operator=(const SqlTrace&) = delete;

    std::vector<std::string> statements;

private:
    static int keep(unsigned, void* self, void* statement, void*) {
        auto* const run = static_cast<sqlite3_stmt*>(statement);
        char* const text = sqlite3_expanded_sql(run);  // with what is bound to parameters
        static_cast<SqlTrace*>(self)->statements.emplace_back(text != nullptr ? text : sqlite3_sql(run));
        sqlite3_free(text);
        return 0;
    }

    sqlite3* database_;
};

}  // namespace epgtest
