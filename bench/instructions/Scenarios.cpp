// Fixed pieces of the service's work, for counting their instructions: each runs once, on a clock that
// stands, on the same guide with the same bookings, and is told apart by callgrind. Without callgrind nothing
// is counted.
#include <sqlite3.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/GuideService.h"
#include "bench/SyntheticGuide.h"
#include "host/ResponseDocument.h"
#include "tests/support/OpenPlugin.h"

namespace {

using epgbench::GuideService;
using epgtest::OpenPlugin;

constexpr int channels = 50;
constexpr int programmesEach = 210;
constexpr int bookings = 20;

/// The identifier of a programme, counted from the channel's first.
std::string programmeOf(int channel, int programme) {
    const std::string sql = "SELECT EventId FROM myView WHERE ChannelNumber='" + std::to_string(channel) +
                            "' ORDER BY CAST(ProgramStartTime AS INTEGER) LIMIT 1 OFFSET " +
                            std::to_string(programme);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(OpenPlugin::epgDBConnection->handle(), sql.c_str(), -1, &statement, nullptr);
    if (sqlite3_step(statement) != SQLITE_ROW) throw std::runtime_error("no such programme: " + sql);
    std::string id = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    sqlite3_finalize(statement);
    return id;
}

/// Runs `work` twice, and counts the second time: what is only done once is not what grows.
void count(const char* name, const std::function<void()>& work) {
    work();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    work();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
}

void get(const std::string& path, const std::string& query = "") {
    constexpr int found = 200;
    const int status = GuideService::send("GET", path, query).status;
    if (status != found) throw std::runtime_error(path + " was answered " + std::to_string(status));
}

void print(void* document, int format) {
    char* text = nullptr;
    int length = 0;
    if (TARNO_rdoc_print_opt(document, format, &text, &length, 1) != 0)
        throw std::runtime_error("the document was not printed");
    std::free(text);
}

void runAll() {
    const GuideService service(epgbench::syntheticGuide(channels, programmesEach), epgbench::guideStart);
    for (int i = 0; i < bookings; ++i)
        GuideService::book(programmeOf(i + 1, 40 + i));
    const std::string one = programmeOf(30, 100);

    count("update check", [] { EpgSQLPluginVexmoor::Instance()->checkDB_UpdateNeeded(); });
    count("mirror of 20 bookings", [] {
        OpenPlugin::m_removeDBSchedData(OpenPlugin::epgDBConnection);
        OpenPlugin::m_updateDBSchedData(OpenPlugin::epgDBConnection);
    });
    count("page of 20 channels", [] { get("epg2/channels", "items_max=20&items_start_index=0"); });
    count("first page of 200 programmes", [] { get("epg2/programs"); });
    count("one programme", [&one] { get("epg2/programs/" + one); });

    void* document = TARNO_rdoc_create_root();
    OpenPlugin::m_getPrgmListResults("SELECT * FROM myView ORDER BY rowid", document, "200", "0", 1,
                                     OpenPlugin::epgDBConnection);
    count("printing 200 rows as JSON and XML", [document] {
        print(document, TARNO_RDOC_JSON);
        print(document, TARNO_RDOC_XML);
    });
    TARNO_rdoc_destroy(document);
}

}  // namespace

int main() {
    try {
        std::printf("compiler %s\nsqlite %s\n", __VERSION__, sqlite3_libversion());
        runAll();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "instruction_scenarios: %s\n", error.what());
        return 1;
    }
    return 0;
}
