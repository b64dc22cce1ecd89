#include "set/database/ExpensiveFunctions.h"

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "set/database/DatabaseRequest.h"

namespace epgset {
namespace {

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// SQLite's own function of a name, called on a database that has nothing but functions. Used under the
/// lock of the connection whose function it stands for.
class BuiltInFunction {
public:
    explicit BuiltInFunction(std::string name) : name_(std::move(name)) {}

    void call(sqlite3_context* context, int count, sqlite3_value** arguments) {
        sqlite3_stmt* const statement = statementFor(count);
        if (!statement) {
            sqlite3_result_error(context, sqlite3_errmsg(database_.get()), -1);
            return;
        }
        for (int argument = 0; argument < count; ++argument)
            sqlite3_bind_value(statement, argument + 1, arguments[argument]);
        if (sqlite3_step(statement) == SQLITE_ROW) {
            sqlite3_result_value(context, sqlite3_column_value(statement, 0));
        } else {
            sqlite3_result_error(context, sqlite3_errmsg(database_.get()), -1);
        }
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }

private:
    sqlite3_stmt* statementFor(int count) {
        if (!database_) {
            sqlite3* opened = nullptr;
            constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
            const int code = sqlite3_open_v2(":memory:", &opened, flags, nullptr);
            database_.reset(opened);
            if (code != SQLITE_OK) return nullptr;
            sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, 4 * 1024 * 1024);
        }
        std::unique_ptr<sqlite3_stmt, FinalizeStatement>& statement = statements_[count];
        if (!statement) {
            std::string sql = "SELECT " + name_ + "(";
            for (int argument = 0; argument < count; ++argument)
                sql += argument == 0 ? "?" : ",?";
            sqlite3_stmt* made = nullptr;
            sqlite3_prepare_v2(database_.get(), (sql + ")").c_str(), -1, &made, nullptr);
            statement.reset(made);
        }
        return statement.get();
    }

    std::string name_;
    std::unique_ptr<sqlite3, CloseDatabase> database_;                            ///< made by the first call
    std::map<int, std::unique_ptr<sqlite3_stmt, FinalizeStatement>> statements_;  ///< by argument count
};

/// Bytes of the first argument times bytes of the second, which is what the search of one in the other
/// may cost.
bool isWithinProduct(int count, sqlite3_value** arguments) {
    constexpr std::int64_t mostWork = 1 << 28;
    if (count < 2) return true;
    return std::int64_t{sqlite3_value_bytes(arguments[0])} * sqlite3_value_bytes(arguments[1]) <= mostWork;
}

/// Whether a printf format repeats a character ("%.9c", "%.*c"): SQLite then counts to the precision
/// one by one, whatever the length limit.
bool repeatsACharacter(std::string_view format) {
    for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at + 1)) {
        at = format.find_first_not_of("-+ #0,!123456789*.lh", at + 1);
        if (at == std::string_view::npos) return false;
        if (format[at] == 'c') return true;
    }
    return false;
}

/// Whether no number in the format and no argument is so large that it repeats a character for long.
bool isWithinRepetition(int count, sqlite3_value** arguments) {
    constexpr std::int64_t mostRepetitions = 4 * 1024 * 1024;
    if (count == 0) return true;
    const unsigned char* const text = sqlite3_value_text(arguments[0]);
    if (!text) return true;
    const std::string_view format(reinterpret_cast<const char*>(text));
    if (!repeatsACharacter(format)) return true;
    std::int64_t number = 0;
    for (const char c : format) {
        number = c >= '0' && c <= '9' ? number * 10 + (c - '0') : 0;
        if (number > mostRepetitions) return false;
    }
    for (int argument = 1; argument < count; ++argument) {
        const std::int64_t value = sqlite3_value_int64(arguments[argument]);
        if (value > mostRepetitions || value < -mostRepetitions) return false;
    }
    return true;
}

template <bool (*isWithinBound)(int, sqlite3_value**)>
void callBounded(sqlite3_context* context, int count, sqlite3_value** arguments) {
    if (!isWithinBound(count, arguments)) {
        sqlite3_result_error_toobig(context);
    } else if (statementTimeIsUp()) {
        sqlite3_result_error(context, "interrupted", -1);
        sqlite3_result_error_code(context, SQLITE_INTERRUPT);
    } else {
        try {
            static_cast<BuiltInFunction*>(sqlite3_user_data(context))->call(context, count, arguments);
        } catch (const std::exception&) {
            sqlite3_result_error_nomem(context);
        }
    }
}

using SqlFunction = void (*)(sqlite3_context*, int, sqlite3_value**);

struct BoundedFunction {
    const char* name;
    int argumentCount;  ///< -1: any
    SqlFunction function;
};

constexpr BoundedFunction boundedFunctions[] = {
    {"instr", 2, callBounded<isWithinProduct>},      {"replace", 3, callBounded<isWithinProduct>},
    {"trim", 2, callBounded<isWithinProduct>},       {"ltrim", 2, callBounded<isWithinProduct>},
    {"rtrim", 2, callBounded<isWithinProduct>},      {"json_patch", 2, callBounded<isWithinProduct>},
    {"printf", -1, callBounded<isWithinRepetition>}, {"format", -1, callBounded<isWithinRepetition>}};

}  // namespace

int boundExpensiveFunctions(sqlite3* database) {
    for (const BoundedFunction& bounded : boundedFunctions) {
        // Owned by SQLite from here on, also when the call fails.
        const int code = sqlite3_create_function_v2(
            database, bounded.name, bounded.argumentCount,
            SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, new BuiltInFunction(bounded.name),
            bounded.function, nullptr, nullptr,
            [](void* function) { delete static_cast<BuiltInFunction*>(function); });
        if (code != SQLITE_OK) return code;
    }
    return SQLITE_OK;
}

}  // namespace epgset
