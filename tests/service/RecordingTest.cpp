// What epghost records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "host/CRemindInfo.h"
#include "set/reminders/ReminderStore.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/StreamServer.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Gt;
using ::testing::HasSubstr;

template <typename Condition>
bool eventually(const Condition& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

/// A set whose clock starts at noon, with a store that is filled before and channels that have sources.
class RecordingService : public ::testing::Test {
protected:
    RecordingService() { fs::create_directory(stateFolder()); }

    fs::path stateFolder() const { return folder_.path() / "state"; }
    fs::path recording(const std::string& name) const { return stateFolder() / "recordings" / name; }

    /// Books channel 1 or 2 of the antenna AIR, `from` and `to` in seconds after noon.
    void book(std::int16_t channel, int from, int to) const {
        ReminderStore store(stateFolder() / "reminders.db");
        CRemindInfo info;
        info.Set(channel, 0, 0, 2, 0);
        info.SetReserveType(CReminder::RESERVE_RECORD);
        info.SetStartTime(static_cast<std::uint32_t>(static_cast<int>(noon) + from));
        info.SetDuration(static_cast<std::uint32_t>(to - from));
        ASSERT_TRUE(store.AddRemindItem(info, 0));
    }

    EpghostProcess::Arguments options(const EpghostProcess::Arguments& more = {}) const {
        const std::string source = "source = \"" + server_.url() + "\"\n";
        const fs::path guide =
            folder_.write("guide.xml", R"(<tv><channel id="one"><display-name>1</display-name></channel>)"
                                       R"(<channel id="two"><display-name>2</display-name></channel></tv>)");
        const fs::path lineup =
            folder_.write("lineup.toml", "[[channel]]\nid = \"one\"\nname = \"One\"\n" + source +
                                             "[[channel]]\nid = \"two\"\nname = \"Two\"\n" + source);
        EpghostProcess::Arguments list = {"--state",  stateFolder().string(), "--port",  "0",
                                          "--now",    "2026-08-23T12:00:00Z", "--guide", guide.string(),
                                          "--lineup", lineup.string()};
        list.insert(list.end(), more.begin(), more.end());
        return list;
    }

    bool grows(const std::string& name) const {
        return eventually([&] {
            std::error_code error;
            const std::uintmax_t size = fs::file_size(recording(name), error);
            return !error && size > 0;
        });
    }

    /// A member of a note; empty where it is null.
    std::string told(const std::string& name, const char* key) const {
        std::ifstream file(recording(name));
        rapidjson::Document note;
        note.Parse(std::string(std::istreambuf_iterator<char>(file), {}).c_str());
        return note.IsObject() && note.HasMember(key) && note[key].IsString() ? note[key].GetString() : "";
    }
    bool reaches(const std::string& name, const std::string& state) const {
        return eventually([&] { return told(name, "state") == state; });
    }

    StreamServer server_;
    TemporaryFolder folder_;
};

const EpghostProcess::Arguments inUtc = {"TZ=UTC"};

TEST_F(RecordingService, RecordsFromTheStartToTheEndOfAnEntry) {
    book(1, 2, 4);
    EpghostProcess process(options(), inUtc);
    process.waitUntilReady();
    ASSERT_TRUE(reaches("2026-08-23 12-00 One.json", "ended"));
    const auto within = [](const std::string& time, const std::string& planned) {
        // Written alike but for the second, of which a late one has at most one more.
        return time.substr(0, 18) == planned.substr(0, 18) && time[18] >= planned[18] &&
               time[18] <= planned[18] + 1;
    };
    const std::string name = "2026-08-23 12-00 One.json";
    EXPECT_EQ(told(name, "planned_start"), "2026-08-23T12:00:02+00:00");
    EXPECT_PRED2(within, told(name, "start"), "2026-08-23T12:00:02+00:00");
    EXPECT_PRED2(within, told(name, "end"), "2026-08-23T12:00:04+00:00");
    EXPECT_THAT(fs::file_size(recording("2026-08-23 12-00 One.ts")), Gt(0U));
    EXPECT_EQ(process.stop(), 0);
}

TEST_F(RecordingService, TellsWhatItRecordsAndStopsItForGood) {
    book(1, -600, 600);
    EpghostProcess process(options(), inUtc);
    HttpClient client(process.waitUntilReady());
    ASSERT_TRUE(grows("2026-08-23 11-50 One.ts"));
    EXPECT_THAT(
        client.get("/set/status").body,
        HasSubstr(R"("recordings":[{"channel":"cid-000-1","schedule_id":"sch_id_1","file":")" +
                  recording("2026-08-23 11-50 One.ts").string() + R"(","start":"2026-08-23T12:00:0)"));
    EXPECT_THAT(client.get("/ws/epg2/schedules").body, HasSubstr(R"("RECORDING")"));
    EXPECT_EQ(client.send("POST", "/ws/epg2/stopRecording?schedule_id=sch_id_1", "").status, 200);
    EXPECT_EQ(client.get("/ws/epg2/schedules").status, 204);
    process.signal(SIGKILL);  // at once: it is on the disk
    process.wait();
    EpghostProcess again(options(), inUtc);
    HttpClient(again.waitUntilReady()).get("/set/status");
    EXPECT_EQ(again.stop(), 0);
    EXPECT_FALSE(fs::exists(recording("2026-08-23 11-50 One 2.ts")));
}

