#include "set/epghost/GuideNews.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

using namespace std::chrono_literals;

class GuideNewsTest : public ::testing::Test {
protected:
    std::uint64_t told() const { return ring_.last(); }

    EventRing ring_{10};
    GuideNews news_{ring_, 601s};
    const GuideNews::Clock::time_point now_ = GuideNews::Clock::now();
};

TEST_F(GuideNewsTest, TellsNothingWhileNothingIsLoaded) {
    news_.maintained(now_);
    EXPECT_EQ(told(), 0U);
}

TEST_F(GuideNewsTest, TellsALoadAfterTheNextMaintenance) {
    news_.reloaded(now_);
    EXPECT_EQ(told(), 0U);
    news_.maintained(now_);
    news_.maintained(now_ + 60s);
    EXPECT_EQ(told(), 1U);
    EXPECT_EQ(ring_.after(0)->front().name, "guide-reloaded");
    EXPECT_EQ(ring_.after(0)->front().path, "/ws/epg2/programs");
}

TEST_F(GuideNewsTest, TellsItAgainWhenSmallChangesAreSeen) {
    news_.reloaded(now_);
    news_.maintained(now_);
    news_.maintained(now_ + 600s);
    EXPECT_EQ(told(), 1U);
    news_.maintained(now_ + 601s);
    news_.maintained(now_ + 660s);
    EXPECT_EQ(told(), 2U);
}

}  // namespace
}  // namespace epgset
