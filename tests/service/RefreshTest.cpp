// Guides that change while the set runs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/service/GuideText.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/GuideServer.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

/// Waits until the status of the set holds a text.
bool statusShows(HttpClient& client, const std::string& text) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        if (client.get("/set/status").body.find(text) != std::string::npos) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

TEST(GuideFileChange, IsReadWithin10Seconds) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    HttpClient client(set.url());
    folder.write("guide.xml", guideOf(5));
    EXPECT_TRUE(reachesChannels(client, 5));
}

TEST(GuideFileChange, IsReadWhenAnotherFileTakesItsPlace) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    HttpClient client(set.url());
    fs::rename(folder.write("new.xml", guideOf(4)), guide);
    EXPECT_TRUE(reachesChannels(client, 4));
}

TEST(GuideFileChange, IsReadOfALineupToo) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(3)).string();
    const std::string lineup = folder.write("lineup.toml", "").string();
    RunningSet set({"--guide", guide, "--lineup", lineup});
    HttpClient client(set.url());
    ASSERT_TRUE(reachesChannels(client, 3));
    folder.write("lineup.toml", "[[channel]]\nid = \"c2\"\nhidden = true\n");
    EXPECT_TRUE(reachesChannels(client, 2));
}

TEST(GuideFileChange, ThatIsOfNoUseLeavesTheOldGuideAndIsTold) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide, "--log-level", "error"});
    HttpClient client(set.url());
    folder.write("guide.xml", "<tv>\n<channel");
    EXPECT_TRUE(set.process().waitForError("the guide stays as it was: " + guide + ":2:"));
    EXPECT_TRUE(statusShows(client, "\"error\":\"" + guide + ":2:"));
    EXPECT_TRUE(reachesChannels(client, 2));
    fs::remove(guide);
    EXPECT_TRUE(set.process().waitForError(guide + ": cannot be opened"));
    folder.write("guide.xml", guideOf(7));
    EXPECT_TRUE(reachesChannels(client, 7));
    EXPECT_TRUE(statusShows(client, "\"channels\":7,\"programs\":0,\"skipped\":0,\"error\":null}]"));
}

TEST(GuideFileChange, ThatCannotBeReadAtAllLeavesTheOldGuideUntilAFileIsThere) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide, "--log-level", "error"});
    HttpClient client(set.url());
    fs::remove(guide);
    fs::create_directory(guide);
    set.process().signal(SIGHUP);
    EXPECT_TRUE(statusShows(client, guide + ": is a folder"));
    fs::remove(guide);
    folder.write("guide.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><tv><channel id=\"\xE9\"/></tv>");
    EXPECT_TRUE(statusShows(client, "\"error\":\"" + guide + ":1:"));
    EXPECT_TRUE(reachesChannels(client, 2));
    const std::string whole = guideOf(4);
    folder.write("guide.xml", whole.substr(0, whole.size() / 2));
    EXPECT_TRUE(statusShows(client, "\"error\":\"" + guide + ":"));
    EXPECT_TRUE(reachesChannels(client, 2));
    folder.write("guide.xml", whole);
    EXPECT_TRUE(reachesChannels(client, 4));
}

TEST(GuideFileChange, IsAnEvent) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("guide.xml", guideOf(2)).string();
    RunningSet set({"--guide", guide});
    RawConnection client(set.url());
    client.send("GET /set/events HTTP/1.0\r\n\r\n");
    EXPECT_THAT(client.receiveUntil("\n\n"), HasSubstr("text/event-stream"));
    folder.write("guide.xml", guideOf(5));
    EXPECT_THAT(client.receiveUntil("\"}\n\n"),
                HasSubstr("event: guide-reloaded\ndata: {\"path\":\"/ws/epg2/programs\"}\n\n"));
}

TEST(GuideUrl, IsFetchedAtStart) {
    GuideServer server;
    server.serve(guideOf(3));
    for (const std::string& url : {server.url(), server.redirectedUrl()}) {
        RunningSet set({"--guide", url});
        HttpClient client(set.url());
        EXPECT_TRUE(reachesChannels(client, 3));
        EXPECT_TRUE(statusShows(client, "{\"guide\":\"" + url + "\""));
    }
    EXPECT_THAT(server.answered(), Each(200));
}

TEST(GuideUrl, IsAskedForWhatIsNewOnly) {
    GuideServer server;
    server.serve(guideOf(3));
    const TemporaryFolder state;
    const EpghostProcess::Arguments options = {
        "--guide", server.redirectedUrl(), "--state", (state.path() / "state").string(), "--port", "0"};
    for (int start = 0; start < 3; ++start) {
        if (start == 2) server.serve(guideOf(4));
        EpghostProcess process(options);
        HttpClient client(process.waitUntilReady());
        EXPECT_TRUE(reachesChannels(client, start == 2 ? 4 : 3));
        EXPECT_EQ(process.stop(), 0);
    }
    EXPECT_THAT(server.answered(), ElementsAre(200, 304, 200));
}

TEST(GuideUrl, IsFetchedAgainWhenASignalAsks) {
    GuideServer server;
    server.serve(guideOf(3));
    RunningSet set({"--guide", server.url()});
    HttpClient client(set.url());
    server.serve(guideOf(6));
    set.process().signal(SIGHUP);
    EXPECT_TRUE(reachesChannels(client, 6));
}

TEST(GuideUrl, ThatCannotBeHadLeavesTheOldGuide) {
    GuideServer server;
    server.serve(guideOf(3));
    const TemporaryFolder state;
    const EpghostProcess::Arguments options = {
        "--guide", server.url(), "--state", (state.path() / "state").string(), "--port", "0"};
    {
        EpghostProcess process(options);
        HttpClient client(process.waitUntilReady());
        server.answer(500);
        process.signal(SIGHUP);
        EXPECT_TRUE(process.waitForError("the copy of it that was kept goes on being used"));
        EXPECT_TRUE(statusShows(client, "\"error\":\"" + server.url() + ": cannot be fetched: "));
        EXPECT_TRUE(reachesChannels(client, 3));
        EXPECT_EQ(process.stop(), 0);
    }
    // Also over a start, and when what comes is no guide.
    {
        EpghostProcess process(options);
        HttpClient client(process.waitUntilReady());
        EXPECT_TRUE(reachesChannels(client, 3));
        server.answer(200);
        server.serve("no guide");
        process.signal(SIGHUP);
        EXPECT_TRUE(statusShows(client, "\"error\":\"" + server.url() + ":1: "));
        EXPECT_TRUE(reachesChannels(client, 3));
        server.serve(guideOf(4));
        process.signal(SIGHUP);
        EXPECT_TRUE(reachesChannels(client, 4));
        EXPECT_TRUE(statusShows(client, "\"error\":null}]"));
    }
}

TEST(GuideUrl, IsNotFetchedAgainWhenOnlyAFileChanged) {
    GuideServer server;
    server.serve(guideOf(3));
    const TemporaryFolder folder;
    const std::string lineup = folder.write("lineup.toml", "").string();
    RunningSet set({"--guide", server.url(), "--lineup", lineup});
    HttpClient client(set.url());
    folder.write("lineup.toml", "[[channel]]\nid = \"c2\"\nhidden = true\n");
    EXPECT_TRUE(reachesChannels(client, 2));
    EXPECT_EQ(server.answered().size(), 1U);
}

}  // namespace
}  // namespace epgset::test
