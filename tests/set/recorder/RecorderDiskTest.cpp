// Recordings when the room for them comes to its end.
#include <iostream>

#include "set/recorder/Recorder.h"
#include "set/recorder/RecordingsQuota.h"
#include "tests/set/recorder/RecorderFixture.h"
#include "tests/support/SmallDisk.h"

namespace epgset {
namespace {

using ::testing::HasSubstr;

constexpr std::uint64_t room = 1 << 20;

class RecorderDiskTest : public RecorderTest {
protected:
    RecorderDiskTest() { server_.sendBytesPerSecond(20'000'000); }

    /// A folder that holds a megabyte: a small disk, or a bound that the set is given.
    void limitRoom() {
        disk_.emplace(settings_.folder, room);
        if (!disk_->mounted()) settings_.maximumBytes = room;
    }

    std::string reasonOfFull() const {
        return disk_->mounted() ? "the disk is full"
                                : "the recordings may hold no more than " + std::to_string(room) + " bytes";
    }

    std::optional<SmallDisk> disk_;
};

TEST_F(RecorderDiskTest, EndsWhenTheDiskIsFull) {
    limitRoom();
    std::cout << "figure: the full disk of the tests is "
              << (disk_->mounted() ? "a tmpfs" : "a bound to the recordings (--recordings-max)") << " of "
              << room << " bytes\n";
    ASSERT_TRUE(recorder().begin(order(17, server_.url())));
    ASSERT_TRUE(isOver(17));
    const Note told(note(17));
    EXPECT_EQ(told.state(), "failed");
    EXPECT_EQ(told.reason(), reasonOfFull());
    EXPECT_EQ(told.number("bytes"), std::filesystem::file_size(stream(17)));
    EXPECT_GT(told.number("bytes"), room / 2);
    EXPECT_TRUE(holdsWhatWasSent(stream(17), server_.sent()));
    EXPECT_THAT(logged(Container::Logger::Error), HasSubstr("has ended: failed: " + reasonOfFull()));
    EXPECT_EQ(files().size(), 2U);
    EXPECT_FALSE(recorder().records(17));
    ASSERT_TRUE(eventually([] { return recordings().running().empty(); }));
    EXPECT_EQ(recorder().tunersInUse(), 0);
}

TEST_F(RecorderDiskTest, TellsOfEachRecordingThatAFullDiskEnds) {
    limitRoom();
    settings_.tuners = 4;
    server_.keepSilent(true);  // until all have begun
    for (const unsigned long uid : {1UL, 2UL, 3UL, 4UL})
        ASSERT_TRUE(recorder().begin(order(uid, server_.url())));
    server_.keepSilent(false);
    for (const unsigned long uid : {1UL, 2UL, 3UL, 4UL}) {
        ASSERT_TRUE(isOver(uid)) << uid;
        EXPECT_EQ(Note(note(uid)).reason(), reasonOfFull());
    }
}

TEST_F(RecorderDiskTest, RefusesWhatCannotEvenBegin) {
    limitRoom();
    if (!disk_->mounted()) GTEST_SKIP() << "no file system may be mounted here";
    {
        std::ofstream filler(settings_.folder / "filler");
        for (std::uint64_t i = 0; i <= room / 1024 && filler; ++i)
            filler << std::string(1024, 'x') << std::flush;
    }
    EXPECT_FALSE(recorder().begin(order(17, server_.url())));
    EXPECT_THAT(logged(Container::Logger::Error),
                HasSubstr("sch_id_17 of channel cid-000-7 is refused: the disk is full"));
    EXPECT_EQ(files().size(), 1U);
    EXPECT_TRUE(recordings().running().empty());
}

TEST_F(RecorderDiskTest, HoldsNoMoreThanItMay) {
    settings_.maximumBytes = 500'000;
    settings_.tuners = 3;
    for (const unsigned long uid : {1UL, 2UL, 3UL})
        ASSERT_TRUE(recorder().begin(order(uid, server_.url())));
    for (const unsigned long uid : {1UL, 2UL, 3UL}) {
        ASSERT_TRUE(isOver(uid));
        EXPECT_EQ(Note(note(uid)).reason(), "the recordings may hold no more than 500000 bytes");
    }
    recorder_.reset();
    EXPECT_LE(bytesOfFolder(settings_.folder), 500'000U);
    EXPECT_GT(bytesOfFolder(settings_.folder), 250'000U);
}

TEST_F(RecorderDiskTest, RecordsAgainWhenThereIsRoomAgain) {
    settings_.maximumBytes = 500'000;
    ASSERT_TRUE(recorder().begin(order(1, server_.url())));
    ASSERT_TRUE(isOver(1));
    std::filesystem::remove(stream(1));
    ASSERT_TRUE(recorder().begin(order(2, server_.url())));
    EXPECT_TRUE(hasBytes(2, 100'000));
}

}  // namespace
}  // namespace epgset
