// What a recording makes of its source.
#include <sys/stat.h>


#include "set/recorder/Recorder.h"
#include "tests/set/recorder/RecorderFixture.h"
#include "tests/support/Certificate.h"

namespace epgset {
namespace {

using test::StreamServer;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class RecorderSourceTest : public RecorderTest {
protected:
    bool isConnected(int times) {
        return eventually([&] {
            const auto runs = server_.sent();
            return runs.size() >= static_cast<std::size_t>(times);
        });
    }

    /// Lets the recording end and answers its note.
    Note endOf(unsigned long uid) {
        recorder().end(uid, RecordingEnd::Ended);
        EXPECT_TRUE(isOver(uid));
        return Note(note(uid));
    }

    bool saysTrouble(unsigned long uid, const std::string& trouble) {
        return eventually([&] { return Note(note(uid)).text("latest_trouble") == trouble; });
    }

    static std::string wholeFile() {
        return StreamServer::bytesOf({0, StreamServer::filePackets * StreamServer::packetBytes});
    }
};

TEST_F(RecorderSourceTest, OpensASourceThatBreaksAgain) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    for (int times = 1; times <= 4; ++times) {
        ASSERT_TRUE(isConnected(times));
        if (times < 4) server_.dropAll();
    }
    const Note told = endOf(17);
    EXPECT_EQ(told.state(), "ended");
    EXPECT_EQ(told.number("breaks"), 3U);
    EXPECT_THAT(server_.sent(), SizeIs(4));
    EXPECT_TRUE(holdsWhatWasSent(stream(17), server_.sent()));
}

TEST_F(RecorderSourceTest, OpensAStreamThatComesToAnEndAgain) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(isConnected(1));
    server_.endAll();
    ASSERT_TRUE(isConnected(2));
    EXPECT_EQ(endOf(17).text("latest_trouble"), "it closed the connection");
    EXPECT_TRUE(holdsWhatWasSent(stream(17), server_.sent()));
}

TEST_F(RecorderSourceTest, AsksASourceThatRefusesAgain) {
    server_.refuseWith(503);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(eventually([this] { return server_.requests() >= 3; }));
    EXPECT_TRUE(saysTrouble(17, "it answered with HTTP status 503"));
    EXPECT_EQ(Note(note(17)).state(), "recording");
    server_.refuseWith(0);
    ASSERT_TRUE(hasBytes(17));
    EXPECT_EQ(endOf(17).state(), "ended");
    EXPECT_TRUE(holdsWhatWasSent(stream(17), server_.sent()));
}

TEST_F(RecorderSourceTest, TellsOfTheSameTroubleOnce) {
    server_.refuseWith(503);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(eventually([this] { return server_.requests() >= 4; }));
    EXPECT_EQ(
        logged(Container::Logger::Warning),
        "Recording sch_id_17: the source of channel cid-000-7 broke: it answered with HTTP status 503\n");
}

TEST_F(RecorderSourceTest, FailsWhenNothingCameUntilTheEnd) {
    server_.refuseWith(404);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(eventually([this] { return server_.requests() >= 2; }));
    const Note told = endOf(17);
    EXPECT_EQ(told.state(), "failed");
    EXPECT_EQ(told.reason(), "nothing came from the source: it answered with HTTP status 404");
    EXPECT_EQ(told.number("bytes"), 0U);
    EXPECT_THAT(logged(Container::Logger::Error), HasSubstr(told.reason()));
}

TEST_F(RecorderSourceTest, WaitsLongerFromTimeToTime) {
    settings_.times.firstPause = std::chrono::milliseconds(100);
    settings_.times.longestPause = std::chrono::milliseconds(400);
    server_.refuseWith(503);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(eventually([this] { return server_.requests() >= 5; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100 + 200 + 400 + 400));
}

TEST_F(RecorderSourceTest, LeavesASourceThatIsSilent) {
    settings_.times.source.silence = std::chrono::milliseconds(200);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(isConnected(1));
    server_.keepSilent(true);
    ASSERT_TRUE(saysTrouble(17, "no byte came for 0.2 s"));
    server_.keepSilent(false);
    ASSERT_TRUE(isConnected(2));
    endOf(17);
}

TEST_F(RecorderSourceTest, WaitsForNoSource) {
    server_.keepSilent(true);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(recorder().begin(order(18, "http://192.0.2.1/one.ts")));  // nobody is there
    recorder().end(17, RecordingEnd::Ended);
    recorder().end(18, RecordingEnd::Ended);
    recorder_.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

TEST_F(RecorderSourceTest, EndsAtOnceInAPause) {
    settings_.times.firstPause = std::chrono::minutes(10);
    settings_.times.longestPause = std::chrono::minutes(10);
    server_.refuseWith(503);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(saysTrouble(17, "it answered with HTTP status 503"));
    endOf(17);
}

TEST_F(RecorderSourceTest, FollowsARedirect) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url("/once"))));
    ASSERT_TRUE(hasBytes(17));
    EXPECT_EQ(endOf(17).number("breaks"), 0U);
}

