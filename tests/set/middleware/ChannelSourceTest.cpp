#include "host/ChannelSource.h"

#include <gtest/gtest.h>

#include <memory>

#include "set/guide/Guide.h"

namespace epgset {
namespace {

struct Delete {
    void operator()(ws_epg_channel_source* source) const { t_delete_channel_source(source); }
};
using Source = std::unique_ptr<ws_epg_channel_source, Delete>;

Source sourceOf(const Channel& channel) {
    TCChannel object(std::make_shared<const Channel>(channel));
    return Source(t_create_channel_source(&object));
}

Channel satelliteChannel() {
    Channel channel;
    channel.tvMode = 3;
    channel.major = 7;
    channel.minor = 2;
    channel.name = "S\xC3\xA9ries \xF0\x9F\x98\x80";
    channel.serviceType = 2;
    channel.scrambled = true;
    return channel;
}

TEST(ChannelSource, HoldsTheTextsOfAChannel) {
    const Source source = sourceOf(satelliteChannel());
    ASSERT_TRUE(source);
    EXPECT_STREQ(source->channel_id, "cid-003-7-2");
    EXPECT_STREQ(source->channel_num, "7-2");
    EXPECT_STREQ(source->channel_name, "S\xC3\xA9ries \xF0\x9F\x98\x80");
    EXPECT_STREQ(source->service_type, "RADIO");
    EXPECT_STREQ(source->antenna, "SATELLITE");
    EXPECT_STREQ(source->scrambled, "true");
}

TEST(ChannelSource, LeavesAMinorNumberBelowOneOut) {
    Channel channel = satelliteChannel();
    for (const auto minor : {std::int16_t{0}, std::int16_t{-1}}) {
        channel.minor = minor;
        channel.scrambled = false;
        const Source source = sourceOf(channel);
        EXPECT_STREQ(source->channel_id, "cid-003-7");
        EXPECT_STREQ(source->channel_num, "7");
        EXPECT_STREQ(source->scrambled, "false");
    }
}

TEST(ChannelSource, HasNoTextForWhatIsNotKnown) {
    Channel channel = satelliteChannel();
    channel.name.clear();
    channel.tvMode = 14;
    channel.serviceType = 8;
    const Source source = sourceOf(channel);
    EXPECT_STREQ(source->channel_id, "cid-014-7-2");
    EXPECT_EQ(source->channel_name, nullptr);
    EXPECT_EQ(source->antenna, nullptr);
    EXPECT_STREQ(source->service_type, "UNKNOWN");
}

TEST(ChannelSource, IsNullForNoChannel) {
    EXPECT_EQ(t_create_channel_source(nullptr), nullptr);
    t_delete_channel_source(nullptr);
}

}  // namespace
}  // namespace epgset
