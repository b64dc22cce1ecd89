#include "set/guide/GuideBounds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "set/guide/TableEstimate.h"

namespace epgset {
namespace {

using testing::ElementsAre;

constexpr std::int64_t kNow = 1787443200;
constexpr std::int64_t kDaySeconds = 24 * 3600;

Channel channel(bool digital = true) {
    Channel made;
    made.name = "A";
    made.major = 1;
    made.digital = digital;
    return made;
}

ScheduledProgramme at(std::int64_t start, std::string_view title = "title") {
    return {0, static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(start + 1800), false, title, {}};
}

std::vector<std::int64_t> startsOf(const std::vector<ScheduledProgramme>& programmes) {
    std::vector<std::int64_t> starts;
    for (const ScheduledProgramme& programme : programmes)
        starts.push_back(programme.start - kNow);
    return starts;
}

/// `count` programmes, one an hour, the first `ended` of them over at kNow.
std::vector<ScheduledProgramme> hourly(int count, int ended, std::string_view title = "title") {
    std::vector<ScheduledProgramme> programmes;
    for (int index = 0; index < count; ++index) {
        programmes.push_back(at(kNow + 3600 * std::int64_t{index - ended}, title));
    }
    return programmes;
}

TEST(GuideBounds, DropNothingThatFits) {
    auto programmes = hourly(10, 5);
    const auto bounded = applyBounds(programmes, {channel()}, {10, 100, kNow});
    EXPECT_EQ(bounded.dropped, 0U);
    EXPECT_EQ(bounded.fitsUntil, std::nullopt);
    EXPECT_EQ(programmes.size(), 10U);
}

TEST(GuideBounds, DropEndedProgrammesOldestFirst) {
    auto programmes = hourly(5, 3);
    EXPECT_EQ(applyBounds(programmes, {channel()}, {3, 100, kNow}).dropped, 2U);
    EXPECT_THAT(startsOf(programmes), ElementsAre(-3600, 0, 3600));
}

TEST(GuideBounds, ThenDropThoseThatStartLast) {
    auto programmes = hourly(5, 2);
    EXPECT_EQ(applyBounds(programmes, {channel()}, {2, 100, kNow}).dropped, 3U);
    EXPECT_THAT(startsOf(programmes), ElementsAre(0, 3600));
}

TEST(GuideBounds, CountAProgrammeAsEndedAtItsStop) {
    std::vector programmes{at(kNow - 1800), at(kNow - 1799), at(kNow)};
    applyBounds(programmes, {channel()}, {2, 100, kNow});
    EXPECT_THAT(startsOf(programmes), ElementsAre(-1799, 0));
}

TEST(GuideBounds, HoldTheTableByDroppingAsFewAsPossible) {
    const std::string title(1000, 'x');
    auto programmes = hourly(150, 10, title);
    constexpr std::size_t kPages = 33;
    const auto bounded = applyBounds(programmes, {channel()}, {1000, kPages, kNow});
    EXPECT_GT(bounded.dropped, 10U);
    EXPECT_EQ(programmes.size() + bounded.dropped, 150U);
    EXPECT_EQ(startsOf(programmes).front(), 0) << "all that ended go first";
    TableEstimate table;
    for (const auto& programme : programmes)
        table.addRow(programmeRowBytes(channel(), programme.title));
    EXPECT_LE(table.pages(), kPages);
    table.addRow(programmeRowBytes(channel(), title));
    EXPECT_GT(table.pages(), kPages) << "one more would have fitted";
}

TEST(GuideBounds, LeaveAloneWhatTheTableDoesNotHoldYet) {
    const std::string title(3000, 'x');
    std::vector<ScheduledProgramme> programmes = hourly(40, 0, title);
    for (int index = 0; index < 40; ++index)
        programmes.push_back(at(kNow + 20 * kDaySeconds + 3600 * index, title));
    const auto bounded = applyBounds(programmes, {channel()}, {1000, 60, kNow});
    EXPECT_EQ(bounded.dropped, 0U);
    ASSERT_TRUE(bounded.fitsUntil.has_value());
    EXPECT_GT(*bounded.fitsUntil, kNow + 12 * kDaySeconds);
    EXPECT_LT(*bounded.fitsUntil, kNow + 13 * kDaySeconds + 40 * 3600);

    // A guide that is bounded again at that time fits.
    const auto again = applyBounds(programmes, {channel()}, {1000, 60, *bounded.fitsUntil});
    EXPECT_GT(again.dropped, 0U);
}

TEST(GuideBounds, HoldForTenHoursAtLeastAfterTheTableWasFilledToItsBound) {
    const std::string title(3000, 'x');
    auto programmes = hourly(24 * 12, 0, title);
    const auto bounded = applyBounds(programmes, {channel()}, {1000, 100, kNow});
    EXPECT_GT(bounded.dropped, 0U);
    ASSERT_TRUE(bounded.fitsUntil.has_value());
    EXPECT_GE(*bounded.fitsUntil, kNow + 10 * 3600);
}

TEST(GuideBounds, CountTimesFrom2038OnAsInTheTable) {
    const std::string title(3000, 'x');
    std::vector<ScheduledProgramme> programmes;
    for (int index = 0; index < 40; ++index)
        programmes.push_back(at(2147483648 + 3600 * index, title));
    EXPECT_GT(applyBounds(programmes, {channel()}, {1000, 30, kNow}).dropped, 0U);
}

TEST(GuideBounds, DoNotCountAnalogueChannelsInTheTable) {
    auto programmes = hourly(100, 0, "title");
    EXPECT_EQ(applyBounds(programmes, {channel(false)}, {1000, 4, kNow}).dropped, 0U);
}

TEST(GuideBounds, OfZeroDropNothingAndTellWhatTheTableDoesNotHold) {
    auto programmes = hourly(100, 50, std::string(3000, 'x'));
    const auto exceeding = applyBounds(programmes, {channel()}, {0, 50, kNow});
    EXPECT_EQ(exceeding.dropped, 0U);
    EXPECT_TRUE(exceeding.exceedsTable);
    EXPECT_EQ(programmes.size(), 100U);
    EXPECT_FALSE(applyBounds(programmes, {channel()}, {0, 200, kNow}).exceedsTable);
}

TEST(GuideBounds, AlwaysHoldWhatEventIdsCanName) {
    std::vector<ScheduledProgramme> programmes;
    for (int index = 0; index < 65540; ++index)
        programmes.push_back(at(kNow + index));
    EXPECT_EQ(applyBounds(programmes, {channel()}, {0, 0, kNow}).dropped, 5U);
    EXPECT_EQ(startsOf(programmes).back(), 65534);
}

}  // namespace
}  // namespace epgset