TEST_F(RecorderSourceTest, LeavesARedirectThatGoesRound) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url("/round"))));
    EXPECT_TRUE(saysTrouble(17, "Maximum (5) redirects followed"));
    endOf(17);
}

TEST_F(RecorderSourceTest, IsNotSentToAFileByASource) {
    const auto secret = temporary_.write("secret", "nobody else's");
    server_.sendElsewhere("file://" + secret.string());
    ASSERT_TRUE(recorder().begin(order(17, server_.url("/elsewhere"))));
    EXPECT_TRUE(saysTrouble(17, "Protocol \"file\" not supported or disabled in libcurl"));
    EXPECT_EQ(endOf(17).number("bytes"), 0U);
}

TEST_F(RecorderSourceTest, TrustsNoServerThatNobodyVouchesFor) {
    const auto [key, certificate] = test::makeCertificate(temporary_);
    const StreamServer server({contentOf(key), contentOf(certificate)});
    ASSERT_TRUE(recorder().begin(order(17, server.url())));
    ASSERT_TRUE(eventually([this] { return !Note(note(17)).text("latest_trouble").empty(); }));
    EXPECT_THAT(Note(note(17)).text("latest_trouble"), HasSubstr("certificate"));
    EXPECT_EQ(endOf(17).number("bytes"), 0U);
}

TEST_F(RecorderSourceTest, TakesNoTextForPeopleAsAStream) {
    server_.refuseWith(300);
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    EXPECT_TRUE(saysTrouble(17, "it answered with HTTP status 300"));
    EXPECT_EQ(endOf(17).number("bytes"), 0U);
}

TEST_F(RecorderSourceTest, EndsWithASourceWhoseLengthIsKnown) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url("/file.ts"))));
    ASSERT_TRUE(reaches(17, "ended"));
    EXPECT_EQ(Note(note(17)).reason(), "the source ended");
    EXPECT_EQ(contentOf(stream(17)), wholeFile());
    ASSERT_TRUE(eventually([] { return recordings().running().empty(); }));
    EXPECT_EQ(recorder().tunersInUse(), 0);
}

TEST_F(RecorderSourceTest, ReadsAFileToItsEnd) {
    const auto path = temporary_.write("one 100%#?.ts", wholeFile());
    ASSERT_TRUE(recorder().begin(order(17, path.string())));
    ASSERT_TRUE(reaches(17, "ended"));
    EXPECT_EQ(Note(note(17)).reason(), "the source ended");
    EXPECT_EQ(contentOf(stream(17)), wholeFile());
    ASSERT_TRUE(recorder().begin(order(18, "FILE:" + temporary_.write("two.ts", wholeFile()).string())));
    ASSERT_TRUE(reaches(18, "ended"));
    EXPECT_EQ(contentOf(stream(18)), wholeFile());
}

TEST_F(RecorderSourceTest, WaitsForAFileThatIsMissing) {
    const auto path = temporary_.path() / "late.ts";
    ASSERT_TRUE(recorder().begin(order(17, path.string())));
    ASSERT_TRUE(saysTrouble(17, path.string() + " is missing"));
    temporary_.write("late.part", wholeFile());
    std::filesystem::rename(temporary_.path() / "late.part", path);
    ASSERT_TRUE(reaches(17, "ended"));
    EXPECT_EQ(contentOf(stream(17)), wholeFile());
}

TEST_F(RecorderSourceTest, IsNotHeldUpByAPipeThatNobodyWritesTo) {
    const auto path = temporary_.path() / "pipe.ts";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    ASSERT_TRUE(recorder().begin(order(17, path.string())));
    ASSERT_TRUE(saysTrouble(17, path.string() + " is no regular file"));
    endOf(17);
}

TEST_F(RecorderSourceTest, GoesOnWithTheOthersWhenOneSourceFails) {
    ASSERT_TRUE(recorder().begin(order(17, (temporary_.path() / "missing.ts").string())));
    ASSERT_TRUE(recorder().begin(order(18, server_.url(), 8)));
    ASSERT_TRUE(hasBytes(18, 100'000));
    EXPECT_EQ(endOf(17).state(), "failed");
    EXPECT_EQ(endOf(18).state(), "ended");
    EXPECT_TRUE(holdsWhatWasSent(stream(18), server_.sent()));
}

}  // namespace
}  // namespace epgset
