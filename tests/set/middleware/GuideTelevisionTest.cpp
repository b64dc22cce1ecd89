#include "set/middleware/GuideTelevision.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "set/middleware/ReceptionModes.h"
#include "tests/set/middleware/GuideInUse.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int air = 0;
constexpr int satellite = 3;
constexpr int satelliteSource = 7;
constexpr long long whole = 4294967295LL;

TCChannel patternOf(int sourceType) {
    TCChannel pattern;
    pattern.MarkBit();
    pattern.SetHideGuide(0);
    pattern.SetHidden(0);
    pattern.SetType(sourceType);
    return pattern;
}

/// The keys of a source type as "type major-minor".
std::vector<std::string> keysOf(int sourceType) {
    TCObjectSortedList list;
    int count = -1;
    const TCChannel pattern = patternOf(sourceType);
    const int answer = g_pAppTV->GetChannelKeyList(&list, &pattern, &count);
    EXPECT_EQ(count, list.Size());
    EXPECT_EQ(answer, count > 0 ? 1 : 0);
    std::vector<std::string> keys;
    for (bool more = list.Seek(TCObjectSortedList::First, 0); more;
         more = list.Seek(TCObjectSortedList::Current, 1)) {
        const TCChannelKey& key = *list.Data();
        keys.push_back(std::to_string(key.SourceType()) + " " + std::to_string(key.Major()) + "-" +
                       std::to_string(key.Minor()));
    }
    return keys;
}

TCChannel channelOf(int sourceType, short major, short minor) {
    TCChannel channel;
    const TCChannelKey key(sourceType, major, minor);
    EXPECT_NE(g_pAppTV->ExistChannel(&key, &channel, 0), 0);
    return channel;
}

/// The starts of the channel's programmes within a span of time.
std::vector<unsigned> startsOf(const TCChannel& channel, long long start, long long duration) {
    CCSortedList list;
    list.Create();
    const int answer = g_pAppTV->GetProgramList(&list, &channel, start, duration);
    EXPECT_EQ(answer, list.Size() > 0 ? 1 : 0);
    std::vector<unsigned> starts;
    for (bool more = list.Seek(CCSortedList::First, 0); more; more = list.Seek(CCSortedList::Current, 1)) {
        starts.push_back(list.Data()->StartTime());
    }
    return starts;
}

/// One channel, AIR 1, with programmes of an hour each from 0, 3600 and 7200 on.
std::shared_ptr<const Guide> hourlyGuide() {
    GuideBuilder builder;
    const auto channel = builder.addChannel(makeChannel(air, 1, 0, "One"));
    for (const unsigned start : {0U, 3600U, 7200U})
        addProgramme(builder, channel, start, start + 3600);
    return builder.finish();
}

TEST(GuideTelevision, StandsBehindTheTelevisionFromTheStart) {
    ASSERT_NE(g_pAppTV, nullptr);
    EXPECT_NE(currentGuide(), nullptr);
    EXPECT_THAT(keysOf(airSource), IsEmpty());
}

TEST(GuideTelevision, ListsTheKeysOfASourceTypeAscending) {
    GuideBuilder builder;
    builder.addChannel(makeChannel(air, 7, 2));
    builder.addChannel(makeChannel(satellite, 1, 0));
    builder.addChannel(makeChannel(air, 7, 1));
    builder.addChannel(makeChannel(air, 11, 0));
    builder.addChannel(makeChannel(air, 3, 0));
    const GuideInUse use(builder.finish());
    EXPECT_THAT(keysOf(airSource), ElementsAre("2 3-0", "2 7-1", "2 7-2", "2 11-0"));
    EXPECT_THAT(keysOf(satelliteSource), ElementsAre("7 1-0"));
}

TEST(GuideTelevision, ListsEachReceptionModeByItself) {
    GuideBuilder builder;
    std::int16_t major = 1;
    for (const ReceptionMode& mode : receptionModes()) {
        builder.addChannel(makeChannel(mode.tvMode, major++, 0));
    }
    const GuideInUse use(builder.finish());
    major = 1;
    for (const ReceptionMode& mode : receptionModes()) {
        EXPECT_THAT(keysOf(mode.sourceType),
                    ElementsAre(std::to_string(mode.sourceType) + " " + std::to_string(major++) + "-0"));
    }
}

TEST(GuideTelevision, ListsAnalogueChannelsLikeAnyOther) {
    GuideBuilder builder;
    Channel analogue = makeChannel(air, 5, 0);
    analogue.digital = false;
    builder.addChannel(analogue);
    builder.addChannel(makeChannel(air, 4, 0));
    const GuideInUse use(builder.finish());
    EXPECT_THAT(keysOf(airSource), ElementsAre("2 4-0", "2 5-0"));
    EXPECT_EQ(channelOf(airSource, 5, 0).FlagDigital(), 0);
}

