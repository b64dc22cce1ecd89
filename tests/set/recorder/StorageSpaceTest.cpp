#include "set/recorder/StorageSpace.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

TEST(StorageSpaceTest, TellsTheFreeBytesOfAFolder) {
    const test::TemporaryFolder folder;
    const auto known = std::filesystem::space(folder.path()).available;
    const auto told = freeBytes(folder.path());
    ASSERT_TRUE(told);
    constexpr std::uint64_t tolerance = 1 << 30;  // others write to the disk meanwhile
    EXPECT_LT(*told, known + tolerance);
    EXPECT_GT(*told + tolerance, known);
}

TEST(StorageSpaceTest, TellsThemOfAFolderThatIsStillToBeMade) {
    const test::TemporaryFolder folder;
    EXPECT_TRUE(freeBytes(folder.path() / "recordings" / "new"));
    EXPECT_TRUE(freeBytes("recordings"));
}

}  // namespace
}  // namespace epgset
