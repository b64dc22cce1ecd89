#include "set/database/DatabaseGuard.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "host/Logger.h"
#include "set/database/DatabaseRequest.h"
#include "set/database/ExpensiveFunctions.h"
#include "set/middleware/StateRevision.h"

namespace epgset {
namespace {

const Container::Logger logger = Container::Logger::logger("set/database");

thread_local bool compilingText = false;

/// What the authorizer has met in the text that is being compiled.
thread_local bool metRows = false;
thread_local bool metOthers = false;

bool sameName(const char* name, std::string_view other) {
    return name && std::string_view(name).size() == other.size() &&
           sqlite3_strnicmp(name, other.data(), static_cast<int>(other.size())) == 0;
}

bool isOneOf(const char* name, const auto& list) {
    return std::any_of(std::begin(list), std::end(list),
                       [name](std::string_view entry) { return sameName(name, entry); });
}

/// PRAGMAs that read the schema; an argument names what is read.
constexpr std::string_view schemaPragmas[] = {
    "table_info",  "table_xinfo",      "table_list",     "index_list",     "index_info",
    "index_xinfo", "foreign_key_list", "database_list",  "collation_list", "function_list",
    "module_list", "pragma_list",      "compile_options"};

/// PRAGMAs that read a number of the database, and set it when they have an argument.
constexpr std::string_view numberPragmas[] = {"page_count",     "page_size",      "max_page_count",
                                              "freelist_count", "encoding",       "user_version",
                                              "schema_version", "application_id", "data_version"};

bool allowsPragma(const char* name, const char* argument) {
    if (isOneOf(name, schemaPragmas)) return true;
    if (!argument) return isOneOf(name, numberPragmas);
    return (sameName(name, "max_page_size") && std::string_view(argument) == "1024") ||
           (sameName(name, "max_page_count") && std::string_view(argument) == "5120");
}

/// Functions that reach outside the database or hand out addresses.
constexpr std::string_view refusedFunctions[] = {"load_extension", "fts3_tokenizer", "readfile",
                                                 "writefile",      "edit",           "fts5"};

std::string shown(const char* text) {
    return text ? text : "";
}

int refuse(const std::string& what) {
    logger.warning("Refused in an SQL statement: %s", what);
    return SQLITE_DENY;
}

std::atomic<std::uint64_t> tableCount = 0;

void noteAction(int action) {
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_INSERT:
        case SQLITE_UPDATE:
        case SQLITE_DELETE:
            metRows = true;
            break;
        case SQLITE_READ:
        case SQLITE_FUNCTION:
        case SQLITE_RECURSIVE:
            break;
        default:
            metOthers = true;
    }
}

/// SQLite's authorizer: called for each action while a statement is compiled. Its arguments depend on
/// the action and may be null.
int authorize(void*, int action, const char* first, const char* second, const char* database, const char*) {
    if (compilingText) noteAction(action);
    switch (action) {
        case SQLITE_ATTACH:
            // What VACUUM attaches in the course of its step is a temporary database without a name.
            if (!compilingText && first && *first == '\0') {
                countChange(StatePart::Table);  // rows were pruned
                return SQLITE_OK;
            }
            return refuse("ATTACH " + shown(first));
        case SQLITE_DETACH:
            return refuse("DETACH " + shown(first));
        case SQLITE_PRAGMA:
            if (allowsPragma(first, second)) return SQLITE_OK;
            return refuse("PRAGMA " + shown(first) + (second ? " = " + shown(second) : ""));
        case SQLITE_FUNCTION:
            if (!isOneOf(second, refusedFunctions)) return SQLITE_OK;
            return refuse("function " + shown(second));
        case SQLITE_CREATE_VTABLE:
        case SQLITE_DROP_VTABLE:
            return refuse("virtual table " + shown(first) + " of module " + shown(second));
        case SQLITE_CREATE_TABLE:
            if (compilingText) {
                ++tableCount;
                countChange(StatePart::Table);
            }
            [[fallthrough]];
        case SQLITE_CREATE_INDEX:
        case SQLITE_CREATE_TRIGGER:
        case SQLITE_CREATE_VIEW:
            if (!sameName(database, "temp")) return SQLITE_OK;
            [[fallthrough]];
        case SQLITE_CREATE_TEMP_INDEX:
        case SQLITE_CREATE_TEMP_TABLE:
        case SQLITE_CREATE_TEMP_TRIGGER:
        case SQLITE_CREATE_TEMP_VIEW:
            // The page limit does not hold in the temporary database.
            return refuse("temporary " + shown(first));
        default:
            return SQLITE_OK;
    }
}

void setLimits(sqlite3* database) {
    constexpr int kibibyte = 1024;
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, 4 * kibibyte * kibibyte);
    sqlite3_limit(database, SQLITE_LIMIT_SQL_LENGTH, kibibyte * kibibyte);
    sqlite3_limit(database, SQLITE_LIMIT_EXPR_DEPTH, 200);
    sqlite3_limit(database, SQLITE_LIMIT_COMPOUND_SELECT, 50);
    sqlite3_limit(database, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1000);
    sqlite3_limit(database, SQLITE_LIMIT_TRIGGER_DEPTH, 10);
    sqlite3_limit(database, SQLITE_LIMIT_WORKER_THREADS, 0);
}

int configure(sqlite3* database) {
    for (const auto& [option, value] :
         {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1}, std::pair{SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
          std::pair{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0}, std::pair{SQLITE_DBCONFIG_WRITABLE_SCHEMA, 0}}) {
        if (const int code = sqlite3_db_config(database, option, value, nullptr); code != SQLITE_OK)
            return code;
    }
    // No temporary file: what VACUUM and sorting need stays in memory, under the bound of SQLite's memory.
    // What is dropped is not overwritten first: the guide's database is in memory, where nobody could read
    // it.
    constexpr const char* pragmas = "PRAGMA temp_store = MEMORY; PRAGMA secure_delete = OFF";
    if (const int code = sqlite3_exec(database, pragmas, nullptr, nullptr, nullptr); code != SQLITE_OK)
        return code;
    const char* keptModules[] = {"json_each", "json_tree", nullptr};
    return sqlite3_drop_modules(database, keptModules);
}

}  // namespace

std::uint64_t tablesMade() {
    return tableCount;
}

int guardDatabase(sqlite3* database) {
    // Small enough that slow functions on large values are noticed in time, too large to be felt.
    constexpr int instructionsBetweenChecks = 100;
    if (const int code = configure(database); code != SQLITE_OK) return code;
    if (const int code = boundExpensiveFunctions(database); code != SQLITE_OK) return code;
    setLimits(database);
    sqlite3_progress_handler(
        database, instructionsBetweenChecks, [](void*) { return statementTimeIsUp() ? 1 : 0; }, nullptr);
    return sqlite3_set_authorizer(database, authorize, nullptr);
}

TextCompilation::TextCompilation() {
    compilingText = true;
    metRows = false;
    metOthers = false;
}

TextCompilation::~TextCompilation() {
    compilingText = false;
}

bool TextCompilation::concernsRowsAlone() const {
    return metRows && !metOthers;
}

}  // namespace epgset
