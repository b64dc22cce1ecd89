#include "set/guide/ChannelNumbers.h"

#include <gtest/gtest.h>

#include <string>

namespace epgset {
namespace {

TEST(ChannelNumber, ReadsMajorAndMinor) {
    EXPECT_EQ(readChannelNumber("7"), (ChannelNumber{7, 0}));
    EXPECT_EQ(readChannelNumber("7-2"), (ChannelNumber{7, 2}));
    EXPECT_EQ(readChannelNumber("7.2"), (ChannelNumber{7, 2}));
    EXPECT_EQ(readChannelNumber("007"), (ChannelNumber{7, 0}));
    EXPECT_EQ(readChannelNumber("32767-32767"), (ChannelNumber{32767, 32767}));
    EXPECT_EQ(readChannelNumber("7-0"), (ChannelNumber{7, 0}));
}

TEST(ChannelNumber, RefusesWhatNoChannelCanHave) {
    for (const char* text : {"0", "32768", "99999999999999999999", "0-1", "7-32768"}) {
        EXPECT_EQ(readChannelNumber(text), std::nullopt) << text;
        EXPECT_TRUE(hasNumberForm(text)) << text;
    }
}

TEST(ChannelNumber, RefusesOtherForms) {
    for (const char* text :
         {"", "-7", "+7", "7-", "-", "7.2.1", "7 2", "7a", "BBC 1", " 7", "7--2", "7-+2"}) {
        EXPECT_EQ(readChannelNumber(text), std::nullopt) << text;
        EXPECT_FALSE(hasNumberForm(text)) << text;
    }
}

TEST(ChannelName, IsTheFirstThatIsNoNumber) {
    EXPECT_EQ(channelName({"7", "7-1", "One", "Eins"}, "id"), "One");
    EXPECT_EQ(channelName({"", "One"}, "id"), "One");
    EXPECT_EQ(channelName({"7"}, "id"), "id");
    EXPECT_EQ(channelName({}, "id"), "id");
}

TEST(ChannelName, HasTheWhiteSpaceOfAnIdCollapsed) {
    EXPECT_EQ(channelName({}, " news\n\t24 "), "news 24");
}

TEST(NumberPlan, GivesANumberOncePerAntenna) {
    NumberPlan plan;
    EXPECT_TRUE(plan.take(0, {7, 0}));
    EXPECT_FALSE(plan.take(0, {7, 0}));
    EXPECT_TRUE(plan.take(0, {7, 1}));
    EXPECT_TRUE(plan.take(1, {7, 0}));
}

TEST(NumberPlan, FillsTheLowestGaps) {
    NumberPlan plan;
    plan.take(0, {1, 0});
    plan.take(0, {3, 0});
    EXPECT_EQ(plan.takeLowestFree(0), (ChannelNumber{2, 0}));
    EXPECT_EQ(plan.takeLowestFree(0), (ChannelNumber{4, 0}));
    EXPECT_EQ(plan.takeLowestFree(1), (ChannelNumber{1, 0}));
}

TEST(NumberPlan, EndsWithTheHighestNumber) {
    NumberPlan plan;
    for (int number = 1; number <= 32767; ++number)
        ASSERT_TRUE(plan.takeLowestFree(0)) << number;
    EXPECT_EQ(plan.takeLowestFree(0), std::nullopt);
}

}  // namespace
}  // namespace epgset
