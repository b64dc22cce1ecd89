#include "set/epghost/GuideWatch.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

namespace fs = std::filesystem;

class GuideWatchTest : public ::testing::Test {
protected:
    void write(const char* text) { folder_.write("guide.xml", text); }

    test::TemporaryFolder folder_;
    fs::path file_ = folder_.write("guide.xml", "one");
    GuideWatch watch_{{folder_.path() / "other.xml", file_}};
};

TEST_F(GuideWatchTest, SeesNothingWhileFilesStayTheSame) {
    for (int look = 0; look < 3; ++look)
        EXPECT_FALSE(watch_.changed());
}

TEST_F(GuideWatchTest, TellsAChangeOnceWhenTheFileHasSettled) {
    write("three");
    EXPECT_FALSE(watch_.changed());
    EXPECT_TRUE(watch_.changed());
    EXPECT_FALSE(watch_.changed());
}

TEST_F(GuideWatchTest, WaitsForAFileThatIsStillBeingWritten) {
    for (const char* text : {"three", "three and", "three and four"}) {
        write(text);
        EXPECT_FALSE(watch_.changed()) << text;
    }
    EXPECT_TRUE(watch_.changed());
}

TEST_F(GuideWatchTest, SeesAFileComeAndGo) {
    folder_.write("other.xml", "two");
    EXPECT_FALSE(watch_.changed());
    EXPECT_TRUE(watch_.changed());
    fs::remove(folder_.path() / "other.xml");
    EXPECT_FALSE(watch_.changed());
    EXPECT_TRUE(watch_.changed());
}

TEST_F(GuideWatchTest, SeesAnotherFileOfTheSameSizeAndTimeTakeItsPlace) {
    const fs::path other = folder_.write("new.xml", "two");
    fs::last_write_time(other, fs::last_write_time(file_));
    fs::rename(other, file_);
    EXPECT_FALSE(watch_.changed());
    EXPECT_TRUE(watch_.changed());
}

TEST_F(GuideWatchTest, KnowsWhatIsReadForAnotherReason) {
    write("three");
    watch_.markKnown();
    EXPECT_FALSE(watch_.changed());
    EXPECT_FALSE(watch_.changed());
}

TEST_F(GuideWatchTest, LeavesAFileAloneThatIsAsItWasBefore) {
    const auto time = fs::last_write_time(file_);
    fs::last_write_time(file_, time + std::chrono::seconds(1));
    EXPECT_FALSE(watch_.changed());
    fs::last_write_time(file_, time);
    EXPECT_FALSE(watch_.changed());
    EXPECT_FALSE(watch_.changed());
}

}  // namespace
}  // namespace epgset
