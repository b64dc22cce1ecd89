#include "set/web/PluginLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using ::testing::HasSubstr;

/// What loading the file fails with; empty when it does not.
std::string errorOf(const std::string& file) {
    try {
        const PluginLibrary library(file);
        return {};
    } catch (const PluginError& error) {
        return error.what();
    }
}

TEST(PluginLibrary, HandsOutTheDescriptor) {
    const PluginLibrary library(TEST_PLUGIN);
    EXPECT_EQ(1U, library.descriptor().interfaceVersion);
    EXPECT_EQ(14400, library.descriptor().getTimerPeriod());
}

TEST(PluginLibrary, CanBeLoadedAgainAfterItWasUnloaded) {
    for (int round = 0; round < 3; ++round) {
        const PluginLibrary library(TEST_PLUGIN);
        EXPECT_NE(nullptr, library.descriptor().handleRequest);
    }
}

TEST(PluginLibrary, NamesAFileThatCannotBeLoaded) {
    const test::TemporaryFolder folder;
    const std::string missing = (folder.path() / "missing.so").string();
    EXPECT_THAT(errorOf(missing), HasSubstr(missing));
    const std::string text = folder.write("text.so", "no library").string();
    EXPECT_THAT(errorOf(text), HasSubstr(text));
    EXPECT_THAT(errorOf(folder.path().string()), HasSubstr(folder.path().string()));
}

TEST(PluginLibrary, RefusesALibraryWithoutTheEntry) {
    EXPECT_THAT(errorOf(NO_PLUGIN), HasSubstr("no pluginMainEntry"));
}

TEST(PluginLibrary, RefusesAnEntryThatFails) {
    EXPECT_THAT(errorOf(FAILING_PLUGIN), HasSubstr("pluginMainEntry failed with 5"));
}

TEST(PluginLibrary, RefusesAnEntryThatGivesNoDescriptor) {
    EXPECT_THAT(errorOf(SILENT_PLUGIN), HasSubstr("gave no descriptor"));
}

TEST(PluginLibrary, RefusesAnotherInterfaceVersion) {
    EXPECT_THAT(errorOf(OTHER_VERSION_PLUGIN), HasSubstr("interface version 2 instead of 1"));
}

TEST(PluginLibrary, RefusesADescriptorWithoutAHandler) {
    EXPECT_THAT(errorOf(HANDLERLESS_PLUGIN), HasSubstr("no request handler"));
}

}  // namespace
}  // namespace epgset
