#include "set/recorder/Recorder.h"

#include "host/CPVRWrapper.h"
#include "set/events/EventRing.h"
#include "tests/set/recorder/RecorderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

TEST_F(RecorderTest, RecordsTheSourceIntoAFileUntilTheEnd) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(hasBytes(17, 200'000));
    recorder().end(17, RecordingEnd::Ended);
    ASSERT_TRUE(reaches(17, "ended"));
    EXPECT_TRUE(holdsWhatWasSent(stream(17), server_.sent()));
    EXPECT_EQ(Note(note(17)).number("bytes"), std::filesystem::file_size(stream(17)));
    EXPECT_EQ(server_.connections(), 1);
    EXPECT_THAT(files(),
                ElementsAre("2026-08-23 20-15 News Title 17.json", "2026-08-23 20-15 News Title 17.ts"));
}

TEST_F(RecorderTest, TellsOfARecordingBesideIt) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    const Note begun(note(17));
    EXPECT_EQ(begun.state(), "recording");
    EXPECT_TRUE(begun.isNull("reason"));
    EXPECT_TRUE(begun.isNull("end"));
    ASSERT_TRUE(hasBytes(17));
    clock_.advance(60);
    recorder().end(17, RecordingEnd::Ended);
    ASSERT_TRUE(reaches(17, "ended"));
    const Note ended(note(17));
    ASSERT_TRUE(ended.valid());
    EXPECT_EQ(ended.text("file"), "2026-08-23 20-15 News Title 17.ts");
    EXPECT_STREQ(ended.json()["channel"]["id"].GetString(), "cid-000-7");
    EXPECT_STREQ(ended.json()["channel"]["num"].GetString(), "7");
    EXPECT_STREQ(ended.json()["channel"]["name"].GetString(), "News");
    EXPECT_EQ(ended.text("schedule_id"), "sch_id_17");
    EXPECT_EQ(ended.text("title"), "Title 17");
    EXPECT_EQ(ended.text("synopsis"), "What happens");
    EXPECT_EQ(ended.text("planned_start"), "2026-08-23T20:15:00+02:00");
    EXPECT_EQ(ended.text("planned_end"), "2026-08-23T20:45:00+02:00");
    EXPECT_EQ(ended.text("start"), "2026-08-23T20:15:00+02:00");
    EXPECT_EQ(ended.text("end"), "2026-08-23T20:16:00+02:00");
    EXPECT_TRUE(ended.isNull("reason"));
    EXPECT_EQ(ended.number("breaks"), 0U);
}

TEST_F(RecorderTest, TellsFromTimeToTimeHowMuchItHolds) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(eventually([this] { return Note(note(17)).number("bytes") - 1 < 1'000'000'000; }));
    EXPECT_EQ(Note(note(17)).state(), "recording");
}

TEST_F(RecorderTest, StandsInTheListOfRecordingsMeanwhile) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    const auto running = recordings().running();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].scheduleUid, 17U);
    EXPECT_EQ(running[0].file, stream(17));
    EXPECT_EQ(running[0].channel->major, 7);
    EXPECT_EQ(recorder().tunersInUse(), 1);
    EXPECT_TRUE(recorder().records(17));
    EXPECT_FALSE(recorder().records(18));
    recorder().end(17, RecordingEnd::Ended);
    EXPECT_THAT(recordings().running(), IsEmpty());
    EXPECT_EQ(recorder().tunersInUse(), 0);
    EXPECT_FALSE(recorder().records(17));
}

TEST_F(RecorderTest, SaysThatARecordingHasStartedAndEnded) {
    const std::uint64_t before = events().last();
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    recorder().end(17, RecordingEnd::Ended);
    ASSERT_TRUE(eventually([&] { return events().last() >= before + 2; }));
    const auto published = events().after(before).value();
    ASSERT_EQ(published.size(), 2U);
    EXPECT_EQ(published[0].name, event::recordingStarted);
    EXPECT_EQ(published[1].name, event::recordingEnded);
    for (const Event& event : published)
        EXPECT_EQ(event.path, schedulePath(17));
    EXPECT_FALSE(Note(note(17)).isNull("end"));  // all is on the disk by then
}

