#include "set/log/RateLimit.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace epgset {
namespace {

const RateLimit::Time start{1h};

TEST(RateLimit, LetsABurstPassAndThenHoldsBack) {
    RateLimit limit(3, 1);
    for (int line = 0; line < 3; ++line)
        EXPECT_TRUE(limit.admit(start));
    EXPECT_FALSE(limit.admit(start));
    EXPECT_FALSE(limit.admit(start + 999ms));
}

TEST(RateLimit, LetsSoManyASecondPassAfterTheBurst) {
    RateLimit limit(3, 2);
    for (int line = 0; line < 3; ++line)
        limit.admit(start);
    EXPECT_TRUE(limit.admit(start + 1s));
    EXPECT_TRUE(limit.admit(start + 1s));
    EXPECT_FALSE(limit.admit(start + 1s));
}

TEST(RateLimit, NeverSavesUpMoreThanABurst) {
    RateLimit limit(2, 1);
    limit.admit(start);
    EXPECT_TRUE(limit.admit(start + 1h));
    EXPECT_TRUE(limit.admit(start + 1h));
    EXPECT_FALSE(limit.admit(start + 1h));
}

TEST(RateLimit, CountsWhatItHeldBackOnce) {
    RateLimit limit(1, 1);
    for (int line = 0; line < 5; ++line)
        limit.admit(start);
    EXPECT_EQ(limit.takeDropped(), 4u);
    EXPECT_EQ(limit.takeDropped(), 0u);
}

}  // namespace
}  // namespace epgset
