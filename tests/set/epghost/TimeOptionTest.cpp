#include "set/epghost/TimeOption.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

constexpr std::int64_t midnight = 1787443200;  // 2026-08-23T00:00:00Z

TEST(TimeOption, ReadsATimeInUtc) {
    EXPECT_EQ(midnight, parseTimeOption("2026-08-23T00:00:00Z"));
    EXPECT_EQ(midnight + 86399, parseTimeOption("2026-08-23T23:59:59Z"));
    EXPECT_EQ(midnight, parseTimeOption("2026-08-23T00:00:00"));
    EXPECT_EQ(midnight, parseTimeOption("2026-08-23T00:00Z"));
}

TEST(TimeOption, ReadsAnOffset) {
    EXPECT_EQ(midnight, parseTimeOption("2026-08-23T12:00:00+12:00"));
    EXPECT_EQ(midnight, parseTimeOption("2026-08-22T20:30:00-0330"));
    EXPECT_EQ(midnight, parseTimeOption("2026-08-23T02:00+02"));
}

TEST(TimeOption, ReadsTheEndsOfItsRange) {
    EXPECT_EQ(0, parseTimeOption("1970-01-01T00:00:00Z"));
    EXPECT_EQ(4294967295, parseTimeOption("2106-02-07T06:28:15Z"));
    EXPECT_EQ(std::nullopt, parseTimeOption("2106-02-07T06:28:16Z"));
    EXPECT_EQ(std::nullopt, parseTimeOption("1970-01-01T00:00:00+00:01"));
}

TEST(TimeOption, ReadsALeapDay) {
    EXPECT_TRUE(parseTimeOption("2028-02-29T00:00:00Z"));
    EXPECT_FALSE(parseTimeOption("2026-02-29T00:00:00Z"));
}

TEST(TimeOption, IsNothingForOtherTexts) {
    for (const char* text : {"",
                             "now",
                             "2026",
                             "2026-08-23",
                             "2026-08-23T",
                             "2026-08-23T12",
                             "2026-08-23T12:",
                             "2026-8-23T12:00Z",
                             "2026-13-01T00:00:00Z",
                             "2026-00-01T00:00:00Z",
                             "2026-08-32T00:00:00Z",
                             "2026-08-00T00:00:00Z",
                             "2026-08-23T24:00:00Z",
                             "2026-08-23T23:60:00Z",
                             "2026-08-23T23:59:60Z",
                             "2026-08-23 00:00:00Z",
                             "2026-08-23T00:00:00z",
                             "2026-08-23T00:00:00ZZ",
                             "2026-08-23T00:00:00Z ",
                             " 2026-08-23T00:00:00Z",
                             "2026-08-23T00:00:00+",
                             "2026-08-23T00:00:00+2",
                             "2026-08-23T00:00:00+24:00",
                             "2026-08-23T00:00:00+02:60",
                             "2026-08-23T00:00:00+02:",
                             "2026-08-23T00:00:00 +02:00",
                             "-026-08-23T00:00:00Z",
                             "2026-08-23T-1:00:00Z",
                             "1787443200"}) {
        EXPECT_EQ(std::nullopt, parseTimeOption(text)) << text;
    }
}

}  // namespace
}  // namespace epgset
