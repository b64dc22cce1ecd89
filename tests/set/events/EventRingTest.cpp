// The set's ring of events.
#include "set/events/EventRing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace epgset {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;

std::vector<std::string> pathsAfter(const EventRing& ring, std::uint64_t id) {
    std::vector<std::string> paths;
    const auto after = ring.after(id);
    if (!after) return {"gone"};
    for (const Event& event : *after)
        paths.push_back(event.path);
    return paths;
}

TEST(EventRing, NumbersEventsUpwardsFromItsFirstNumber) {
    EventRing ring(4, 100);
    EXPECT_EQ(ring.last(), 100U);
    ring.publish("one", "/1");
    ring.publish("two", "/2");
    EXPECT_EQ(ring.last(), 102U);
    const auto all = ring.after(100);
    ASSERT_THAT(all, Optional(SizeIs(2)));
    EXPECT_EQ(all->front().id, 101U);
    EXPECT_EQ(all->front().name, "one");
    EXPECT_EQ(all->back().id, 102U);
}

TEST(EventRing, GivesWhatCameAfterANumber) {
    EventRing ring(4);
    for (const char* path : {"/1", "/2", "/3"})
        ring.publish("event", path);
    EXPECT_THAT(pathsAfter(ring, 0), ElementsAre("/1", "/2", "/3"));
    EXPECT_THAT(pathsAfter(ring, 2), ElementsAre("/3"));
    EXPECT_THAT(pathsAfter(ring, 3), IsEmpty());
}

TEST(EventRing, SaysSoWhenSomeOfItIsGone) {
    EventRing ring(2);
    for (const char* path : {"/1", "/2", "/3"})
        ring.publish("event", path);
    EXPECT_THAT(pathsAfter(ring, 1), ElementsAre("/2", "/3"));
    EXPECT_THAT(pathsAfter(ring, 0), ElementsAre("gone"));
}

TEST(EventRing, KnowsNothingAfterANumberItNeverGave) {
    EventRing ring(2, 100);
    ring.publish("event", "/1");
    EXPECT_THAT(pathsAfter(ring, 102), ElementsAre("gone"));
    EXPECT_THAT(pathsAfter(ring, 99), ElementsAre("gone"));
}

TEST(EventRing, WakesItsListenersAfterEachEventUntilTheyGo) {
    EventRing ring(2);
    int woken = 0;
    const int listener = ring.addListener([&woken] { ++woken; });
    ring.publish("event", "/1");
    ring.publish("event", "/2");
    EXPECT_EQ(woken, 2);
    ring.removeListener(listener);
    ring.publish("event", "/3");
    EXPECT_EQ(woken, 2);
}

TEST(EventRing, CountsEventsByName) {
    EventRing ring(1);
    for (const char* name : {"one", "two", "one"})
        ring.publish(name, "/");
    EXPECT_THAT(ring.counts(), ElementsAre(testing::Pair("one", 2U), testing::Pair("two", 1U)));
}

TEST(EventPath, NamesTheResourceOfTheService) {
    EXPECT_EQ(channelPath(3, 7, 0), "/ws/epg2/channels/cid-003-7");
    EXPECT_EQ(schedulePath(17), "/ws/epg2/schedules/sch_id_17");
}

}  // namespace
}  // namespace epgset
