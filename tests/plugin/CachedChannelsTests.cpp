// Finding the channels of many numbers at once.
#include "Vexmoor/CachedChannels.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "set/middleware/Television.h"
#include "tests/plugin/AdapterTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CachedChannelsTest : public AdapterTest {
protected:
    static std::vector<std::string> found(const std::vector<CachedChannels::Number>& numbers) {
        const CachedChannels channels(numbers);
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < numbers.size(); ++i)
            texts.push_back(described(channels.of(i)));
        return texts;
    }
};

TEST_F(CachedChannelsTest, AreThoseThatEachNumberAloneFinds) {
    TestGuide guide;
    std::vector<CachedChannels::Number> numbers;
    for (const int mode : {Air, Cable, Satellite})
        for (const int major : {1, 2, 3, 7})
            for (const int minor : {0, 1, 4}) {
                if (major + minor != 5 && mode != Cable) guide.channel(mode, major, minor);
                numbers.push_back({mode, major, minor});
            }
    guide.channel(Air, 30, 3, "Third");
    guide.channel(Air, 30, 2, "Second");
    numbers.push_back({Air, 30, 0});
    numbers.push_back({Air, 30, 3});
    numbers.push_back({Air, 99, 0});
    numbers.push_back({-1, 1, 0});
    numbers.push_back({Air, 7, 0});
    guide.use();
    std::vector<std::string> alone;
    for (const auto& [mode, major, minor] : numbers)
        alone.push_back(
            described(std::unique_ptr<TCChannel>(t_get_cached_channel_by_num(mode, major, minor)).get()));
    EXPECT_EQ(found(numbers), alone);
}

TEST_F(CachedChannelsTest, AreFoundInOneWalkOfEachMode) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.channel(Air, 2);
    guide.channel(Satellite, 1);
    guide.use();
    const ForwardingTelevision television;
    EXPECT_THAT(found({{Air, 2, 0}, {Satellite, 1, 0}, {Air, 1, 0}, {Air, 2, 0}}),
                ElementsAre("0:2-0 Channel", "3:1-0 Channel", "0:1-0 Channel", "0:2-0 Channel"));
    EXPECT_THAT(television.sourceTypesAsked, ElementsAre(2, 7));
}

TEST_F(CachedChannelsTest, LeaveWhatHasToBeReportedToTheLookOfOne) {
    TestGuide guide;
    for (const int major : {1, 2, 3})
        guide.channel(Air, major);
    guide.use();
    ForwardingTelevision television;
    television.vanishedMajor = 2;
    EXPECT_THAT(found({{Air, 1, 0}, {Air, 2, 0}, {Air, 3, 0}}),
                ElementsAre("0:1-0 Channel", "(none)", "(none)"));
    EXPECT_THAT(found({{Cable, 1, 0}}), ElementsAre("(none)"));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(CachedChannelsTest, AreNoneWithoutMemoryOrNumbers) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.use();
    epgset::failChannelAllocationsAfter(0);
    EXPECT_THAT(found({{Air, 1, 0}}), ElementsAre("(none)"));
    epgset::failChannelAllocationsAfter(-1);
    EXPECT_THAT(found({}), IsEmpty());
}

}  // namespace
}  // namespace epgtest
