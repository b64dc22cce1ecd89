// The import of a large guide, against the bare library running the same INSERT texts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/LargeGuide.h"

namespace {

using epgbench::LargeGuide;
using epgtest::OpenPlugin;

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// The statements of one import, as SQLite is handed them.
std::vector<std::string> importedStatements(LargeGuide& filled) {
    std::vector<std::string> statements;
    const auto keep = [](unsigned, void* list, void*, void* text) {
        static_cast<std::vector<std::string>*>(list)->emplace_back(static_cast<const char*>(text));
        return 0;
    };
    sqlite3* database = OpenPlugin::epgDBConnection->handle();
    sqlite3_trace_v2(database, SQLITE_TRACE_STMT, keep, &statements);
    filled.plugin->rebuildDB(true);
    sqlite3_trace_v2(database, 0, nullptr, nullptr);
    std::erase_if(statements, [](const std::string& text) {
        return text.rfind("INSERT INTO myView", 0) != 0 && text.rfind("CREATE TABLE myView", 0) != 0;
    });
    return statements;
}

void importGuide(benchmark::State& state) {
    LargeGuide filled;
    for (auto _ : state)
        filled.plugin->rebuildDB(true);
}
BENCHMARK(importGuide)->Name("import of 89,600 programmes")->Unit(benchmark::kMillisecond)->Iterations(1);

void runBare(benchmark::State& state) {
    std::vector<std::string> statements;
    {
        LargeGuide filled;
        statements = importedStatements(filled);
    }
    for (auto _ : state) {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        const std::unique_ptr<sqlite3, CloseDatabase> database(opened);
        sqlite3_exec(opened, "BEGIN", nullptr, nullptr, nullptr);
        for (const std::string& text : statements) {
            sqlite3_stmt* statement = nullptr;
            sqlite3_prepare_v2(opened, text.c_str(), -1, &statement, nullptr);
            if (sqlite3_step(statement) != SQLITE_DONE) state.SkipWithError(sqlite3_errmsg(opened));
            sqlite3_finalize(statement);
        }
        sqlite3_exec(opened, "COMMIT", nullptr, nullptr, nullptr);
    }
}
BENCHMARK(runBare)->Name("import of 89,600 programmes/floor")->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
