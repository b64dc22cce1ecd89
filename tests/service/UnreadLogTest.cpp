// A set whose standard error is a pipe that nobody reads for a while.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

TEST(UnreadLog, DoesNotStopTheService) {
    RunningSet set({"--log-level", "trace"});
    HttpClient client(set.url());
    const auto begun = std::chrono::steady_clock::now();
    // Each leaves some lines; a pipe holds 64 KiB.
    for (int number = 0; number < 60; ++number)
        ASSERT_EQ(200, client.get("/ws/epg2/channels?items_max=" + std::to_string(number + 1)).status);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(30));

    EXPECT_THAT(set.process().errors(), ::testing::HasSubstr(" trace "));
    EXPECT_EQ(200, client.get("/ws/epg2/antennas").status);
    EXPECT_TRUE(set.process().waitForError("lines were dropped that standard error did not take"));
    EXPECT_EQ(0, set.process().stop());
}

}  // namespace
}  // namespace epgset::test
