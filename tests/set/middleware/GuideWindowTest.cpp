#include "set/middleware/GuideWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "set/events/EventRing.h"
#include "set/log/LogCapture.h"
#include "tests/set/middleware/GuideInUse.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::shared_ptr<const Guide> guideOf(const std::vector<Channel>& channels) {
    GuideBuilder builder;
    for (const Channel& channel : channels)
        builder.addChannel(channel);
    return builder.finish();
}

class GuideWindowTest : public ::testing::Test {
protected:
    /// Mode, major and minor number of what is tuned to; nothing when that is nothing.
    std::vector<int> tuned() const {
        const auto channel = window_.channel();
        return channel ? std::vector<int>{channel->tvMode, channel->major, channel->minor}
                       : std::vector<int>{};
    }

    GuideInUse guide_{guideOf({makeChannel(3, 7, 2), makeChannel(3, 8, 0), makeChannel(0, 7, 2),
                               makeChannel(0, 7, 5), makeChannel(22, 9, 1)})};
    GuideWindow window_;
    LogCapture log_{Container::Logger::Warning};
};

TEST_F(GuideWindowTest, IsTunedToNothingAtFirst) {
    EXPECT_THAT(tuned(), IsEmpty());
    EXPECT_EQ(g_pAppWindow, &guideWindow());
}

TEST_F(GuideWindowTest, ChangesToTheFirstAntennaThatHasTheNumber) {
    window_.ChangeChannel(7, 2);
    EXPECT_THAT(tuned(), ElementsAre(0, 7, 2));
    window_.ChangeChannel(9, 1);
    EXPECT_THAT(tuned(), ElementsAre(22, 9, 1));
}

TEST_F(GuideWindowTest, PrefersTheAntennaThatIsTunedToNow) {
    window_.ChangeChannel(8, 0);
    window_.ChangeChannel(7, 2);
    EXPECT_THAT(tuned(), ElementsAre(3, 7, 2));
}

TEST_F(GuideWindowTest, TakesMinorZeroForAnyMinorNumber) {
    window_.ChangeChannel(9, 0);
    EXPECT_THAT(tuned(), ElementsAre(22, 9, 1));
    window_.ChangeChannel(7, 0);
    EXPECT_THAT(tuned(), ElementsAre(0, 7, 2));
}

TEST_F(GuideWindowTest, TakesMinorZeroAsItStandsWhereAChannelHasNone) {
    const GuideInUse other(guideOf({makeChannel(0, 7, 2), makeChannel(0, 7, 0)}));
    window_.ChangeChannel(7, 0);
    EXPECT_THAT(tuned(), ElementsAre(0, 7, 0));
}

TEST_F(GuideWindowTest, StaysWhereItIsWhenNoAntennaHasTheNumber) {
    window_.ChangeChannel(8, 0);
    for (const auto& [major, minor] :
         std::vector<std::pair<int, int>>{{7, 9}, {99, 0}, {0, 0}, {-1, 70'000}}) {
        window_.ChangeChannel(major, minor);
    }
    EXPECT_THAT(tuned(), ElementsAre(3, 8, 0));
    EXPECT_THAT(log_.messagesOf("set/middleware"),
                ElementsAre(HasSubstr("7-9"), HasSubstr("99-0"), HasSubstr("0-0"), HasSubstr("-1-70000")));
}

TEST_F(GuideWindowTest, TunesToExactlyOneChannel) {
    EXPECT_TRUE(window_.tune(3, 7, 2));
    EXPECT_THAT(tuned(), ElementsAre(3, 7, 2));
    EXPECT_FALSE(window_.tune(3, 7, 5));
    EXPECT_FALSE(window_.tune(0, 7, 0));
    EXPECT_THAT(tuned(), ElementsAre(3, 7, 2));
}

TEST_F(GuideWindowTest, StaysTunedAcrossAReload) {
    window_.ChangeChannel(8, 0);
    useGuide(guideOf({makeChannel(0, 1, 0), makeChannel(3, 8, 0, "renamed")}));
    EXPECT_EQ(window_.channel()->name, "renamed");
    useGuide(guideOf({makeChannel(0, 1, 0)}));
    EXPECT_THAT(tuned(), IsEmpty());
    useGuide(guideOf({makeChannel(3, 8, 0)}));
    EXPECT_THAT(tuned(), ElementsAre(3, 8, 0));
}

TEST_F(GuideWindowTest, TellsOfEachChangeOfTheChannel) {
    const std::uint64_t before = events().last();
    window_.ChangeChannel(7, 2);
    window_.ChangeChannel(7, 2);
    window_.ChangeChannel(99, 0);
    EXPECT_TRUE(window_.tune(3, 8, 0));
    const auto since = events().after(before);
    ASSERT_EQ(since->size(), 2U);
    EXPECT_EQ(since->at(0).name, event::channelChanged);
    EXPECT_EQ(since->at(0).path, "/ws/epg2/channels/cid-000-7-2");
    EXPECT_EQ(since->at(1).path, "/ws/epg2/channels/cid-003-8");
}

}  // namespace
}  // namespace epgset
