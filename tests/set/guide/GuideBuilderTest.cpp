#include "set/guide/GuideBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace epgset {
namespace {

using testing::ElementsAre;

Channel channel(const std::string& id, int tvMode, int major, int minor = 0) {
    Channel made;
    made.id = id;
    made.tvMode = tvMode;
    made.major = static_cast<std::int16_t>(major);
    made.minor = static_cast<std::int16_t>(minor);
    return made;
}

GuideBuilder::ProgrammeDraft draft(std::uint32_t start, std::string_view title) {
    GuideBuilder::ProgrammeDraft made;
    made.start = start;
    made.stop = start + 60;
    made.title = title;
    return made;
}

std::vector<std::string> idsOf(std::span<const Channel> channels) {
    std::vector<std::string> ids;
    for (const Channel& one : channels)
        ids.push_back(one.id);
    return ids;
}

TEST(GuideBuilder, OrdersChannelsByModeThenNumber) {
    GuideBuilder builder;
    for (const auto& [id, mode, major, minor] :
         std::vector<std::tuple<std::string, int, int, int>>{{"cs", 23, 1, 0},
                                                             {"bs", 22, 1, 0},
                                                             {"air 7-2", 0, 7, 2},
                                                             {"air 10", 0, 10, 0},
                                                             {"air 7", 0, 7, 0},
                                                             {"cable", 1, 1, 0},
                                                             {"none", 14, 1, 0}}) {
        builder.addChannel(channel(id, mode, major, minor));
    }
    const auto guide = builder.finish();
    EXPECT_THAT(idsOf(guide->channels()),
                ElementsAre("air 7", "air 7-2", "air 10", "cable", "bs", "cs", "none"));
    EXPECT_THAT(idsOf(guide->channelsOf(0)), ElementsAre("air 7", "air 7-2", "air 10"));
    EXPECT_THAT(idsOf(guide->channelsOf(23)), ElementsAre("cs"));
    EXPECT_THAT(idsOf(guide->channelsOf(14)), ElementsAre("none"));
    EXPECT_TRUE(guide->channelsOf(2).empty());
    EXPECT_TRUE(guide->channelsOf(-1).empty());
}

TEST(GuideBuilder, FindsAChannelByItsExactNumber) {
    GuideBuilder builder;
    builder.addChannel(channel("7-2", 0, 7, 2));
    builder.addChannel(channel("8", 0, 8));
    builder.addChannel(channel("cable 7", 1, 7));
    const auto guide = builder.finish();
    ASSERT_NE(guide->find(0, 7, 2), nullptr);
    EXPECT_EQ(guide->find(0, 7, 2)->id, "7-2");
    EXPECT_EQ(guide->find(1, 7, 0)->id, "cable 7");
    EXPECT_EQ(guide->find(0, 7, 0), nullptr);
    EXPECT_EQ(guide->find(0, 9, 0), nullptr);
    EXPECT_EQ(guide->find(2, 7, 0), nullptr);
    EXPECT_EQ(Guide().find(0, 7, 0), nullptr);
}

TEST(GuideBuilder, OrdersProgrammesByChannelThenStart) {
    GuideBuilder builder;
    const auto second = builder.addChannel(channel("b", 0, 2));
    const auto first = builder.addChannel(channel("a", 0, 1));
    builder.addChannel(channel("c", 0, 3));
    builder.addProgramme(second, draft(100, "b100"));
    builder.addProgramme(first, draft(300, "a300"));
    builder.addProgramme(first, draft(200, "a200"));
    const auto guide = builder.finish();
    std::vector<std::string> titles;
    for (const Programme& programme : guide->programmes()) {
        titles.emplace_back(programme.title);
        EXPECT_EQ(guide->channels()[programme.channel].id[0], programme.title[0]);
    }
    EXPECT_THAT(titles, ElementsAre("a200", "a300", "b100"));
    EXPECT_EQ(guide->programmesOf(guide->channels()[0]).size(), 2U);
    EXPECT_EQ(guide->programmesOf(guide->channels()[1])[0].title, "b100");
    EXPECT_TRUE(guide->programmesOf(guide->channels()[2]).empty());
}

TEST(GuideBuilder, KeepsTextsBeyondTheirSourceAndEachOnce) {
    GuideBuilder builder;
    const auto one = builder.addChannel(channel("a", 0, 1));
    const std::string longText(1000000, 'x');
    {
        const std::string title = "A title";
        auto programme = draft(1, title);
        programme.series = title;
        programme.synopsis = longText;
        builder.addProgramme(one, programme);
        builder.addProgramme(one, draft(2, title));
    }
    const auto guide = builder.finish();
    const auto programmes = guide->programmes();
    EXPECT_EQ(programmes[0].title, "A title");
    EXPECT_EQ(programmes[0].series.data(), programmes[0].title.data());
    EXPECT_EQ(programmes[1].title.data(), programmes[0].title.data());
    EXPECT_EQ(programmes[0].synopsis.text(), longText);
    EXPECT_TRUE(programmes[1].synopsis.empty());
}

TEST(GuideBuilder, IsEmptyAfterwards) {
    GuideBuilder builder;
    builder.addProgramme(builder.addChannel(channel("a", 0, 1)), draft(1, "t"));
    builder.setProgrammesDropped(3);
    EXPECT_EQ(builder.finish()->programmesDropped(), 3U);
    const auto next = builder.finish();
    EXPECT_TRUE(next->channels().empty());
    EXPECT_TRUE(next->programmes().empty());
    EXPECT_EQ(next->programmesDropped(), 0U);
}

TEST(GuideBuilder, RefusesAHandleThatItDidNotGive) {
    GuideBuilder builder;
    EXPECT_THROW(builder.addProgramme(0, draft(1, "t")), std::out_of_range);
}

}  // namespace
}  // namespace epgset
