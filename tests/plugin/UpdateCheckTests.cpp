#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/plugin/TableTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// A channel as the check sees it.
struct Station {
    int programmes;
    bool digital = true;
};

class UpdateCheck : public TableTest {
protected:
    /// Makes these channels of one antenna, numbered from 1, the whole guide.
    static void use(const std::vector<Station>& stations, int tvMode = Air) {
        TestGuide guide;
        add(guide, stations, tvMode);
        guide.use();
    }

    static void add(TestGuide& guide, const std::vector<Station>& stations, int tvMode) {
        std::int16_t major = 0;
        for (const auto& station : stations) {
            epgset::Channel channel;
            channel.tvMode = tvMode;
            channel.major = ++major;
            channel.digital = station.digital;
            guide.programmes(guide.add(channel), station.programmes);
        }
    }

    static bool check() { return OpenPlugin().checkDB_UpdateNeeded(); }

    /// Channels and programmes kept for a row of the antenna table.
    static std::pair<int, int> kept(int row) {
        return {OpenPlugin::channelCounts[row], OpenPlugin::programCounts[row]};
    }
};

TEST_F(UpdateCheck, FindsNothingNewInAnEmptyGuide) {
    EXPECT_FALSE(check());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(UpdateCheck, FindsAChangeOnce) {
    use({{3}, {4}});
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(2, 7));
    EXPECT_FALSE(check());
    EXPECT_EQ(kept(0), std::pair(2, 7));
}

TEST_F(UpdateCheck, FindsAChangeAfterTheFirstFill) {
    use({{3}});
    const auto instance = plugin();
    EXPECT_TRUE(instance->checkDB_UpdateNeeded());
    EXPECT_FALSE(instance->checkDB_UpdateNeeded());
}

TEST_F(UpdateCheck, TellsWhatChangedAndWhatDidNot) {
    use({{3}, {4}}, Satellite);
    check();
    EXPECT_THAT(logged(), ElementsAre(LogLine{Container::Logger::Debug,
                                              "Channel change at #3 mode : 0 -> 2, 0 --> 7\n"}));
    log.clear();
    use({{4}, {4}}, Satellite);
    check();
    EXPECT_THAT(logged(),
                ElementsAre(LogLine{Container::Logger::Trace, "Channel no change #3 mode : 2, 7 --> 8\n"}));
    log.clear();
    use({{3}}, Satellite);
    check();
    EXPECT_THAT(logged(), ElementsAre(LogLine{Container::Logger::Debug,
                                              "Channel change at #3 mode : 2 -> 1, 7 --> 3\n"}));
}

TEST_F(UpdateCheck, TellsThatAnAntennaHasLostItsChannels) {
    use({{3}, {4}});
    check();
    log.clear();
    TestGuide().use();
    EXPECT_TRUE(check());
    EXPECT_THAT(logged(), ElementsAre(LogLine{Container::Logger::Debug,
                                              "Channel change at #0 mode : 2 -> 0, 7 --> 0\n"}));
}

TEST_F(UpdateCheck, ComparesEachAntennaByItself) {
    TestGuide guide;
    add(guide, {{1}}, Air);
    add(guide, {{2}, {3}}, Bs);
    add(guide, {{4}}, Cs);
    guide.use();
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(1, 1));
    EXPECT_EQ(kept(16), std::pair(2, 5));
    EXPECT_EQ(kept(17), std::pair(1, 4));
    EXPECT_EQ(kept(3), std::pair(0, 0));
}

TEST_F(UpdateCheck, WalksAllAntennasThoughTheFirstHasChanged) {
    use({{3}});
    const ForwardingTelevision television;
    EXPECT_TRUE(check());
    EXPECT_THAT(television.sourceTypesAsked,
                ElementsAre(2, 4, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18, 19, 22, 23, 12, 13));
}

TEST_F(UpdateCheck, AsksForAllProgrammesOfEachDigitalChannel) {
    use({{3}, {3, false}, {0}});
    const ForwardingTelevision television;
    check();
    EXPECT_THAT(television.programmesAsked, ElementsAre(Pair(0, 4'294'967'295), Pair(0, 4'294'967'295)));
}

// Tolerance -------------------------------------------------------------------------------------------

