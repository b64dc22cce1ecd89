#include "host/TCChannel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "set/guide/Guide.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;

std::shared_ptr<Channel> detailedChannel() {
    auto channel = std::make_shared<Channel>();
    channel->name = "\xC3\x89t\xC3\xA9";
    channel->tvMode = 3;
    channel->major = 7;
    channel->minor = 2;
    channel->digital = true;
    channel->scrambled = true;
    channel->serviceType = 2;
    channel->ptc = 65000;
    channel->programNumber = 60000;
    return channel;
}

TEST(TCChannel, IsEmptyWhenNew) {
    const TCChannel channel;
    EXPECT_EQ(channel.TvMode(), -1);
    EXPECT_EQ(channel.Major(), 0);
    EXPECT_EQ(channel.Minor(), 0);
    EXPECT_EQ(channel.FlagDigital(), 0);
    EXPECT_EQ(channel.FlagScrambled(), 0);
    EXPECT_EQ(channel.ServiceType(), 0);
    EXPECT_EQ(channel.PTC(), 0);
    EXPECT_EQ(channel.ProgramNumber(), 0);
    EXPECT_EQ(channel.GetChannelNameLength(), 0);
    char buffer[4];
    EXPECT_EQ(channel.GetChannelName(buffer, sizeof buffer), 0);
    EXPECT_EQ(channel.Type(), -1);
}

TEST(TCChannel, AnswersWhatTheLineUpHolds) {
    const TCChannel channel(detailedChannel());
    EXPECT_EQ(channel.TvMode(), 3);
    EXPECT_EQ(channel.Major(), 7);
    EXPECT_EQ(channel.Minor(), 2);
    EXPECT_NE(channel.FlagDigital(), 0);
    EXPECT_NE(channel.FlagScrambled(), 0);
    EXPECT_EQ(channel.ServiceType(), 2);
    EXPECT_EQ(channel.PTC(), 65000);
    EXPECT_EQ(channel.ProgramNumber(), 60000);
}

TEST(TCChannel, AnswersNoForFlagsThatAreNotSet) {
    const auto channel = detailedChannel();
    channel->digital = false;
    channel->scrambled = false;
    EXPECT_EQ(TCChannel(channel).FlagDigital(), 0);
    EXPECT_EQ(TCChannel(channel).FlagScrambled(), 0);
}

TEST(TCChannel, HandsItsNameOutAsBigEndianUtf16) {
    const TCChannel channel(detailedChannel());
    ASSERT_EQ(channel.GetChannelNameLength(), 6);
    std::vector<unsigned char> name(8, 0xAA);
    EXPECT_EQ(channel.GetChannelName(name.data(), 8), 6);
    EXPECT_THAT(name, ElementsAre(0x00, 0xC9, 0x00, 0x74, 0x00, 0xE9, 0xAA, 0xAA));
}

TEST(TCChannel, CutsItsNameToTheBuffer) {
    const TCChannel channel(detailedChannel());
    std::vector<unsigned char> name(8, 0xAA);
    EXPECT_EQ(channel.GetChannelName(name.data(), 3), 2);
    EXPECT_EQ(name[2], 0xAA);
    EXPECT_EQ(channel.GetChannelName(name.data(), 0), 0);
    EXPECT_EQ(channel.GetChannelName(name.data(), -1), 0);
    EXPECT_EQ(channel.GetChannelName(nullptr, 8), 0);
}

TEST(TCChannel, OutlivesTheGuideItCameFrom) {
    auto owner = detailedChannel();
    const TCChannel channel{std::shared_ptr<const Channel>(owner)};
    const TCChannel copy = channel;
    owner.reset();
    EXPECT_EQ(copy.Major(), 7);
    EXPECT_EQ(copy.GetChannelNameLength(), 6);
}

TEST(TCChannel, IsATemplateOfTheTypeThatWasSetLast) {
    TCChannel pattern;
    pattern.MarkBit();
    pattern.SetHideGuide(0);
    pattern.SetHidden(0);
    pattern.SetType(7);
    EXPECT_EQ(pattern.Type(), 7);
    pattern.MarkBit();
    EXPECT_EQ(pattern.Type(), -1);
}

/// Ends the fault whatever happens in between.
struct ChannelFault {
    explicit ChannelFault(int after) { failChannelAllocationsAfter(after); }
    ~ChannelFault() { failChannelAllocationsAfter(-1); }
    ChannelFault(const ChannelFault&) = delete;
    ChannelFault& operator=(const ChannelFault&) = delete;
};

TEST(TCChannelAllocation, FailsEveryTimeAfterThoseThatAreLetThrough) {
    {
        const ChannelFault fault(2);
        const std::unique_ptr<TCChannel> first(new (std::nothrow) TCChannel);
        const auto second = std::make_unique<TCChannel>();
        EXPECT_NE(first, nullptr);
        EXPECT_EQ(std::unique_ptr<TCChannel>(new (std::nothrow) TCChannel), nullptr);
        EXPECT_EQ(std::unique_ptr<TCChannel>(new (std::nothrow) TCChannel), nullptr);
        EXPECT_THROW(std::make_unique<TCChannel>(), std::bad_alloc);
    }
    EXPECT_NE(std::unique_ptr<TCChannel>(new (std::nothrow) TCChannel), nullptr);
}

}  // namespace
}  // namespace epgset
