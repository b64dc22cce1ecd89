#include "set/recorder/RecordingsQuota.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

class RecordingsQuotaTest : public ::testing::Test {
protected:
    void hold(const char* name, std::size_t bytes) { folder_.write(name, std::string(bytes, 'x')); }

    test::TemporaryFolder folder_;
};

TEST_F(RecordingsQuotaTest, CountsTheFilesThatAreThere) {
    hold("old.ts", 600);
    std::filesystem::create_directory(folder_.path() / "series");
    hold("series/old.ts", 300);
    std::filesystem::create_symlink(folder_.path() / "old.ts", folder_.path() / "again.ts");
    EXPECT_EQ(bytesOfFolder(folder_.path()), 900U);
    RecordingsQuota quota(folder_.path(), 1000);
    EXPECT_FALSE(quota.take(101));
    EXPECT_TRUE(quota.take(100));
    EXPECT_FALSE(quota.take(1));
}

TEST_F(RecordingsQuotaTest, CountsWhatIsUnderWayUntilItIsWritten) {
    RecordingsQuota quota(folder_.path(), 1000);
    ASSERT_TRUE(quota.take(600));
    EXPECT_FALSE(quota.take(600));
    hold("new.ts", 600);
    quota.wrote(600);
    EXPECT_FALSE(quota.take(401));
    EXPECT_TRUE(quota.take(400));
}

TEST_F(RecordingsQuotaTest, HasRoomAgainWhenAFileIsRemoved) {
    hold("old.ts", 1000);
    RecordingsQuota quota(folder_.path(), 1000);
    ASSERT_FALSE(quota.take(1));
    std::filesystem::remove(folder_.path() / "old.ts");
    EXPECT_TRUE(quota.take(1000));
}

TEST_F(RecordingsQuotaTest, LooksAgainWhenAFileHasComeFromElsewhere) {
    RecordingsQuota quota(folder_.path(), 1000);
    ASSERT_TRUE(quota.take(1));
    quota.wrote(1);
    hold("other.ts", 900);
    quota.lookAgain();
    EXPECT_FALSE(quota.take(101));
}

TEST_F(RecordingsQuotaTest, GrantsEverythingWithoutABound) {
    RecordingsQuota quota(folder_.path(), 0);
    EXPECT_TRUE(quota.take(std::uint64_t{1} << 60));
}

TEST_F(RecordingsQuotaTest, FindsNothingInAFolderThatIsNotThere) {
    EXPECT_EQ(bytesOfFolder(folder_.path() / "missing"), 0U);
}

}  // namespace
}  // namespace epgset
