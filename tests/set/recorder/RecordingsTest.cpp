#include "set/recorder/Recordings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "host/CPVRWrapper.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ManualClock.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Channel channelOf(int tvMode, std::int16_t major, std::int16_t minor = 0) {
    Channel channel;
    channel.tvMode = tvMode;
    channel.major = major;
    channel.minor = minor;
    return channel;
}

TCChannel objectOf(const Channel& channel) {
    return TCChannel(std::make_shared<const Channel>(channel));
}

/// The set's recordings, none of which is left behind.
class RecordingsTest : public ::testing::Test {
protected:
    RecordingsTest() { useClock(&clock_); }
    ~RecordingsTest() override {
        for (const Recording& recording : recordings().running()) {
            const Channel& channel = *recording.channel;
            recordings().stop(channel.tvMode, channel.major, channel.minor);
        }
        CPVRWrapper::GetCurrentRecordingCount();
        useClock(nullptr);
    }

    /// The major number of the channel of a recording; 0 when there is no such recording.
    static int majorOf(int number) {
        TCChannel channel;
        return CPVRWrapper::GetRecordingChannel(number, channel) ? channel.Major() : 0;
    }

    static std::vector<int> runningMajors() {
        std::vector<int> majors;
        for (const Recording& recording : recordings().running())
            majors.push_back(recording.channel->major);
        return majors;
    }

    ManualClock clock_{1'000'000};
};

TEST_F(RecordingsTest, AreNoneAtFirst) {
    EXPECT_EQ(CPVRWrapper::GetCurrentRecordingCount(), 0);
    EXPECT_EQ(majorOf(0), 0);
    EXPECT_EQ(majorOf(1), 0);
    EXPECT_FALSE(CPVRWrapper::StopRecording(objectOf(channelOf(0, 7)), 1));
    EXPECT_FALSE(CPVRWrapper::StopRecording(TCChannel(), 1));
}

TEST_F(RecordingsTest, AreNumberedFromOneInTheOrderOfTheirStart) {
    recordings().start(channelOf(0, 7), 1, "a");
    recordings().start(channelOf(3, 5), 2, "b");
    EXPECT_EQ(CPVRWrapper::GetCurrentRecordingCount(), 2);
    EXPECT_EQ(majorOf(0), 0);
    EXPECT_EQ(majorOf(1), 7);
    EXPECT_EQ(majorOf(2), 5);
    EXPECT_EQ(majorOf(3), 0);
    EXPECT_EQ(majorOf(-1), 0);
}

TEST_F(RecordingsTest, KeepTheirNumbersWhileSomeOfThemStop) {
    for (const auto major : {std::int16_t{1}, std::int16_t{2}, std::int16_t{3}})
        recordings().start(channelOf(0, major), 1, "a");
    const int count = CPVRWrapper::GetCurrentRecordingCount();
    ASSERT_EQ(count, 3);
    for (int number = 1; number <= count; ++number) {
        TCChannel channel;
        ASSERT_TRUE(CPVRWrapper::GetRecordingChannel(number, channel));
        EXPECT_EQ(channel.Major(), number);
        EXPECT_TRUE(CPVRWrapper::StopRecording(channel, 1));
        EXPECT_EQ(majorOf(number), 0);
    }
    EXPECT_EQ(CPVRWrapper::GetCurrentRecordingCount(), 0);
}

TEST_F(RecordingsTest, AreNotNumberedUntilTheyAreCountedAgain) {
    EXPECT_EQ(CPVRWrapper::GetCurrentRecordingCount(), 0);
    recordings().start(channelOf(0, 7), 1, "a");
    EXPECT_EQ(majorOf(1), 0);
    EXPECT_EQ(CPVRWrapper::GetCurrentRecordingCount(), 1);
    EXPECT_EQ(majorOf(1), 7);
}

TEST_F(RecordingsTest, StopOnTheirOwnChannelAlone) {
    recordings().start(channelOf(0, 7, 2), 1, "a");
    for (const Channel& other : {channelOf(3, 7, 2), channelOf(0, 8, 2), channelOf(0, 7, 0)})
        EXPECT_FALSE(CPVRWrapper::StopRecording(objectOf(other), 1));
    EXPECT_THAT(runningMajors(), ElementsAre(7));
    EXPECT_TRUE(CPVRWrapper::StopRecording(objectOf(channelOf(0, 7, 2)), 1));
    EXPECT_THAT(runningMajors(), IsEmpty());
}

TEST_F(RecordingsTest, AreToldOnceThatTheyAreStopped) {
    int stopped = 0;
    recordings().start(channelOf(0, 7), 1, "a", [&] {
        ++stopped;
        EXPECT_THAT(runningMajors(), IsEmpty());  // no lock is held
    });
    EXPECT_TRUE(recordings().stop(0, 7, 0));
    EXPECT_FALSE(recordings().stop(0, 7, 0));
    EXPECT_EQ(stopped, 1);
}

TEST_F(RecordingsTest, EndWithoutBeingStopped) {
    int stopped = 0;
    const auto handle = recordings().start(channelOf(0, 7), 1, "a", [&] { ++stopped; });
    recordings().start(channelOf(0, 8), 1, "b");
    CPVRWrapper::GetCurrentRecordingCount();
    recordings().end(handle);
    recordings().end(handle);
    EXPECT_EQ(majorOf(1), 0);
    EXPECT_EQ(majorOf(2), 8);
    EXPECT_EQ(stopped, 0);
}

TEST_F(RecordingsTest, TellWhatTheyAreFor) {
    recordings().start(channelOf(0, 7), 17, "folder/a.ts");
    clock_.advance(5);
    const std::vector<Recording> running = recordings().running();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].scheduleUid, 17U);
    EXPECT_EQ(running[0].file, "folder/a.ts");
    EXPECT_EQ(running[0].start, 1'000'000);
}

TEST_F(RecordingsTest, StartAndStopFromSeveralThreads) {
    const auto work = [](std::int16_t major) {
        for (int round = 0; round < 200; ++round) {
            recordings().start(channelOf(0, major), 1, "a");
            CPVRWrapper::GetCurrentRecordingCount();
            majorOf(1);
            EXPECT_TRUE(recordings().stop(0, major, 0));
        }
    };
    std::thread one(work, std::int16_t{1});
    std::thread other(work, std::int16_t{2});
    one.join();
    other.join();
    EXPECT_THAT(runningMajors(), IsEmpty());
}

}  // namespace
}  // namespace epgset