TEST(GuideTelevision, ListsNoKeysWithoutAKnownType) {
    const GuideInUse use(hourlyGuide());
    for (const int sourceType : {-1, 0, 3, 99})
        EXPECT_THAT(keysOf(sourceType), IsEmpty());
    TCObjectSortedList list;
    int count = -1;
    const TCChannel pattern;
    EXPECT_EQ(g_pAppTV->GetChannelKeyList(&list, &pattern, &count), 0);
    EXPECT_EQ(count, 0);
}

TEST(GuideTelevision, RefillsAListThatWasUsed) {
    const GuideInUse use(hourlyGuide());
    TCObjectSortedList list;
    int count = -1;
    const TCChannel pattern = patternOf(airSource);
    ASSERT_EQ(g_pAppTV->GetChannelKeyList(&list, &pattern, &count), 1);
    const TCChannel other = patternOf(satelliteSource);
    EXPECT_EQ(g_pAppTV->GetChannelKeyList(&list, &other, &count), 0);
    EXPECT_EQ(list.Size(), 0);
}

TEST(GuideTelevision, FillsTheChannelThatAKeyNames) {
    GuideBuilder builder;
    builder.addChannel(makeChannel(air, 7, 1, "first"));
    builder.addChannel(makeChannel(air, 7, 2, "second"));
    builder.addChannel(makeChannel(satellite, 7, 1, "third"));
    const GuideInUse use(builder.finish());
    const TCChannel channel = channelOf(satelliteSource, 7, 1);
    EXPECT_EQ(channel.TvMode(), satellite);
    EXPECT_EQ(channel.Major(), 7);
    EXPECT_EQ(channel.Minor(), 1);
    EXPECT_EQ(channel.GetChannelNameLength(), 10);
}

TEST(GuideTelevision, LeavesTheChannelAloneThatTheLineUpDoesNotHold) {
    const GuideInUse use(hourlyGuide());
    TCChannel channel = channelOf(airSource, 1, 0);
    for (const TCChannelKey& key :
         {TCChannelKey(airSource, 1, 1), TCChannelKey(airSource, 2, 0), TCChannelKey(satelliteSource, 1, 0),
          TCChannelKey(99, 1, 0), TCChannelKey()}) {
        EXPECT_EQ(g_pAppTV->ExistChannel(&key, &channel, 0), 0);
    }
    EXPECT_EQ(channel.Major(), 1);
}

TEST(GuideTelevision, FindsAChannelWhereverItsKeySaysThatItStood) {
    GuideBuilder builder;
    builder.addChannel(makeChannel(air, 1, 0));
    builder.addChannel(makeChannel(air, 2, 0));
    builder.addChannel(makeChannel(satellite, 2, 0));
    const GuideInUse use(builder.finish());
    for (const int place : {0, 1, 2, 3, 1000, -1}) {
        const TCChannelKey key(airSource, 2, 0, place);
        TCChannel channel;
        ASSERT_EQ(g_pAppTV->ExistChannel(&key, &channel, 0), 1) << place;
        EXPECT_EQ(channel.TvMode(), air) << place;
        EXPECT_EQ(channel.Major(), 2) << place;
        const TCChannelKey gone(airSource, 3, 0, place);
        EXPECT_EQ(g_pAppTV->ExistChannel(&gone, &channel, 0), 0) << place;
    }
}

TEST(GuideTelevision, ListsAllProgrammesOfAChannel) {
    const GuideInUse use(hourlyGuide());
    EXPECT_THAT(startsOf(channelOf(airSource, 1, 0), 0, whole), ElementsAre(0, 3600, 7200));
}

TEST(GuideTelevision, ListsTheProgrammesOfThatChannelOnly) {
    GuideBuilder builder;
    const auto first = builder.addChannel(makeChannel(air, 1, 0));
    const auto second = builder.addChannel(makeChannel(air, 2, 0));
    addProgramme(builder, second, 500, 600);
    addProgramme(builder, first, 100, 200);
    addProgramme(builder, second, 300, 400);
    const GuideInUse use(builder.finish());
    EXPECT_THAT(startsOf(channelOf(airSource, 1, 0), 0, whole), ElementsAre(100));
    EXPECT_THAT(startsOf(channelOf(airSource, 2, 0), 0, whole), ElementsAre(300, 500));
}

TEST(GuideTelevision, ListsProgrammesThatAreOnWithinTheSpan) {
    const GuideInUse use(hourlyGuide());
    const TCChannel channel = channelOf(airSource, 1, 0);
    EXPECT_THAT(startsOf(channel, 3000, 1000), ElementsAre(0, 3600));
    EXPECT_THAT(startsOf(channel, 4000, 10), ElementsAre(3600));
}

