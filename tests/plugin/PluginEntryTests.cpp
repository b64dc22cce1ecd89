#include <gmock/gmock.h>

#include "host/Plugin.h"
#include "tests/plugin/FrameTest.h"

extern "C" int pluginMainEntry(std::uintptr_t hostContext, const PluginDescriptor** descriptorOut);

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PluginEntry : public FrameTest {};

TEST_F(PluginEntry, HandsOutADescriptor) {
    const PluginDescriptor* descriptor = nullptr;
    EXPECT_EQ(pluginMainEntry(0, &descriptor), 0);
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(descriptor->interfaceVersion, 1U);
    EXPECT_EQ(descriptor->getTimerPeriod(), 14400);
}

TEST_F(PluginEntry, ReplacesWhatStoodInTheOutParameter) {
    const PluginDescriptor other{};
    const PluginDescriptor* descriptor = &other;
    EXPECT_EQ(pluginMainEntry(0, &descriptor), 0);
    EXPECT_NE(descriptor, nullptr);
    EXPECT_NE(descriptor, &other);
}

TEST_F(PluginEntry, HandsOutTheSameDescriptorWhateverTheContextAndTheCall) {
    const PluginDescriptor* first = nullptr;
    const PluginDescriptor* second = nullptr;
    EXPECT_EQ(pluginMainEntry(1, &first), 0);
    EXPECT_EQ(pluginMainEntry(~std::uintptr_t{0}, &second), 0);
    EXPECT_EQ(first, second);
}

TEST_F(PluginEntry, TracesItsNameAndDoesNothingElse) {
    const PluginDescriptor* descriptor = nullptr;
    pluginMainEntry(0, &descriptor);
    EXPECT_THAT(frameLines(), ElementsAre(LogLine(Container::Logger::Trace, "PluginMainEntry")));
    EXPECT_EQ(log.records().size(), 1U);
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
    EXPECT_FALSE(OpenPlugin::epgDBConnection);
}

TEST_F(PluginEntry, IsSilentWithoutTracing) {
    epgset::LogControl::setLevel(Container::Logger::Debug);
    const PluginDescriptor* descriptor = nullptr;
    pluginMainEntry(0, &descriptor);
    EXPECT_THAT(log.records(), IsEmpty());
}

}  // namespace
}  // namespace epgtest
