// The check for a changed line-up, which every request runs.
#include <benchmark/benchmark.h>

#include "bench/SyntheticGuide.h"
#include "set/middleware/Television.h"
#include "tests/support/OpenPlugin.h"

namespace {

void checkForUpdate(benchmark::State& state) {
    epgset::useGuide(epgbench::syntheticGuide(400, 224));
    epgtest::OpenPlugin plugin;
    plugin.checkDB_UpdateNeeded();  // the first check finds the counts at 0
    for (auto _ : state) {
        if (plugin.checkDB_UpdateNeeded()) state.SkipWithError("the guide has not changed");
    }
    epgtest::OpenPlugin::forget();
}
BENCHMARK(checkForUpdate)
    ->Name("update check, 400 channels, 89,600 programmes")
    ->Unit(benchmark::kMillisecond);

}  // namespace