TEST(GuideTelevision, TakesTheSpanAndTheProgrammesAsHalfOpen) {
    const GuideInUse use(hourlyGuide());
    const TCChannel channel = channelOf(airSource, 1, 0);
    EXPECT_THAT(startsOf(channel, 3600, 3600), ElementsAre(3600));
    EXPECT_THAT(startsOf(channel, 3599, 3602), ElementsAre(0, 3600, 7200));
    EXPECT_THAT(startsOf(channel, 10800, 3600), IsEmpty());
    EXPECT_THAT(startsOf(channel, 10799, 1), ElementsAre(7200));
}

TEST(GuideTelevision, ListsNothingForAnEmptySpan) {
    const GuideInUse use(hourlyGuide());
    const TCChannel channel = channelOf(airSource, 1, 0);
    EXPECT_THAT(startsOf(channel, 4000, -1000), IsEmpty());
    EXPECT_THAT(startsOf(channel, 0, 0), IsEmpty());
}

TEST(GuideTelevision, ReckonsSpansIn64Bits) {
    const GuideInUse use(hourlyGuide());
    const TCChannel channel = channelOf(airSource, 1, 0);
    constexpr long long most = std::numeric_limits<long long>::max();
    constexpr long long least = std::numeric_limits<long long>::min();
    EXPECT_THAT(startsOf(channel, 4294967295LL + 3600, 3600), IsEmpty());
    EXPECT_THAT(startsOf(channel, 7200, most), ElementsAre(7200));
    EXPECT_THAT(startsOf(channel, most, most), IsEmpty());
    EXPECT_THAT(startsOf(channel, 0, most), ElementsAre(0, 3600, 7200));
    EXPECT_THAT(startsOf(channel, least, 5), IsEmpty());
    EXPECT_THAT(startsOf(channel, -whole - 5, whole), IsEmpty());
    EXPECT_THAT(startsOf(channel, least, least), IsEmpty());
    EXPECT_THAT(startsOf(channel, -100, 200), ElementsAre(0));
}

TEST(GuideTelevision, ReachesTheEndOf32BitTime) {
    GuideBuilder builder;
    const auto added = builder.addChannel(makeChannel(air, 1, 0));
    addProgramme(builder, added, 4294967290U, 4294967295U);
    const GuideInUse use(builder.finish());
    const TCChannel channel = channelOf(airSource, 1, 0);
    EXPECT_THAT(startsOf(channel, 4294967294LL, 10), ElementsAre(4294967290U));
    EXPECT_THAT(startsOf(channel, 4294967295LL, 10), IsEmpty());
    EXPECT_THAT(startsOf(channel, 0, whole), ElementsAre(4294967290U));
}

TEST(GuideTelevision, PicksFromProgrammesThatOverlap) {
    GuideBuilder builder;
    const auto added = builder.addChannel(makeChannel(air, 1, 0));
    addProgramme(builder, added, 0, 10000);
    addProgramme(builder, added, 100, 200);
    addProgramme(builder, added, 300, 5000);
    const GuideInUse use(builder.finish());
    EXPECT_THAT(startsOf(channelOf(airSource, 1, 0), 1000, 100), ElementsAre(0, 300));
}

TEST(GuideTelevision, AnswersNoForAChannelWithoutProgrammes) {
    GuideBuilder builder;
    builder.addChannel(makeChannel(air, 1, 0));
    const GuideInUse use(builder.finish());
    EXPECT_THAT(startsOf(channelOf(airSource, 1, 0), 0, whole), IsEmpty());
    EXPECT_THAT(startsOf(channelOf(airSource, 1, 0), 100, 100), IsEmpty());
}

TEST(GuideTelevision, AnswersNoForAnEmptyChannel) {
    const GuideInUse use(hourlyGuide());
    EXPECT_THAT(startsOf(TCChannel(), 0, whole), IsEmpty());
}

TEST(GuideTelevision, KeepsAListAsItWasFilled) {
    CCSortedList list;
    {
        const GuideInUse use(hourlyGuide());
        const TCChannel channel = channelOf(airSource, 1, 0);
        ASSERT_EQ(g_pAppTV->GetProgramList(&list, &channel, 0, whole), 1);
    }
    EXPECT_EQ(list.Size(), 3);
    ASSERT_TRUE(list.Seek(CCSortedList::Last, 0));
    EXPECT_EQ(list.Data()->StartTime(), 7200U);
    EXPECT_EQ(list.Data()->TitleLength(), 2 * 9);
}

TEST(GuideTelevision, AnswersFromTheGuideThatIsInUse) {
    GuideBuilder builder;
    const auto added = builder.addChannel(makeChannel(air, 1, 0));
    addProgramme(builder, added, 50, 60);
    const GuideInUse use(hourlyGuide());
    const TCChannel channel = channelOf(airSource, 1, 0);
    useGuide(builder.finish());
    EXPECT_THAT(startsOf(channel, 0, whole), ElementsAre(50));
    useGuide(nullptr);
    EXPECT_THAT(startsOf(channel, 0, whole), IsEmpty());
    EXPECT_NE(currentGuide(), nullptr);
}

}  // namespace
}  // namespace epgset
