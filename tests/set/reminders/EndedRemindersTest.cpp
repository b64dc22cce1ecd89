#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/ReminderFixture.h"
#include "tests/set/reminders/Times.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EndedRemindersTest : public ReminderFixture {
protected:
    static CRemindInfo repeated(std::uint32_t start, CReminder::REMINDER_REPEAT_TYPE type, int days = 0) {
        CRemindInfo info = manualEntry(start, hour);
        info.SetRepeat(type, days);
        return info;
    }

    /// Lets each time of an entry end and answers the starts that follow, in local seconds.
    std::vector<std::uint32_t> following(unsigned long uid, int times) {
        std::vector<std::uint32_t> starts;
        for (int time = 0; time < times; ++time) {
            const CRemindInfo info = entry(uid);
            const std::int64_t end = std::int64_t{info.StartTime()} + info.Duration() - clock_.localOffset();
            EXPECT_TRUE(store().removeEnded(end));
            starts.push_back(entry(uid).StartTime());
        }
        return starts;
    }
};

TEST_F(EndedRemindersTest, AreRemovedWithTheirLastSecond) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    EXPECT_TRUE(store().removeEnded(2'000'099));
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
    EXPECT_TRUE(store().removeEnded(2'000'100));
    EXPECT_THAT(all(), IsEmpty());
    open();
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(EndedRemindersTest, LeaveWhatIsStillToCome) {
    add(manualEntry(2'000'000, 100));
    const unsigned long later = add(manualEntry(3'000'000, 100));
    store().removeEnded(2'500'000);
    EXPECT_THAT(uidsOf(all()), ElementsAre(later));
}

TEST_F(EndedRemindersTest, AreRemovedAlsoWhenTheyRecordASeries) {
    CRemindInfo series = manualEntry(2'000'000, 100, CReminder::RESERVE_SERIES);
    series.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
    add(series);
    store().removeEnded(2'000'100);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(EndedRemindersTest, MoveOnByTheirDays) {
    const ProcessZone zone("UTC");
    const std::uint32_t friday = 1'000 * 7 * day + day + 20 * hour;
    EXPECT_THAT(following(add(repeated(friday, CReminder::REPEAT_EVERYDAY)), 2),
                ElementsAre(friday + day, friday + 2 * day));
    EXPECT_THAT(following(add(repeated(friday, CReminder::REPEAT_WEEKDAYS)), 2),
                ElementsAre(friday + 3 * day, friday + 4 * day));
    EXPECT_THAT(following(add(repeated(friday + day, CReminder::REPEAT_WEEKEND)), 2),
                ElementsAre(friday + 2 * day, friday + 8 * day));
    const int tuesdayAndFriday = 4 + 32;
    EXPECT_THAT(following(add(repeated(friday, CReminder::REPEAT_MANUAL, tuesdayAndFriday)), 2),
                ElementsAre(friday + 4 * day, friday + 7 * day));
}

TEST_F(EndedRemindersTest, KeepTheirUidAndTextsAsTheyMoveOn) {
    const ProcessZone zone("UTC");
    CRemindInfo info = repeated(2'000'000, CReminder::REPEAT_EVERYDAY);
    info.SetTitle({0x4100});
    const unsigned long uid = add(info);
    store().removeEnded(2'000'000 + hour);
    open();
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000 + day);
    EXPECT_EQ(CRemindInfo::Text(entry(uid).GetTitle()), CRemindInfo::Text({0x4100}));
}

TEST_F(EndedRemindersTest, MoveOnToATimeThatHasNotEnded) {
    const ProcessZone zone("UTC");
    const unsigned long uid = add(repeated(2'000'000, CReminder::REPEAT_EVERYDAY));
    store().removeEnded(2'000'000 + 30 * day + hour - 1);  // the last second of the thirtieth repeat
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000 + 30 * day);
    store().removeEnded(2'000'000 + 30 * day + hour);
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000 + 31 * day);
}

TEST_F(EndedRemindersTest, BeginOnOneOfTheirDays) {
    const ProcessZone zone("UTC");
    const std::uint32_t saturday = 1'000 * 7 * day + 2 * day + 20 * hour;
    CRemindInfo info = repeated(saturday, CReminder::REPEAT_WEEKDAYS);
    ASSERT_TRUE(store().AddRemindItem(info, 0));
    EXPECT_EQ(info.StartTime(), saturday + 2 * day);
    EXPECT_EQ(entry(info.UID()).StartTime(), saturday + 2 * day);
}

TEST_F(EndedRemindersTest, FollowTheWallClockAcrossDaylightSaving) {
    const ProcessZone zone("Europe/Paris");
    const std::uint32_t march28 = 1'774'656'000 + 19 * hour;  // 20:00 in Paris; UTC for the middleware
    EXPECT_THAT(following(add(repeated(march28, CReminder::REPEAT_EVERYDAY)), 2),
                ElementsAre(march28 + day - hour, march28 + 2 * day - hour));
    const std::uint32_t october24 = 1'792'800'000 + 18 * hour;
    EXPECT_THAT(following(add(repeated(october24, CReminder::REPEAT_EVERYDAY)), 2),
                ElementsAre(october24 + day + hour, october24 + 2 * day + hour));
}

TEST_F(EndedRemindersTest, FollowTheWallClockOfTheZoneThatTheSetIsStartedIn) {
    unsigned long uid = 0;
    const std::uint32_t evening = 2'000 * day + 20 * hour;
    {
        const ProcessZone zone("UTC");
        uid = add(repeated(evening, CReminder::REPEAT_EVERYDAY));
    }
    const ProcessZone zone("Asia/Tokyo");
    open();
    EXPECT_EQ(entry(uid).StartTime(), evening - 9 * hour);
}

TEST_F(EndedRemindersTest, StayWhatTheyAreWhenTheSetIsStartedInAnotherZoneAndTheyDoNotRepeat) {
    unsigned long uid = 0;
    {
        const ProcessZone zone("UTC");
        uid = add(manualEntry(2'000 * day, hour));
    }
    const ProcessZone zone("Asia/Tokyo");
    open();
    EXPECT_EQ(entry(uid).StartTime(), 2'000 * day);
}

}  // namespace
}  // namespace epgset
