#include "set/recorder/RecordingName.h"

#include <gtest/gtest.h>

#include "set/recorder/LocalTimeText.h"
#include "set/text/Utf8.h"
#include "tests/set/middleware/ProcessZone.h"

namespace epgset {
namespace {

constexpr std::int64_t evening = 1'787'508'900;  // 2026-08-23T18:15:00Z

class RecordingNameTest : public ::testing::Test {
protected:
    static std::string nameOf(std::string_view channel, std::string_view title) {
        return recordingName(evening, channel, title);
    }

    ProcessZone zone_{"UTC"};
};

TEST_F(RecordingNameTest, IsTheStartTheChannelAndTheTitle) {
    EXPECT_EQ(nameOf("News 24", "Morning Show"), "2026-08-23 18-15 News 24 Morning Show");
}

TEST_F(RecordingNameTest, HasTheTimeOfTheWallClock) {
    const ProcessZone berlin("Europe/Berlin");
    EXPECT_EQ(nameOf("One", "News"), "2026-08-23 20-15 One News");
    EXPECT_EQ(localIsoTime(evening), "2026-08-23T20:15:00+02:00");
    const ProcessZone marquesas("Pacific/Marquesas");
    EXPECT_EQ(nameOf("One", "News"), "2026-08-23 08-45 One News");
    EXPECT_EQ(localIsoTime(evening), "2026-08-23T08:45:00-09:30");
}

TEST_F(RecordingNameTest, StaysInItsFolder) {
    EXPECT_EQ(nameOf("../One", "../../etc/passwd"), "2026-08-23 18-15 _._One _._.._etc_passwd");
    EXPECT_EQ(nameOf("/", "/"), "2026-08-23 18-15 _ _");
}

TEST_F(RecordingNameTest, HasNothingThatFileSystemsDislike) {
    EXPECT_EQ(nameOf("One", R"(a\b:c*d?e"f<g>h|i)"), "2026-08-23 18-15 One a_b_c_d_e_f_g_h_i");
    EXPECT_EQ(nameOf("One", std::string_view("a\0b\nc\x1B\x7F\xC2\x85z", 10)),
              "2026-08-23 18-15 One a_b_c___z");
    EXPECT_EQ(nameOf("One", ".hidden"), "2026-08-23 18-15 One _hidden");
    EXPECT_EQ(nameOf("One", "To be continued... "), "2026-08-23 18-15 One To be continued");
    EXPECT_EQ(nameOf("One", ""), "2026-08-23 18-15 One");
}

TEST_F(RecordingNameTest, IsValidUtf8) {
    EXPECT_EQ(nameOf("Z\xC3\xBCrich", "\xFF\xC3"), "2026-08-23 18-15 Z\xC3\xBCrich \xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST_F(RecordingNameTest, IsCutBetweenTwoCharacters) {
    std::string title;
    for (int i = 0; i < 200; ++i)
        title += "\xE2\x82\xAC";
    for (const char* const channel : {"", "1", "12"}) {
        const std::string name = nameOf(channel, title);
        EXPECT_LE(name.size(), maximumRecordingNameBytes);
        EXPECT_GT(name.size(), maximumRecordingNameBytes - 3);
        EXPECT_TRUE(isCleanUtf8(name));
    }
}

TEST_F(RecordingNameTest, LeavesRoomForTheTitleBehindALongChannel) {
    EXPECT_EQ(nameOf(std::string(300, 'c'), "News"), "2026-08-23 18-15 " + std::string(80, 'c') + " News");
}

}  // namespace
}  // namespace epgset