TEST_F(RecorderTest, EndsAtThePlannedEndWhenNobodySaysSo) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(hasBytes(17));
    clock_.advance(1799);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(Note(note(17)).state(), "recording");
    clock_.advance(1);
    ASSERT_TRUE(reaches(17, "ended"));
    ASSERT_TRUE(eventually([] { return recordings().running().empty(); }));
}

TEST_F(RecorderTest, TellsWhoStopsItWhichOccurrenceThatIs) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(recorder().begin(order(18, server_.url(), 8)));
    ASSERT_TRUE(hasBytes(17));
    EXPECT_TRUE(CPVRWrapper::StopRecording(TCChannel(order(17, "").channel), 1));
    EXPECT_THAT(stopped_, ElementsAre(Pair(17U, evening)));  // before the answer
    EXPECT_EQ(recorder().tunersInUse(), 1);
    EXPECT_TRUE(reaches(17, "stopped"));
    EXPECT_FALSE(CPVRWrapper::StopRecording(TCChannel(order(17, "").channel), 1));
    EXPECT_EQ(Note(note(18)).state(), "recording");
}

TEST_F(RecorderTest, StopsThoughThatCannotBeKept) {
    recorder_ = std::make_unique<Recorder>(
        settings_, [](unsigned long, std::int64_t) { throw std::runtime_error("the store is gone"); });
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    EXPECT_TRUE(CPVRWrapper::StopRecording(TCChannel(order(17, "").channel), 1));
    EXPECT_TRUE(isOver(17));
    EXPECT_THAT(logged(Container::Logger::Error),
                HasSubstr("It is not kept that recording sch_id_17 was stopped: the store is gone"));
}

TEST_F(RecorderTest, SaysHowARecordingEnded) {
    settings_.tuners = 3;
    for (const unsigned long uid : {1UL, 2UL, 3UL}) {
        ASSERT_TRUE(recorder().begin(order(uid, server_.url())));
        ASSERT_TRUE(hasBytes(uid));
    }
    recorder().end(1, RecordingEnd::Removed);
    recorder().end(2, RecordingEnd::Replaced);
    EXPECT_TRUE(reaches(1, "removed"));
    EXPECT_TRUE(reaches(2, "replaced"));
    recorder_.reset();
    EXPECT_EQ(Note(note(3)).state(), "interrupted");
    EXPECT_EQ(Note(note(3)).reason(), "the set was stopped");
    EXPECT_THAT(recordings().running(), IsEmpty());
    EXPECT_THAT(stopped_, IsEmpty());
}

TEST_F(RecorderTest, EndsNothingButWhatIsMeant) {
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    recorder().end(18, RecordingEnd::Removed);
    EXPECT_EQ(recorder().tunersInUse(), 1);
    recorder().end(17, RecordingEnd::Removed);
    recorder().end(17, RecordingEnd::Ended);
    EXPECT_TRUE(reaches(17, "removed"));
}

TEST_F(RecorderTest, TakesTheSameOrderOnce) {
    const RecordingOrder once = order(17, server_.url());
    ASSERT_TRUE(recorder().begin(once));
    EXPECT_TRUE(recorder().begin(once));
    EXPECT_EQ(recorder().tunersInUse(), 1);
    EXPECT_EQ(files().size(), 3U);  // the third is the room for the last note
}

TEST_F(RecorderTest, EndsTheLastTimeOfAnEntryForItsNext) {
    settings_.tuners = 1;
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    RecordingOrder later = order(17, server_.url());
    later.start += 60;
    EXPECT_TRUE(recorder().begin(later));
    EXPECT_EQ(recorder().tunersInUse(), 1);
    EXPECT_TRUE(isOver(17));
    EXPECT_TRUE(eventually([this] {
        return Note(settings_.folder / "2026-08-23 20-16 News Title 17.json").state() == "recording";
    }));
}

TEST_F(RecorderTest, NeverWritesIntoAnotherFile) {
    std::filesystem::create_directories(settings_.folder);
    std::ofstream(stream(17)) << "mine";
    std::ofstream(settings_.folder / "2026-08-23 20-15 News Title 17 2.json") << "mine too";
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    recorder_.reset();
    EXPECT_THAT(files(),
                ElementsAre("2026-08-23 20-15 News Title 17 2.json", "2026-08-23 20-15 News Title 17 3.json",
                            "2026-08-23 20-15 News Title 17 3.ts", "2026-08-23 20-15 News Title 17.ts"));
    EXPECT_EQ(contentOf(stream(17)), "mine");
    EXPECT_EQ(contentOf(settings_.folder / "2026-08-23 20-15 News Title 17 2.json"), "mine too");
}

