// What bookings cost: the schedule mirror, written, and one programme by its identifier.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <string>
#include <vector>

#include "bench/LargeGuide.h"
#include "host/CRemindInfo.h"
#include "host/ResponseDocument.h"
#include "set/middleware/Television.h"
#include "tests/support/OpenPlugin.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/TestReminders.h"

namespace {

using epgbench::LargeGuide;
using epgtest::OpenPlugin;

constexpr int bookings = 20;

/// Twenty bookings, each of one programme of another channel.
class Bookings : public epgtest::TestReminders {
public:
    Bookings() {
        for (int i = 0; i < bookings; ++i) {
            CRemindInfo& info = book(i + 1, static_cast<unsigned long>(i + 1), RESERVE_RECORD, REPEAT_ONCE);
            info.SetTitle({0x4100});
            info.Set(static_cast<short>(i + 1), 0, 0, TCChannel::GetDigitalChType(i % 3 == 2 ? 3 : i % 3), 0);
        }
    }
};

/// Steps one statement to its end on the plug-in's database.
void stepAll(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(OpenPlugin::epgDBConnection->handle(), sql, -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
    }
    sqlite3_finalize(statement);
}

void mirror(benchmark::State& state) {
    const LargeGuide guide;
    const Bookings store;
    for (auto _ : state) {
        OpenPlugin::m_removeDBSchedData(OpenPlugin::epgDBConnection);
        OpenPlugin::m_updateDBSchedData(OpenPlugin::epgDBConnection);
    }
    sqlite3_stmt* counted = nullptr;
    sqlite3_prepare_v2(OpenPlugin::epgDBConnection->handle(), "SELECT 1 FROM myView WHERE ScheduleId>''", -1,
                       &counted, nullptr);
    int rows = 0;
    while (sqlite3_step(counted) == SQLITE_ROW)
        ++rows;
    sqlite3_finalize(counted);
    if (rows != bookings) state.SkipWithError("the bookings are not in the table");
}
BENCHMARK(mirror)->Name("schedule mirror written, 20 bookings")->Unit(benchmark::kMillisecond);

void mirrorBare(benchmark::State& state) {
    const LargeGuide guide;
    const Bookings store;
    const auto mirrorOnce = [] {
        OpenPlugin::m_removeDBSchedData(OpenPlugin::epgDBConnection);
        OpenPlugin::m_updateDBSchedData(OpenPlugin::epgDBConnection);
    };
    mirrorOnce();
    std::vector<std::string> statements;
    {
        epgtest::SqlTrace trace(*OpenPlugin::epgDBConnection);
        mirrorOnce();
        statements = trace.statements;
    }
    for (auto _ : state)
        for (const std::string& sql : statements)
            stepAll(sql.c_str());
}
BENCHMARK(mirrorBare)->Name("schedule mirror written, 20 bookings/floor")->Unit(benchmark::kMillisecond);

void findProgramme(benchmark::State& state) {
    const LargeGuide guide;
    for (auto _ : state)
        stepAll(
            "SELECT EventId, ProgramName, ChannelId, ChannelPath, ChannelName, ChannelNumber, AntennaType, "
            "ProgramStartTime, ProgramEndTime, ScrambledFlag FROM myView WHERE EventId='pid-003-399-0-100';");
}
BENCHMARK(findProgramme)->Name("one programme in 89,600, database time")->Unit(benchmark::kMillisecond);

constexpr const char* channelList =
    "SELECT  ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, ServiceType  "
    "FROM myView WHERE ScheduleId='' AND NOT ServiceType='' AND NOT AntennaType='' GROUP BY ChannelId ;";
constexpr const char* programmeList =
    "SELECT  EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, AntennaType, ProgramStartTime, "
    "ProgramEndTime, ScrambledFlag FROM myView WHERE NOT ProgramName='channel_stub' ;";

void listChannels(benchmark::State& state) {
    const LargeGuide guide;
    for (auto _ : state) {
        void* document = TARNO_rdoc_create_root();
        OpenPlugin::m_getChnlListResults(channelList, document, "", "", 1, OpenPlugin::epgDBConnection);
        TARNO_rdoc_destroy(document);
    }
}
BENCHMARK(listChannels)->Name("list of 400 channels")->Unit(benchmark::kMillisecond);

/// The large guide's table alone, without indexes.
class PlainTable {
public:
    PlainTable() {
        for (const char* index : {"myViewEvent", "myViewSchedule", "myViewBooked"})
            stepAll((std::string("DROP INDEX IF EXISTS ") + index).c_str());
    }

private:
    LargeGuide guide_;
};

void listChannelsBare(benchmark::State& state) {
    const PlainTable table;
    for (auto _ : state)
        stepAll(channelList);
}
BENCHMARK(listChannelsBare)->Name("list of 400 channels/floor")->Unit(benchmark::kMillisecond);

void listProgrammes(benchmark::State& state) {
    const LargeGuide guide;
    for (auto _ : state) {
        void* document = TARNO_rdoc_create_root();
        OpenPlugin::m_getPrgmListResults(programmeList, document, "", "", 2, OpenPlugin::epgDBConnection);
        TARNO_rdoc_destroy(document);
    }
}
BENCHMARK(listProgrammes)->Name("first page of 89,600 programmes")->Unit(benchmark::kMillisecond);

void listProgrammesBare(benchmark::State& state) {
    const PlainTable table;
    for (auto _ : state)
        stepAll(programmeList);
}
BENCHMARK(listProgrammesBare)->Name("first page of 89,600 programmes/floor")->Unit(benchmark::kMillisecond);

}  // namespace
