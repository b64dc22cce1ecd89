// A page of 20 channels, from the request to the printed answer, whole and in its parts.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench/SyntheticGuide.h"
#include "host/ResponseDocument.h"
#include "plugin/EpgSQLPlugin.h"
#include "set/demo/DemoGuide.h"
#include "set/guide/GuideLoader.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "tests/support/FakeExchange.h"
#include "tests/support/OpenPlugin.h"

namespace {

using epgtest::OpenPlugin;

constexpr const char* listStatement =
    "SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, ServiceType  "
    "FROM myView WHERE ScheduleId='' AND NOT ServiceType='' AND NOT AntennaType='' GROUP BY ChannelId ;";

/// The guide named by EPG_BENCH_GUIDE, else the built-in one.
std::shared_ptr<const epgset::Guide> measuredGuide() {
    const char* path = std::getenv("EPG_BENCH_GUIDE");
    if (path == nullptr) return epgset::demoGuide(epgbench::guideStart);
    epgset::EventIds ids;
    epgset::GuideSources sources;
    sources.guides = {std::string(path)};
    sources.now = epgbench::guideStart;
    return epgset::loadGuide(sources, ids).guide;
}

/// The service on the measured guide, on a clock that stands.
class Service {
public:
    Service() {
        epgset::useClock(&clock_);
        epgset::useGuide(measuredGuide());
        OpenPlugin::forget();
        answer();
    }
    ~Service() {
        OpenPlugin::forget();
        epgset::useClock(nullptr);
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    static std::string answer() {
        epgtest::FakeRequest request("GET", "epg2/channels", "items_max=20&items_start_index=0");
        epgtest::RecordingResponse response;
        BridgeToWebConvIF(request, response);
        return response.body();
    }

private:
    epgset::ManualClock clock_{epgbench::guideStart};
};

/// A document that holds the page.
void* makePage() {
    void* document = TARNO_rdoc_create_root();
    OpenPlugin::m_getChnlListResults(listStatement, document, "20", "0", 1, OpenPlugin::epgDBConnection);
    return document;
}

void stepBare(sqlite3* database) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, listStatement, -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
    }
    sqlite3_finalize(statement);
}

void answerWhole(benchmark::State& state) {
    const Service service;
    for (auto _ : state)
        benchmark::DoNotOptimize(Service::answer());
}
BENCHMARK(answerWhole)->Name("page of 20 channels, whole")->Unit(benchmark::kMillisecond);

void stepOnly(benchmark::State& state) {
    const Service service;
    for (auto _ : state)
        stepBare(OpenPlugin::epgDBConnection->handle());
}
BENCHMARK(stepOnly)->Name("page of 20 channels, whole/floor")->Unit(benchmark::kMillisecond);

void checkOnly(benchmark::State& state) {
    const Service service;
    OpenPlugin plugin;
    for (auto _ : state)
        benchmark::DoNotOptimize(plugin.checkDB_UpdateNeeded());
}
BENCHMARK(checkOnly)->Name("page of 20 channels: update check")->Unit(benchmark::kMillisecond);

void rowsOnly(benchmark::State& state) {
    const Service service;
    for (auto _ : state)
        TARNO_rdoc_destroy(makePage());
}
BENCHMARK(rowsOnly)->Name("page of 20 channels: SQL and rows")->Unit(benchmark::kMillisecond);
BENCHMARK(stepOnly)->Name("page of 20 channels: SQL and rows/floor")->Unit(benchmark::kMillisecond);

void printOnly(benchmark::State& state) {
    const Service service;
    void* document = makePage();
    for (auto _ : state) {
        char* text = nullptr;
        int length = 0;
        TARNO_rdoc_print_opt(document, TARNO_RDOC_JSON, &text, &length, 1);
        std::free(text);
    }
    TARNO_rdoc_destroy(document);
}
BENCHMARK(printOnly)->Name("page of 20 channels: printing")->Unit(benchmark::kMillisecond);

}  // namespace
