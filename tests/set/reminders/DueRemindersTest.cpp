#include "set/reminders/DueReminders.h"

#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DueRemindersTest : public ReminderFixture {
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

    GuideWindow window_;
    DueReminders due_{store(), window_};
};

TEST_F(DueRemindersTest, TuneToTheirChannelWithTheirFirstSecond) {
    addView(8, 2'000'000, 100);
    due_.check(1'999'999);
    EXPECT_EQ(tuned(), 0);
    due_.check(2'000'000);
    EXPECT_EQ(tuned(), 8);
}

TEST_F(DueRemindersTest, TuneOnceAndLeaveTheViewerInPeace) {
    addView(8, 2'000'000, 100);
    due_.check(2'000'000);
    window_.ChangeChannel(7, 0);
    due_.check(2'000'001);
    due_.check(2'000'099);
    EXPECT_EQ(tuned(), 7);
}

TEST_F(DueRemindersTest, TuneToTheirOwnAntenna) {
    addView(7, 2'000'000, 100, Satellite);
    due_.check(2'000'000);
    EXPECT_EQ(window_.channel()->tvMode, 3);
}

TEST_F(DueRemindersTest, StayUntilTheyEnd) {
    const unsigned long uid = addView(8, 2'000'000, 100);
    due_.check(2'000'099);
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
    due_.check(2'000'100);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(DueRemindersTest, TuneLateWhenTheSetIsStartedMeanwhile) {
    addView(8, 2'000'000, 100);
    due_.check(2'000'050);
    EXPECT_EQ(tuned(), 8);
}

TEST_F(DueRemindersTest, DoNotTuneToWhatIsOver) {
    addView(8, 2'000'000, 100);
    due_.check(2'000'100);
    EXPECT_EQ(tuned(), 0);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(DueRemindersTest, TuneAgainWhenTheyAreMovedOrRepeat) {
    const ProcessZone zone("UTC");
    CRemindInfo daily = manualEntry(2'000'000, 100, CReminder::RESERVE_VIEW);
    daily.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
    add(daily);
    due_.check(2'000'000);
    window_.ChangeChannel(8, 0);
    due_.check(2'000'100);
    EXPECT_EQ(tuned(), 8);
    due_.check(2'086'400);
    EXPECT_EQ(tuned(), 7);
}

TEST_F(DueRemindersTest, DoNotTuneToWhatIsToBeRecorded) {
    add(manualEntry(2'000'000, 100, CReminder::RESERVE_RECORD));
    due_.check(2'000'000);
    EXPECT_EQ(tuned(), 0);
}

TEST_F(DueRemindersTest, WarnWhenTheirChannelIsGone) {
    addView(99, 2'000'000, 100);
    due_.check(2'000'000);
    due_.check(2'000'001);
    EXPECT_THAT(log_.messagesOf("set/reminders"), ElementsAre(HasSubstr("no channel 99-0")));
}

}  // namespace
}  // namespace epgset
