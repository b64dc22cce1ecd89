// Reminders in the state folder of a running set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "host/CRemindInfo.h"
#include "set/reminders/ReminderStore.h"
#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// A set with a small guide at noon, and its state folder, which is filled before it is started.
class ReminderService : public ::testing::Test {
protected:
    fs::path stateFolder() const { return folder_.path() / "state"; }
    fs::path file() const { return stateFolder() / "reminders.db"; }

    ReminderService() { fs::create_directory(stateFolder()); }

    EpghostProcess::Arguments options() const {
        return {"--state",  stateFolder().string(),
                "--port",   "0",
                "--now",    "2026-08-23T12:00:00Z",
                "--guide",  EPG_TEST_DATA "/five-channels.xml",
                "--lineup", EPG_TEST_DATA "/five-channels.toml"};
    }

    /// Adds a reminder to view channel 1 of the antenna AIR.
    void addView(std::uint32_t start, std::uint32_t seconds) const {
        ReminderStore store(file());
        CRemindInfo info;
        info.Set(1, 0, 0, 2, 0);
        info.SetStartTime(start);
        info.SetDuration(seconds);
        ASSERT_TRUE(store.AddRemindItem(info, 0));
    }

    std::vector<CRemindInfo> reminders() const {
        ReminderStore store(file());
        std::vector<CRemindInfo> items;
        int count = 0;
        EXPECT_TRUE(store.GetRemindItemByType(count, items, 2));
        return items;
    }

    TemporaryFolder folder_;
};

/// The second of the minute in the status, and whether the set is tuned to channel 1.
std::pair<int, bool> secondAndTuned(HttpClient& client) {
    const std::string status = client.get("/set/status").body;
    EXPECT_THAT(status, StartsWith(R"({"clock":"2026-08-23T12:00:)"));
    const int second = std::stoi(status.substr(std::string(R"({"clock":"2026-08-23T12:00:)").size(), 2));
    return {second, status.find(R"("channel":{"id":"cid-000-1")") != std::string::npos};
}

TEST_F(ReminderService, TunesWithinASecondAndForgetsTheReminderWhenItHasEnded) {
    constexpr int start = 3;
    addView(noon + start, 1);
    EpghostProcess process(options());
    HttpClient client(process.waitUntilReady());
    for (int second = 0; second < start + 2;) {
        bool tuned = false;
        std::tie(second, tuned) = secondAndTuned(client);
        // In the second before, clock and channel may have been looked at just before and just after.
        if (second + 1 < start || second > start) {
            EXPECT_EQ(second > start, tuned) << second;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(0, process.stop());
    EXPECT_THAT(reminders(), SizeIs(0));
}

TEST_F(ReminderService, RemovesWhatEndedWhileTheSetWasOff) {
    addView(noon - 100, 50);
    addView(noon + 10'000, 50);
    EpghostProcess process(options());
    process.waitUntilReady();
    EXPECT_EQ(0, process.stop());
    ASSERT_THAT(reminders(), SizeIs(1));
    EXPECT_EQ(reminders().front().StartTime(), noon + 10'000);
}

/// A guide of channel 1 with a programme of an hour at each of these hours after noon.
std::string guideWithSoapAt(const std::vector<int>& hours) {
    std::string text = R"(<tv><channel id="one"><display-name>1</display-name></channel>)";
    for (const int hour : hours) {
        const auto time = [](int of) { return "20260823" + std::to_string(12 + of) + "0000 +0000"; };
        text += "<programme channel=\"one\" start=\"" + time(hour) + "\" stop=\"" + time(hour + 1) +
                "\"><title>Soap</title></programme>";
    }
    return text + "</tv>";
}

TEST_F(ReminderService, FindsTheProgrammeOfASeriesAgainAtAReload) {
    const std::string guide = folder_.write("guide.xml", guideWithSoapAt({1})).string();
    {
        ReminderStore store(file());
        CRemindInfo info;
        info.SetReserveType(CReminder::RESERVE_SERIES);
        info.Set(1, 0, 0, 2, 0);
        info.SetTitle({0x5300, 0x6F00, 0x6100, 0x7000});  // "Soap", in big-endian byte order
        info.SetStartTime(noon + 3'600);
        info.SetDuration(3'600);
        ASSERT_TRUE(store.AddRemindItem(info, 0));
    }
    EpghostProcess process({"--state", stateFolder().string(), "--port", "0", "--now", "2026-08-23T12:00:00Z",
                            "--guide", guide});
    HttpClient client(process.waitUntilReady());
    folder_.write("guide.xml", guideWithSoapAt({3, 5}));
    process.signal(SIGHUP);
    while (client.get("/set/status").body.find(R"("programs":2,"programs_dropped")") == std::string::npos)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(0, process.stop());
    ASSERT_THAT(reminders(), SizeIs(1));
    EXPECT_EQ(reminders().front().StartTime(), noon + 3 * 3'600);
}

TEST_F(ReminderService, KeepsAStoreThatCannotBeOpenedFromStartingTheSet) {
    folder_.write("state/reminders.db", std::string(4096, 'x'));
    EpghostProcess process(options());
    EXPECT_EQ(2, process.wait());
    EXPECT_EQ("", process.output());
    EXPECT_THAT(process.errors(), AllOf(StartsWith("epghost: state folder " + stateFolder().string()),
                                        HasSubstr("reminders.db"), EndsWith("not a database\n")));
    EXPECT_FALSE(fs::exists(stateFolder() / "event-ids"));
}

}  // namespace
}  // namespace epgset::test
