#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/AppTV.h"
#include "host/CRemindInfo.h"
#include "host/TCProgram.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ManualClock.h"
#include "tests/set/middleware/GuideInUse.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using Text = CRemindInfo::Text;

/// The units of big-endian text that stand for these characters.
Text bigEndian(const Text& units) {
    Text swapped;
    for (const unsigned short unit : units)
        swapped.push_back(static_cast<unsigned short>(unit << 8 | unit >> 8));
    return swapped;
}

/// Entries made from a programme of channel 7-2 of the satellite antenna.
class RemindInfoProgrammeTest : public ::testing::Test {
protected:
    RemindInfoProgrammeTest() {
        useClock(&clock_);
        guideWith(4'000'000'000U, 4'000'003'600U);
    }
    ~RemindInfoProgrammeTest() override {
        useGuide(nullptr);
        useClock(nullptr);
    }

    /// A guide with one programme at that time.
    static void guideWith(std::uint32_t start, std::uint32_t stop) {
        GuideBuilder builder;
        builder.addChannel(makeChannel(0, 1, 0, "Other"));
        Channel channel = makeChannel(3, 7, 2, "Seven");
        channel.ptc = 40'000;
        channel.programNumber = 50'000;
        GuideBuilder::ProgrammeDraft draft;
        draft.start = start;
        draft.stop = stop;
        draft.eventId = 65'535;
        draft.title = "\xCE\xA9 A";
        draft.synopsis = "a\xF0\x9F\x98\x80";
        builder.addProgramme(builder.addChannel(channel), draft);
        useGuide(builder.finish());
    }

    static TCProgram programme() {
        const TCChannelKey key(7, 7, 2);
        TCChannel channel;
        EXPECT_NE(g_pAppTV->ExistChannel(&key, &channel, 0), 0);
        CCSortedList list;
        EXPECT_EQ(g_pAppTV->GetProgramList(&list, &channel, 0, 4294967295LL), 1);
        EXPECT_TRUE(list.Seek(CCSortedList::First, 0));
        return *list.Data();
    }

    ManualClock clock_{1'000'000};
};

TEST_F(RemindInfoProgrammeTest, CopiesTheProgrammeAndItsChannel) {
    CRemindInfo info;
    info.SetTimerViewing(programme());
    EXPECT_EQ(info.UID(), 0U);
    EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_VIEW);
    EXPECT_EQ(info.RepeatType(), CReminder::REPEAT_ONCE);
    EXPECT_EQ(info.CreationMethod(), CReminder::CREATED_FROM_EPG);
    EXPECT_EQ(info.EventId(), 65'535);
    EXPECT_EQ(info.StartTime(), 4'000'000'000U);
    EXPECT_EQ(info.Duration(), 3'600U);
    EXPECT_EQ(info.ChannelType(), 7);
    EXPECT_EQ(info.Major(), 7);
    EXPECT_EQ(info.Minor(), 2);
    EXPECT_EQ(info.PTC(), 40'000);
    EXPECT_EQ(info.ProgramNumber(), 50'000);
}

TEST_F(RemindInfoProgrammeTest, KeepsTheTitleBigEndianAndTheSynopsisInHostOrder) {
    CRemindInfo info;
    info.SetTimerViewing(programme());
    EXPECT_EQ(Text(info.GetTitle()), bigEndian({0x03A9, ' ', 'A'}));
    EXPECT_EQ(Text(info.Synopsis()), Text({'a', 0xD83D, 0xDE00}));
}

TEST_F(RemindInfoProgrammeTest, IsOfTheTypeThatItWasMadeAs) {
    CRemindInfo info;
    info.SetRecording(programme());
    EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_RECORD);
    info.Set(programme(), 9, 0);
    EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_SERIES);
}

TEST_F(RemindInfoProgrammeTest, BeginsAtTheNearestTimeThatTheMiddlewareCanCount) {
    guideWith(4'294'967'000U, 4'294'967'200U);
    clock_.setZone(540, false);
    CRemindInfo info;
    info.SetTimerViewing(programme());
    EXPECT_EQ(info.StartTime(), 4'294'967'295U);
    TCProgram program;
    info.SetStartTime(100);
    info.CopyDetailsInto(program);
    EXPECT_EQ(program.StartTime(), 0U);
}

TEST_F(RemindInfoProgrammeTest, ForgetsWhatItWasBefore) {
    CRemindInfo info;
    info.SetUid(9);
    info.SetRepeat(CReminder::REPEAT_MANUAL, 5);
    info.SetCreationMethod(CReminder::CREATED_MANUALLY);
    info.SetTimerViewing(TCProgram());
    EXPECT_EQ(info.UID(), 0U);
    EXPECT_EQ(info.RepeatType(), CReminder::REPEAT_ONCE);
    EXPECT_EQ(info.ManualRepeat(), 0);
    EXPECT_EQ(info.CreationMethod(), CReminder::CREATED_FROM_EPG);
    EXPECT_EQ(info.ChannelType(), -1);
}

TEST_F(RemindInfoProgrammeTest, CountsItsTimeInLocalSeconds) {
    CRemindInfo info;
    clock_.setZone(-210, true);
    info.SetRecording(programme());
    EXPECT_EQ(info.StartTime(), 4'000'000'000U - 210 * 60 + 3'600);
    EXPECT_EQ(info.Duration(), 3'600U);
    TCProgram copy;
    info.CopyDetailsInto(copy);
    EXPECT_EQ(copy.StartTime(), 4'000'000'000U);
    EXPECT_EQ(copy.EndTime(), 4'000'003'600U);
}

TEST_F(RemindInfoProgrammeTest, GivesItsDetailsToAProgrammeThatOutlivesIt) {
    TCProgram copy;
    {
        CRemindInfo info;
        info.SetTimerViewing(programme());
        useGuide(nullptr);
        info.CopyDetailsInto(copy);
    }
    EXPECT_EQ(copy.EventId(), 65'535);
    std::vector<unsigned char> text(static_cast<std::size_t>(copy.TitleLength()));
    EXPECT_EQ(copy.GetTitle(text.data(), copy.TitleLength()), 6);
    EXPECT_THAT(text, ElementsAre(0x03, 0xA9, 0, ' ', 0, 'A'));
    text.resize(static_cast<std::size_t>(copy.ExtendedTextLength()));
    EXPECT_EQ(copy.GetExtendedText(text.data(), copy.ExtendedTextLength()), 6);
    EXPECT_THAT(text, ElementsAre(0, 'a', 0xD8, 0x3D, 0xDE, 0x00));
}

TEST_F(RemindInfoProgrammeTest, GivesAManualEntrysTimesWithoutTexts) {
    CRemindInfo info;
    info.SetStartTime(5'000);
    info.SetDuration(60);
    TCProgram copy = programme();
    info.CopyDetailsInto(copy);
    EXPECT_EQ(copy.StartTime(), 5'000U);
    EXPECT_EQ(copy.EndTime(), 5'060U);
    EXPECT_EQ(copy.EventId(), 0);
    EXPECT_EQ(copy.TitleLength(), 0);
    EXPECT_EQ(copy.ExtendedTextLength(), 0);
}

}  // namespace
}  // namespace epgset
