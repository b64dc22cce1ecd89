#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/DueRemindersFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DueRemindersTest : public DueRemindersFixture {
protected:
    DueRemindersTest() {
        GuideBuilder builder;
        for (const auto major : {std::int16_t{7}, std::int16_t{8}})
            builder.addChannel(makeChannel(0, major, 0));
        builder.addChannel(makeChannel(3, 7, 0));
        useGuide(builder.finish());
    }

    unsigned long addView(short major, std::uint32_t start, std::uint32_t duration, int type = Air) {
        CRemindInfo info = manualEntry(start, duration, CReminder::RESERVE_VIEW);
        info.Set(major, 0, 0, type, 0);
        return add(info);
    }

    /// What is tuned to: 0 for nothing.
    int tuned() const { return window_.channel() ? window_.channel()->major : 0; }
};

TEST_F(DueRemindersTest, TuneToTheirChannelWithTheirFirstSecond) {
    addView(8, 2'000'000, 100);
    checkAt(1'999'999);
    EXPECT_EQ(tuned(), 0);
    checkAt(2'000'000);
    EXPECT_EQ(tuned(), 8);
}

TEST_F(DueRemindersTest, TuneOnceAndLeaveTheViewerInPeace) {
    addView(8, 2'000'000, 100);
    checkAt(2'000'000);
    window_.ChangeChannel(7, 0);
    checkAt(2'000'001);
    checkAt(2'000'099);
    EXPECT_EQ(tuned(), 7);
}

TEST_F(DueRemindersTest, TuneToTheirOwnAntenna) {
    addView(7, 2'000'000, 100, Satellite);
    checkAt(2'000'000);
    EXPECT_EQ(window_.channel()->tvMode, 3);
}

TEST_F(DueRemindersTest, StayUntilTheyEnd) {
    const unsigned long uid = addView(8, 2'000'000, 100);
    checkAt(2'000'099);
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
    checkAt(2'000'100);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(DueRemindersTest, TuneLateWhenTheSetIsStartedMeanwhile) {
    addView(8, 2'000'000, 100);
    checkAt(2'000'050);
    EXPECT_EQ(tuned(), 8);
}

TEST_F(DueRemindersTest, DoNotTuneToWhatIsOver) {
    addView(8, 2'000'000, 100);
    checkAt(2'000'100);
    EXPECT_EQ(tuned(), 0);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(DueRemindersTest, TuneAgainWhenTheyAreMovedOrRepeat) {
    const ProcessZone zone("UTC");
    CRemindInfo daily = manualEntry(2'000'000, 100, CReminder::RESERVE_VIEW);
    daily.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
    add(daily);
    checkAt(2'000'000);
    window_.ChangeChannel(8, 0);
    checkAt(2'000'100);
    EXPECT_EQ(tuned(), 8);
    checkAt(2'086'400);
    EXPECT_EQ(tuned(), 7);
}

TEST_F(DueRemindersTest, DoNotTuneToWhatIsToBeRecorded) {
    add(manualEntry(2'000'000, 100, CReminder::RESERVE_RECORD));
    checkAt(2'000'000);
    EXPECT_EQ(tuned(), 0);
}

TEST_F(DueRemindersTest, WarnWhenTheirChannelIsGone) {
    addView(99, 2'000'000, 100);
    checkAt(2'000'000);
    checkAt(2'000'001);
    EXPECT_THAT(log_.messagesOf("set/reminders"), ElementsAre(HasSubstr("no channel 99-0")));
}

TEST_F(DueRemindersTest, TuneOnceThoughTheClockGoesBack) {
    addView(8, 2'000'000, 100);
    checkAt(2'000'000);
    window_.ChangeChannel(7, 0);
    checkAt(1'999'000);
    checkAt(2'000'000);
    EXPECT_EQ(tuned(), 7);
}

TEST_F(DueRemindersTest, AreToldAndTheChannelTheyTuneToToo) {
    const unsigned long uid = addView(8, 2'000'000, 100);
    checkAt(2'000'000);
    checkAt(2'000'001);
    const std::string path = " /ws/epg2/schedules/sch_id_" + std::to_string(uid);
    EXPECT_THAT(published(), ElementsAre("schedule-added" + path, "schedule-due" + path,
                                         "channel-changed /ws/epg2/channels/cid-000-8"));
}

TEST_F(DueRemindersTest, AreListedByTheirStartBeforeTheyAre) {
    addView(8, 3'000'000, 100);
    const unsigned long first = addView(7, 2'000'000, 100, Satellite);
    addView(8, 4'000'000, 100);
    addView(8, 1'000'000, 100);
    const std::vector<DueEntry> next = store().nextDue(1'000'000, 2);
    ASSERT_EQ(next.size(), 2U);
    EXPECT_EQ(next[0].uid, first);
    EXPECT_EQ(next[0].start, 2'000'000);
    EXPECT_EQ(next[0].tvMode, 3);
    EXPECT_EQ(next[0].major, 7);
    EXPECT_EQ(next[0].kind, CReminder::RESERVE_VIEW);
    EXPECT_EQ(next[1].start, 3'000'000);
}

}  // namespace
}  // namespace epgset
