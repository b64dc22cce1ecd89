#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;

class ReminderLineupTest : public ReminderFixture {
protected:
    unsigned long addOn(short major, short minor, std::uint32_t start) {
        CRemindInfo info = manualEntry(start, 60);
        info.Set(major, minor, 0, Air, 0);
        return add(info);
    }

    static void useChannels(const std::vector<Channel>& channels) {
        GuideBuilder builder;
        for (const Channel& channel : channels)
            builder.addChannel(channel);
        useGuide(builder.finish());
    }
};

TEST_F(ReminderLineupTest, ListsEntriesWithoutAChannelAfterAllOthers) {
    const unsigned long lost = addOn(9, 0, 2'000'000);
    const unsigned long late = addOn(7, 2, 4'000'000);
    const unsigned long alsoLost = addOn(8, 0, 1'500'000);
    const unsigned long early = addOn(7, 2, 3'000'000);
    useChannels({makeChannel(0, 7, 2)});
    EXPECT_THAT(uidsOf(all()), ElementsAre(early, late, alsoLost, lost));
    useChannels({makeChannel(0, 7, 2), makeChannel(0, 8, 0), makeChannel(0, 9, 0)});
    EXPECT_THAT(uidsOf(all()), ElementsAre(alsoLost, lost, early, late));
}

TEST_F(ReminderLineupTest, CountsAnalogueChannelsAndOtherAntennasAsMissing) {
    const unsigned long analogue = addOn(7, 0, 2'000'000);
    const unsigned long elsewhere = addOn(8, 0, 2'500'000);
    const unsigned long there = addOn(9, 0, 3'000'000);
    Channel seven = makeChannel(0, 7, 0);
    seven.digital = false;
    useChannels({seven, makeChannel(3, 8, 0), makeChannel(0, 9, 0)});
    EXPECT_THAT(uidsOf(all()), ElementsAre(there, analogue, elsewhere));
}

}  // namespace
}  // namespace epgset
