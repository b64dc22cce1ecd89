#include "set/metrics/RequestResource.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

TEST(RequestResource, LeavesIdentifiersOut) {
    EXPECT_EQ(resourceOf({}), "/");
    EXPECT_EQ(resourceOf({"ws", "epg2", "channels"}), "/ws/epg2/channels");
    EXPECT_EQ(resourceOf({"ws", "epg2", "channels", "cid-003-7"}), "/ws/epg2/channels/{id}");
    EXPECT_EQ(resourceOf({"ws", "epg2", "programs", "x/y", "schedule"}), "/ws/epg2/programs/{id}/schedule");
    EXPECT_EQ(resourceOf({"set", "status"}), "/set/status");
}

TEST(RequestResource, GivesEverythingElseOneName) {
    EXPECT_EQ(resourceOf({"ws", "epg3", "channels"}), "other");
    EXPECT_EQ(resourceOf({"ws", "epg2", "channels", "a", "b"}), "other");
    EXPECT_EQ(resourceOf({"ws"}), "other");
    EXPECT_EQ(resourceOf({"*"}), "other");
}

TEST(RequestMethod, IsOneOfAFew) {
    EXPECT_EQ(methodOf("DELETE"), "DELETE");
    EXPECT_EQ(methodOf("get"), "other");
    EXPECT_EQ(methodOf(""), "other");
}

}  // namespace
}  // namespace epgset
