#include "set/epghost/StateFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "set/epghost/Options.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class StateFolderTest : public ::testing::Test {
protected:
    /// What is said of a folder that is refused before anything is created; empty when it is accepted.
    static std::string refusal(const fs::path& folder) {
        try {
            const StateFolder state(folder);
            return "";
        } catch (const StartError& error) {
            return error.what();
        }
    }

    const test::TemporaryFolder folder_;
};

TEST_F(StateFolderTest, IsCreatedForItsOwnerOnlyHoweverItIsWritten) {
    for (const char* name : {"plain", "slash/", "slashes///", "dot/.", "below/that", "below/slash/"}) {
        StateFolder state(folder_.path() / name);
        EXPECT_FALSE(fs::exists(folder_.path() / name)) << name;
        state.create();
        EXPECT_EQ(fs::perms::owner_all, fs::status(folder_.path() / name).permissions()) << name;
    }
}

TEST_F(StateFolderTest, BelowAFileIsRefusedBeforeItIsCreated) {
    const fs::path file = folder_.write("file", "");
    for (const fs::path& folder : {file, file / "a", file / "a" / "b"})
        EXPECT_THAT(refusal(folder), HasSubstr(folder.string() + ": Not a directory"));
}

TEST_F(StateFolderTest, BehindALinkToNowhereIsRefusedBeforeItIsCreated) {
    fs::create_symlink("/nowhere/at/all", folder_.path() / "link");
    for (const char* name : {"link", "link/", "link/below"})
        EXPECT_THAT(refusal(folder_.path() / name), HasSubstr("No such file or directory")) << name;
}

TEST_F(StateFolderTest, WithANameThatIsTooLongIsRefusedBeforeItIsCreated) {
    EXPECT_THAT(refusal(folder_.path() / std::string(300, 'x')), HasSubstr("File name too long"));
}

TEST_F(StateFolderTest, IsAcceptedWithoutBeingCreated) {
    EXPECT_EQ("", refusal(folder_.path() / "a" / "b" / "c"));
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(StateFolderTest, HasOneOwnerAtATime) {
    const StateFolder first(folder_.path());
    EXPECT_THAT(refusal(folder_.path()), HasSubstr("in use by another epghost"));
    EXPECT_THAT(refusal(folder_.path() / "."), HasSubstr("in use by another epghost"));
}

}  // namespace
}  // namespace epgset