TEST_F(RecordingService, GoesOnInASecondFileAfterAKill) {
    book(1, -600, 600);
    EpghostProcess killed(options(), inUtc);
    killed.waitUntilReady();
    ASSERT_TRUE(grows("2026-08-23 11-50 One.ts"));
    killed.signal(SIGKILL);
    killed.wait();
    EXPECT_EQ(told("2026-08-23 11-50 One.json", "state"), "recording");
    const std::uintmax_t bytes = fs::file_size(recording("2026-08-23 11-50 One.ts"));
    EpghostProcess again(options(), inUtc);
    again.waitUntilReady();
    EXPECT_EQ(told("2026-08-23 11-50 One.json", "state"), "interrupted");
    EXPECT_EQ(told("2026-08-23 11-50 One.json", "reason"), "the set went down");
    EXPECT_TRUE(grows("2026-08-23 11-50 One 2.ts"));
    EXPECT_EQ(fs::file_size(recording("2026-08-23 11-50 One.ts")), bytes);
}

TEST_F(RecordingService, GoesOnInASecondFileAfterAStop) {
    book(1, -600, 600);
    for (const std::string name : {"2026-08-23 11-50 One", "2026-08-23 11-50 One 2"}) {
        EpghostProcess process(options(), inUtc);
        process.waitUntilReady();
        ASSERT_TRUE(grows(name + ".ts"));
        EXPECT_EQ(process.stop(), 0);
        EXPECT_EQ(told(name + ".json", "state"), "interrupted");
        EXPECT_EQ(told(name + ".json", "reason"), "the set was stopped");
    }
}

TEST_F(RecordingService, HasAsManyTunersAsItIsTold) {
    book(1, -600, 600);
    book(2, -600, 600);
    EpghostProcess process(options({"--tuners", "1"}), inUtc);
    HttpClient client(process.waitUntilReady());
    EXPECT_TRUE(process.waitForError("Recording sch_id_2 is refused: no tuner is free, 1 in use"));
    EXPECT_EQ(told("2026-08-23 11-50 Two.json", "state"), "failed");
    EXPECT_TRUE(grows("2026-08-23 11-50 One.ts"));
}

TEST_F(RecordingService, HoldsAsManyBytesAsItIsTold) {
    book(1, -600, 600);
    EpghostProcess process(options({"--recordings-max", "100000"}), inUtc);
    HttpClient client(process.waitUntilReady());
    ASSERT_TRUE(reaches("2026-08-23 11-50 One.json", "failed"));
    EXPECT_EQ(told("2026-08-23 11-50 One.json", "reason"),
              "the recordings may hold no more than 100000 bytes");
    EXPECT_LE(fs::file_size(recording("2026-08-23 11-50 One.ts")), 100'000U);
    EXPECT_TRUE(eventually([&] {
        const std::string schedules = client.get("/ws/epg2/schedules").body;
        return schedules.find("\"RECORD\"") != std::string::npos;
    }));
    EXPECT_THAT(client.get("/set/status").body, HasSubstr(R"("recordings":[])"));
}

TEST_F(RecordingService, EndsTheRecordingOfAnEntryThatIsRemoved) {
    book(1, -600, 600);
    EpghostProcess process(options(), inUtc);
    HttpClient client(process.waitUntilReady());
    ASSERT_TRUE(grows("2026-08-23 11-50 One.ts"));
    EXPECT_EQ(client.request("DELETE", "/ws/epg2/schedules/sch_id_1").status, 200);
    EXPECT_TRUE(reaches("2026-08-23 11-50 One.json", "removed"));
}

}  // namespace
}  // namespace epgset::test
