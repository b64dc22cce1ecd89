// The signals that stop epghost or make it read its guides again.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/service/GuideText.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

/// A guide of two channels and one programme, which is read in no time.
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

/// A pipe into which nobody writes: a guide that is never read to its end.
std::string pipeIn(const TemporaryFolder& folder, const char* name) {
    const std::string path = (folder.path() / name).string();
    fs::remove(path);
    EXPECT_EQ(0, mkfifo(path.c_str(), 0600));
    return path;
}

TEST(Stop, EndsWithStatus0WhileTheGuideIsRead) {
    const TemporaryFolder folder;
    const std::string guide = pipeIn(folder, "guide.xml");
    for (const int number : {SIGTERM, SIGINT}) {
        EpghostProcess process(
            {"--port", "0", "--guide", guide, "--state", (folder.path() / "state").string()});
        const int writer = open(guide.c_str(), O_WRONLY | O_CLOEXEC);  // waits until the set reads
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(0, process.stop(number));
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
        EXPECT_EQ("", process.errors());
        EXPECT_FALSE(fs::exists(folder.path() / "state"));
        close(writer);
    }
}

TEST(Stop, EndsWithStatus0WhileTheGuideIsReadAgain) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    pipeIn(folder, "guide.xml");
    set.process().signal(SIGHUP);
    const int writer = open(guide.c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(200, HttpClient(set.url()).get("/ws/epg2/antennas").status);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(0, set.process().stop());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    close(writer);
}

TEST(Stop, EndsWhileClientsAreConnected) {
    RunningSet set({"--guide", smallGuide});
    RawConnection idle(set.url());
    RawConnection halfway(set.url());
    halfway.send("PUT /ws/epg2/schedules HTTP/1.1\r\nHost: localhost\r\nContent-Length: 100\r\n\r\n{");
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

TEST(Reload, IsDoneAgainWhenItIsAskedForMeanwhile) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    pipeIn(folder, "guide.xml");
    set.process().signal(SIGHUP);
    const int writer = open(guide.c_str(), O_WRONLY | O_CLOEXEC);
    fs::remove(guide);
    folder.write("guide.xml", guideOf(7));
    set.process().signal(SIGHUP);
    HttpClient client(set.url());
    EXPECT_TRUE(reachesChannels(client, 2));
    close(writer);  // the first load fails of a guide that is empty
    EXPECT_TRUE(reachesChannels(client, 7));
}

TEST(Reload, PutsAGuideInUseWhoseEventIdsCannotBeKept) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    const fs::path state = folder.path() / "state";
    fs::create_directory(state);
    EpghostProcess process(
        {"--port", "0", "--guide", guide, "--state", state.string(), "--log-level", "debug"});
    HttpClient client(process.waitUntilReady());
    fs::create_directory(state / "event-ids.new");
    const std::string line = "Checking to see if the EPG DB rquires an udpate";
    const std::size_t before = process.errors().rfind(line);
    folder.write("guide.xml",
                 "<tv><channel id=\"a\"/><channel id=\"b\"/><channel id=\"c\"/>"
                 "<programme channel=\"a\" start=\"20260823120000\"/></tv>");
    process.signal(SIGHUP);
    EXPECT_TRUE(process.waitForError("is not kept: "));
    EXPECT_TRUE(reachesChannels(client, 3));
    for (int attempt = 0; attempt < 1000 && process.errors().find(line, before + 1) == std::string::npos;
         ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_NE(std::string::npos, process.errors().find(line, before + 1)) << "no maintenance";
    EXPECT_THAT(process.errors(), Not(HasSubstr("stays as it was")));
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