TEST_F(RecorderTest, RecordsAsMuchAtOnceAsThereAreTuners) {
    ASSERT_TRUE(recorder().begin(order(1, server_.url())));
    ASSERT_TRUE(recorder().begin(order(2, server_.url())));
    EXPECT_FALSE(recorder().begin(order(3, server_.url())));
    EXPECT_EQ(Note(note(3)).state(), "failed");
    EXPECT_EQ(Note(note(3)).reason(), "no tuner is free, 2 in use");
    EXPECT_TRUE(Note(note(3)).isNull("file"));
    EXPECT_TRUE(Note(note(3)).isNull("start"));
    EXPECT_FALSE(std::filesystem::exists(stream(3)));
    EXPECT_THAT(logged(Container::Logger::Error), HasSubstr("sch_id_3 is refused: no tuner is free"));
    recorder().end(1, RecordingEnd::Ended);
    EXPECT_TRUE(recorder().begin(order(4, server_.url())));
    EXPECT_EQ(recorder().tunersInUse(), 2);
}

TEST_F(RecorderTest, RecordsOneChannelTwiceAtOnce) {
    ASSERT_TRUE(recorder().begin(order(1, server_.url())));
    ASSERT_TRUE(recorder().begin(order(2, server_.url())));
    EXPECT_TRUE(hasBytes(1));
    EXPECT_TRUE(hasBytes(2));
}

TEST_F(RecorderTest, RefusesWhatHasNoSource) {
    EXPECT_FALSE(recorder().begin(order(17, "")));
    EXPECT_EQ(Note(note(17)).state(), "failed");
    EXPECT_EQ(Note(note(17)).reason(), "channel cid-000-7 has no source");
    EXPECT_THAT(logged(Container::Logger::Error),
                HasSubstr("sch_id_17 is refused: channel cid-000-7 has no source"));
    EXPECT_THAT(recordings().running(), IsEmpty());
}

TEST_F(RecorderTest, RefusesAChannelThatIsNotInTheLineup) {
    RecordingOrder missing = order(17, "");
    missing.channel = nullptr;
    EXPECT_FALSE(recorder().begin(missing));
    const Note told(settings_.folder / "2026-08-23 20-15 7 Title 17.json");
    EXPECT_EQ(told.reason(), "channel cid-000-7 is not in the line-up");
}

TEST_F(RecorderTest, RefusesSourcesOfOtherKinds) {
    EXPECT_FALSE(recorder().begin(order(17, "ftp://127.0.0.1/one.ts")));
    EXPECT_EQ(Note(note(17)).reason(),
              R"(channel cid-000-7: its source is of the kind "ftp", not HTTP, HTTPS or a file)");
    EXPECT_FALSE(recorder().begin(order(18, "http://[:/one.ts")));
    EXPECT_EQ(Note(note(18)).reason(), "channel cid-000-7: its source is no URL that can be read");
}

TEST_F(RecorderTest, RecordsNothingWhereTheSetCannot) {
    for (const auto& [word, reason] :
         {std::pair("off", "the set cannot record"), std::pair("no-device", "the set has no storage device"),
          std::pair("unformatted", "the storage device is not formatted")}) {
        usePvrState(pvrStateOf(word).value());
        EXPECT_FALSE(recorder().begin(order(17, server_.url())));
        EXPECT_THAT(logged(Container::Logger::Error), HasSubstr(reason));
    }
    EXPECT_FALSE(std::filesystem::exists(settings_.folder));
}

TEST_F(RecorderTest, HasNoFolderBeforeItIsNeeded) {
    recorder();
    EXPECT_FALSE(std::filesystem::exists(settings_.folder));
}

TEST_F(RecorderTest, SaysWhenItsFolderCannotBeMade) {
    std::ofstream(settings_.folder) << "a file";
    EXPECT_FALSE(recorder().begin(order(17, server_.url())));
    EXPECT_THAT(logged(Container::Logger::Error),
                HasSubstr("nothing can be written to " + settings_.folder.string()));
    EXPECT_THAT(recordings().running(), IsEmpty());
}

}  // namespace
}  // namespace epgset
