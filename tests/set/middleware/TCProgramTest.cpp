#include "host/TCProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "set/guide/Guide.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<Programme> detailedProgramme() {
    auto programme = std::make_shared<Programme>();
    programme->start = 4000000000;
    programme->stop = 4000003600;
    programme->eventId = 65535;
    programme->scrambled = true;
    programme->title = "\xCE\xA9";
    programme->synopsis = Synopsis("a\xF0\x9F\x98\x80");
    programme->series = "Ab";
    return programme;
}

TEST(TCProgram, IsEmptyWhenNew) {
    const TCProgram programme;
    EXPECT_EQ(programme.StartTime(), 0U);
    EXPECT_EQ(programme.EndTime(), 0U);
    EXPECT_EQ(programme.EventId(), 0);
    EXPECT_EQ(programme.FreeCAMode(), 0);
    EXPECT_EQ(programme.TitleLength(), 0);
    EXPECT_EQ(programme.ExtendedTextLength(), 0);
    char buffer[4];
    EXPECT_EQ(programme.GetTitle(buffer, sizeof buffer), 0);
    EXPECT_EQ(programme.GetExtendedText(buffer, sizeof buffer), 0);
    TCProgram::TTSeriesItem item;
    EXPECT_EQ(programme.GetSeriesInfo(item, 0), 0);
}

TEST(TCProgram, AnswersWhatTheGuideHolds) {
    const TCProgram programme(detailedProgramme());
    EXPECT_EQ(programme.StartTime(), 4000000000U);
    EXPECT_EQ(programme.EndTime(), 4000003600U);
    EXPECT_EQ(programme.EventId(), 65535);
    EXPECT_NE(programme.FreeCAMode(), 0);
}

TEST(TCProgram, HandsItsTextsOutAsBigEndianUtf16) {
    const TCProgram programme(detailedProgramme());
    ASSERT_EQ(programme.TitleLength(), 2);
    std::vector<unsigned char> title(2);
    EXPECT_EQ(programme.GetTitle(title.data(), 2), 2);
    EXPECT_THAT(title, ElementsAre(0x03, 0xA9));

    ASSERT_EQ(programme.ExtendedTextLength(), 6);
    std::vector<unsigned char> synopsis(6);
    EXPECT_EQ(programme.GetExtendedText(synopsis.data(), 6), 6);
    EXPECT_THAT(synopsis, ElementsAre(0x00, 0x61, 0xD8, 0x3D, 0xDE, 0x00));
}

TEST(TCProgram, CutsItsTextsToTheBufferBetweenCharacters) {
    const TCProgram programme(detailedProgramme());
    std::vector<unsigned char> synopsis(6, 0xAA);
    EXPECT_EQ(programme.GetExtendedText(synopsis.data(), 5), 2);
    EXPECT_THAT(synopsis, ElementsAre(0x00, 0x61, 0xAA, 0xAA, 0xAA, 0xAA));
    EXPECT_EQ(programme.GetTitle(synopsis.data(), 0), 0);
    EXPECT_EQ(programme.GetTitle(synopsis.data(), -5), 0);
    EXPECT_EQ(programme.GetTitle(nullptr, 6), 0);
}

TEST(TCProgram, CountsLongTextsWhole) {
    const std::string text(100000, 'x');
    const auto programme = detailedProgramme();
    programme->synopsis = Synopsis(text);
    EXPECT_EQ(TCProgram(programme).ExtendedTextLength(), 200000);
}

TEST(TCProgram, NamesTheSeriesItIsIn) {
    TCProgram::TTSeriesItem item;
    EXPECT_EQ(TCProgram(detailedProgramme()).GetSeriesInfo(item, 0), 1);
    EXPECT_THAT(item.title, ElementsAre(0, 'A', 0, 'b'));
}

TEST(TCProgram, IsInNoSeriesWithoutASeriesTitle) {
    const auto programme = detailedProgramme();
    programme->series = {};
    TCProgram::TTSeriesItem item{{1, 2}};
    EXPECT_EQ(TCProgram(programme).GetSeriesInfo(item, 0), 0);
    EXPECT_THAT(item.title, IsEmpty());
}

TEST(TCProgram, HasNoContentReferenceIdentifiers) {
    std::vector<std::string> list{"left over"};
    TCProgram(detailedProgramme()).GetCRIDs(list, 0);
    EXPECT_THAT(list, IsEmpty());
}

TEST(TCProgram, KeepsWhatItPointsIntoAlive) {
    auto owner = detailedProgramme();
    const TCProgram programme{std::shared_ptr<const Programme>(owner)};
    owner.reset();
    EXPECT_EQ(TCProgram(programme).EventId(), 65535);
}

}  // namespace
}  // namespace epgset
