#include "set/guide/TextLimits.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

TEST(TextLimits, LeaveATextThatFits) {
    EXPECT_EQ(cutToLimit("", 0), "");
    EXPECT_EQ(cutToLimit("abc", 3), "abc");
    EXPECT_EQ(cutToLimit("ab ", 3), "ab ");
}

TEST(TextLimits, CutBetweenTwoCharacters) {
    EXPECT_EQ(cutToLimit("abcd", 3), "abc");
    EXPECT_EQ(cutToLimit("aé", 2), "a");
    EXPECT_EQ(cutToLimit("éa", 2), "é");
    EXPECT_EQ(cutToLimit("€€", 5), "€");
    EXPECT_EQ(cutToLimit("😀😀", 7), "😀");
    EXPECT_EQ(cutToLimit("😀", 3), "");
}

TEST(TextLimits, LeaveNoBlankAtTheCut) {
    EXPECT_EQ(cutToLimit("ab cd", 3), "ab");
    EXPECT_EQ(cutToLimit("   d", 3), "");
}

TEST(TextLimits, EndWithBytesThatAreNoText) {
    EXPECT_EQ(cutToLimit("\x80\x80\x80\x80", 3), "");
}

}  // namespace
}  // namespace epgset
