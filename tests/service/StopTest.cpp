// The signals that stop epghost or make it read its guides again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using ::testing::HasSubstr;

/// A guide of two channels and one programme, which is read in no time.
const std::string smallGuide = EPG_TEST_DATA "/small.xml";

/// The text of a guide of so many channels.
std::string guideOf(int channels) {
    std::string text = "<tv>\n";
    for (int number = 1; number <= channels; ++number) {
        const std::string name = std::to_string(number);
        text += "<channel id=\"c" + name + "\"><display-name>" + name + "</display-name></channel>\n";
    }
    return text + "</tv>\n";
}

/// Waits until the set has so many channels.
bool reachesChannels(HttpClient& client, int count) {
    const std::string wanted = "\"channels\":" + std::to_string(count) + ",";
    for (int attempt = 0; attempt < 1000; ++attempt) {
        if (client.get("/set/status").body.find(wanted) != std::string::npos) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

TEST(Stop, EndsWithStatus0OnEitherSignal) {
    for (const int number : {SIGTERM, SIGINT}) {
        RunningSet set({"--guide", smallGuide, "--log-level", "error"});
        EXPECT_EQ(0, set.process().stop(number));
        EXPECT_EQ("", set.process().errors());
    }
}

TEST(Stop, EndsCleanlyBeforeTheSetIsReady) {
    const TemporaryFolder folder;
    EpghostProcess process({"--port", "0", "--guide", smallGuide, "--state", folder.path().string()});
    std::this_thread::sleep_for(std::chrono::milliseconds(30));  // the signals are blocked first thing
    EXPECT_THAT(process.stop(), ::testing::AnyOf(0, 128 + SIGTERM));
}

TEST(Stop, EndsWhileClientsAreConnected) {
    RunningSet set({"--guide", smallGuide});
    RawConnection idle(set.url());
    RawConnection halfway(set.url());
    halfway.send("PUT /ws/epg2/schedules HTTP/1.1\r\nHost: x\r\nContent-Length: 100\r\n\r\n{");
    HttpClient(set.url()).get("/set/status");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(0, set.process().stop());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST(Reload, PutsANewGuideInUse) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    HttpClient client(set.url());
    ASSERT_TRUE(reachesChannels(client, 2));
    folder.write("guide.xml", guideOf(5));
    set.process().signal(SIGHUP);
    EXPECT_TRUE(reachesChannels(client, 5));
}

TEST(Reload, ReportsABadGuideAndKeepsTheOldOne) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide, "--log-level", "error"});
    HttpClient client(set.url());
    folder.write("guide.xml", "<tv>\n<channel>\n");
    set.process().signal(SIGHUP);
    EXPECT_TRUE(set.process().waitForError(guide + ":2: "));
    EXPECT_TRUE(reachesChannels(client, 2));
    folder.write("guide.xml", guideOf(3));
    set.process().signal(SIGHUP);
    EXPECT_TRUE(reachesChannels(client, 3));
    EXPECT_EQ(1, std::ranges::count(set.process().errors(), '\n'));
}

TEST(Reload, ReportsABadLineupAndKeepsTheOldOne) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(3)).string();
    const std::string lineup =
        folder.write("lineup.toml", "[[channel]]\nid = \"c1\"\nhidden = true\n").string();
    RunningSet set({"--guide", guide, "--lineup", lineup});
    HttpClient client(set.url());
    ASSERT_TRUE(reachesChannels(client, 2));
    folder.write("lineup.toml", "[[channel]]\nid = 1\n");
    set.process().signal(SIGHUP);
    EXPECT_TRUE(set.process().waitForError(lineup + ":2"));
    EXPECT_TRUE(reachesChannels(client, 2));
    folder.write("lineup.toml", "");
    set.process().signal(SIGHUP);
    EXPECT_TRUE(reachesChannels(client, 3));
}

TEST(Reload, CallsTheMaintenanceAtOnce) {
    RunningSet set({"--guide", smallGuide, "--log-level", "debug"});
    const std::string line = "Checking to see if the EPG DB rquires an udpate";
    ASSERT_TRUE(set.process().waitForError(line));
    const std::size_t first = set.process().errors().find(line);
    set.process().signal(SIGHUP);
    for (int attempt = 0; attempt < 1000 && set.process().errors().find(line, first + 1) == std::string::npos;
         ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_NE(std::string::npos, set.process().errors().find(line, first + 1));
}

TEST(Reload, SurvivesManySignals) {
    RunningSet set({"--guide", smallGuide});
    for (int count = 0; count < 50; ++count) {
        set.process().signal(SIGHUP);
        HttpClient(set.url()).get("/ws/epg2/antennas");
    }
    EXPECT_EQ(0, set.process().stop());
}

}  // namespace
}  // namespace epgset::test