TEST_F(UpdateCheck, ToleratesAFifthOfTheProgrammes) {
    struct {
        int before;
        int now;
        bool changed;
    } const table[] = {
        {100, 100, false}, {100, 120, false}, {100, 121, true}, {100, 80, false}, {100, 79, true},
        {99, 118, false},  {99, 119, true},   {99, 79, false},  {99, 78, true},  // 118.8 and 79.2, cut
        {5, 6, false},     {5, 4, false},     {5, 7, true},     {5, 3, true},     {4, 3, false},
        {4, 5, true},      {1, 2, true},
    };
    for (const auto& row : table) {
        OpenPlugin::forget();
        use({{row.before}});
        check();
        use({{row.now}});
        EXPECT_EQ(check(), row.changed) << row.before << " to " << row.now;
    }
}

TEST_F(UpdateCheck, MeasuresADriftFromTheLastChange) {
    use({{100}});
    check();
    use({{115}});
    EXPECT_FALSE(check());
    EXPECT_EQ(kept(0), std::pair(1, 100));
    use({{130}});
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(1, 130));
}

TEST_F(UpdateCheck, ToleratesAFifthOfAVeryLargeNumber) {
    use({{1}});
    OpenPlugin::channelCounts[0] = 1;
    OpenPlugin::programCounts[0] = 400'000'000;  // a fifth more and less pass 32 bits on the way
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(1, 1));
}

// Channels --------------------------------------------------------------------------------------------

TEST_F(UpdateCheck, FindsANewChannelThoughTheProgrammesStayAsMany) {
    use({{10}});
    check();
    use({{5}, {5}});
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(2, 10));
}

TEST_F(UpdateCheck, LeavesChannelsWithoutProgrammesOut) {
    use({{0}, {10}, {0}});
    check();
    EXPECT_EQ(kept(0), std::pair(1, 10));
}

TEST_F(UpdateCheck, FindsAChannelThatLosesAllItsProgrammesOrGetsThemBack) {
    use({{100}, {1}});
    check();
    use({{100}, {0}});
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(1, 100));
    use({{100}, {1}});
    EXPECT_TRUE(check());
    EXPECT_EQ(kept(0), std::pair(2, 101));
}

TEST_F(UpdateCheck, SaysNothingOfAnAntennaWhoseChannelsAreAllEmpty) {
    use({{0}, {0}});
    EXPECT_FALSE(check());
    EXPECT_EQ(kept(0), std::pair(0, 0));
    EXPECT_THAT(logged(), IsEmpty());
}

// Channels that are not looked into repeat the count before them --------------------------------------

TEST_F(UpdateCheck, RepeatsThePreviousCountForAnAnalogueChannel) {
    use({{5}, {3, false}});
    check();
    EXPECT_EQ(kept(0), std::pair(2, 10));
}

TEST_F(UpdateCheck, RepeatsThePreviousCountForAVanishedChannel) {
    use({{5}, {3}, {2}});
    ForwardingTelevision television;
    television.vanishedMajor = 2;
    check();
    EXPECT_EQ(kept(0), std::pair(3, 5 + 5 + 2));
}

TEST_F(UpdateCheck, LeavesAnAnalogueChannelOutAtTheStart) {
    use({{3, false}, {5}});
    check();
    EXPECT_EQ(kept(0), std::pair(1, 5));
}

TEST_F(UpdateCheck, LeavesAnAnalogueChannelOutBehindAnEmptyOne) {
    use({{5}, {0}, {3, false}});
    check();
    EXPECT_EQ(kept(0), std::pair(1, 5));
}

TEST_F(UpdateCheck, RepeatsTheCountOfTheAntennaBefore) {
    TestGuide guide;
    add(guide, {{5}}, Air);
    add(guide, {{3, false}, {2}}, Cs);
    guide.use();
    check();
    EXPECT_EQ(kept(0), std::pair(1, 5));
    EXPECT_EQ(kept(17), std::pair(2, 5 + 2));
}

TEST_F(UpdateCheck, RepeatsNothingOfTheCheckBefore) {
    use({{5}});
    check();
    use({{3, false}});
    check();
    EXPECT_EQ(kept(0), std::pair(0, 0));
}

}  // namespace
}  // namespace epgtest
