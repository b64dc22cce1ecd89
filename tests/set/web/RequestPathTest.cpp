#include "set/web/RequestPath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(RequestTarget, IsSplitAtTheFirstQuestionMark) {
    const RequestTarget target = splitTarget("/ws/epg2?a=1?b");
    EXPECT_EQ("/ws/epg2", target.path);
    EXPECT_EQ("a=1?b", target.query);
}

TEST(RequestTarget, NeedsNoQuery) {
    EXPECT_EQ("/ws", splitTarget("/ws").path);
    EXPECT_EQ("", splitTarget("/ws").query);
    EXPECT_EQ("", splitTarget("/ws?").query);
    EXPECT_EQ("", splitTarget("").path);
}

TEST(RequestTarget, InAbsoluteFormCountsFromItsPath) {
    EXPECT_EQ("/ws/epg2", splitTarget("http://tv.example:8080/ws/epg2?x").path);
    EXPECT_EQ("x", splitTarget("HTTPS://tv.example/ws/epg2?x").query);
    EXPECT_EQ("", splitTarget("http://tv.example").path);
    EXPECT_EQ("q", splitTarget("http://tv.example?q").query);
}

TEST(RequestTarget, KeepsAUrlInsideAPath) {
    EXPECT_EQ("/a/http://b/c", splitTarget("/a/http://b/c").path);
}

TEST(PathSegments, LeaveEmptyOnesOut) {
    EXPECT_THAT(pathSegments("//set///status/"), ElementsAre("set", "status"));
    EXPECT_THAT(pathSegments("/"), IsEmpty());
    EXPECT_THAT(pathSegments(""), IsEmpty());
}

TEST(PathSegments, AreDecodedAfterTheyAreSplit) {
    EXPECT_THAT(pathSegments("/s%65t/st%61tus"), ElementsAre("set", "status"));
    EXPECT_THAT(pathSegments("/set%2Fstatus"), ElementsAre("set/status"));
    EXPECT_THAT(pathSegments("/a+b/%zz%4"), ElementsAre("a+b", "%zz%4"));
}

TEST(PathBelow, KeepsTheEscapesOfWhatFollowsTheMountPoint) {
    EXPECT_EQ("epg2/channels/a%2Fb", pathBelow("/ws/epg2/channels/a%2Fb", "ws"));
    EXPECT_EQ("epg2//channels", pathBelow("//ws//epg2//channels", "ws"));
    EXPECT_EQ("epg2", pathBelow("/%77s/epg2", "ws"));
}

TEST(PathBelow, IsEmptyAtTheMountPointItself) {
    EXPECT_EQ("", pathBelow("/ws", "ws"));
    EXPECT_EQ("", pathBelow("/ws/", "ws"));
    EXPECT_EQ("", pathBelow("/ws///", "ws"));
}

TEST(PathBelow, IsNothingElsewhere) {
    for (const char* path : {"", "/", "/wsx", "/w", "/WS/epg2", "/set/ws/epg2", "/ws%2Fepg2"}) {
        EXPECT_EQ(std::nullopt, pathBelow(path, "ws")) << path;
    }
}

TEST(EncodedNul, IsFoundWhereItIsOne) {
    EXPECT_TRUE(holdsEncodedNul("a%00b"));
    EXPECT_TRUE(holdsEncodedNul("%%00"));
    EXPECT_FALSE(holdsEncodedNul("%2500"));
    EXPECT_FALSE(holdsEncodedNul("%0"));
    EXPECT_FALSE(holdsEncodedNul("%01"));
}

}  // namespace
}  // namespace epgset
