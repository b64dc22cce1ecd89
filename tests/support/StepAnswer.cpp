#include "tests/support/StepAnswer.h"

#include <dlfcn.h>
#include <sqlite3.h>

#include <utility>

namespace {

std::string answeredSql;
int answeredCode = SQLITE_OK;

bool isAnswered(sqlite3_stmt* statement) {
    if (answeredSql.empty()) return false;
    char* const text = sqlite3_expanded_sql(statement);  // with what is bound to parameters
    const bool found = text != nullptr && std::string(text).find(answeredSql) != std::string::npos;
    sqlite3_free(text);
    return found;
}

}  // namespace

/// Stands before SQLite's own for the whole program.
extern "C" [[gnu::visibility("default")]] int sqlite3_step(sqlite3_stmt* statement) {
    static const auto next = reinterpret_cast<int (*)(sqlite3_stmt*)>(dlsym(RTLD_NEXT, "sqlite3_step"));
    return isAnswered(statement) ? answeredCode : next(statement);
}

namespace epgtest {

StepAnswer::StepAnswer(std::string sql, int code) {
    answeredSql = std::move(sql);
    answeredCode = code;
}

StepAnswer::~StepAnswer() {
    answeredSql.clear();
}

}  // namespace epgtest
