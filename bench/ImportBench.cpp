// The import of a large guide, against the bare library running the same INSERT texts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/SyntheticGuide.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "tests/support/OpenPlugin.h"

namespace {

using epgbench::guideStart;
using epgtest::OpenPlugin;

constexpr int channels = 400;
constexpr int programmesEach = 224;  // 89,600 programmes, all within seven days

struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// The plug-in's table filled with the large guide, on a clock that stands.
class FilledPlugin {
public:
    FilledPlugin() {
        epgset::useClock(&clock_);
        epgset::useGuide(epgbench::syntheticGuide(channels, programmesEach));
        OpenPlugin::forget();
        plugin = EpgSQLPluginVexmoor::Instance();
    }
    ~FilledPlugin() {
        plugin = Container::SharedPtr<EpgSQLPluginVexmoor>();
        OpenPlugin::forget();
        epgset::useClock(nullptr);
    }
    FilledPlugin(const FilledPlugin&) = delete;
    FilledPlugin& operator=(const FilledPlugin&) = delete;

    Container::SharedPtr<EpgSQLPluginVexmoor> plugin;

private:
    epgset::ManualClock clock_{guideStart};
};

/// The statements of one import, as SQLite is handed them.
std::vector<std::string> importedStatements(FilledPlugin& filled) {
    std::vector<std::string> statements;
    const auto keep = [](unsigned, void* list, void*, void* text) {
        static_cast<std::vector<std::string>*>(list)->emplace_back(static_cast<const char*>(text));
        return 0;
    };
    sqlite3* database = OpenPlugin::epgDBConnection->handle();
    sqlite3_trace_v2(database, SQLITE_TRACE_STMT, keep, &statements);
    filled.plugin->rebuildDB(true);
    sqlite3_trace_v2(database, 0, nullptr, nullptr);
    statements.erase(statements.begin());  // the DROP of the table before
    return statements;
}

void importGuide(benchmark::State& state) {
    FilledPlugin filled;
    for (auto _ : state)
        filled.plugin->rebuildDB(true);
}
BENCHMARK(importGuide)->Name("import of 89,600 programmes")->Unit(benchmark::kMillisecond)->Iterations(1);

void runBare(benchmark::State& state) {
    std::vector<std::string> statements;
    {
        FilledPlugin filled;
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
