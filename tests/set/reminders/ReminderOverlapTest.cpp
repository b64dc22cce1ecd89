#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReminderOverlapTest : public ReminderFixture {
protected:
    std::vector<unsigned long> overlapping(const CRemindInfo& info) {
        std::vector<CRemindInfo> items(1);
        store().GetOverlappingRemindItems(info, items);
        CRemindInfo first;
        EXPECT_EQ(store().ExistSameTimeRemindItem(info, first), !items.empty());
        EXPECT_EQ(first.UID(), items.empty() ? 0 : items.front().UID());
        return uidsOf(items);
    }
};

TEST_F(ReminderOverlapTest, NeedsOneSharedSecond) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    EXPECT_THAT(overlapping(manualEntry(2'000'099, 100)), ElementsAre(uid));
    EXPECT_THAT(overlapping(manualEntry(1'999'901, 100)), ElementsAre(uid));
    EXPECT_THAT(overlapping(manualEntry(2'000'010, 10)), ElementsAre(uid));
    EXPECT_THAT(overlapping(manualEntry(1'900'000, 200'000)), ElementsAre(uid));
}

TEST_F(ReminderOverlapTest, IsNotThereWhereEntriesTouch) {
    add(manualEntry(2'000'000, 100));
    EXPECT_THAT(overlapping(manualEntry(2'000'100, 100)), IsEmpty());
    EXPECT_THAT(overlapping(manualEntry(1'999'900, 100)), IsEmpty());
    EXPECT_THAT(overlapping(manualEntry(2'000'050, 0)), IsEmpty());
}

TEST_F(ReminderOverlapTest, IsFoundWhateverTheChannel) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    CRemindInfo elsewhere = manualEntry(2'000'000, 100, CReminder::RESERVE_VIEW);
    elsewhere.Set(9, 1, 0, Satellite, 0);
    EXPECT_THAT(overlapping(elsewhere), ElementsAre(uid));
}

TEST_F(ReminderOverlapTest, ListsByStart) {
    const unsigned long third = add(manualEntry(2'000'200, 100));
    const unsigned long first = add(manualEntry(2'000'000, 100));
    const unsigned long second = add(manualEntry(2'000'100, 100));
    add(manualEntry(2'000'300, 100));
    EXPECT_THAT(overlapping(manualEntry(2'000'050, 200)), ElementsAre(first, second, third));
}

TEST_F(ReminderOverlapTest, LeavesOutTheEntryItself) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    const unsigned long other = add(manualEntry(2'000'050, 100));
    EXPECT_THAT(overlapping(entry(uid)), ElementsAre(other));
    store().DeleteRemindItemByUid(other);
    EXPECT_THAT(overlapping(entry(uid)), IsEmpty());
}

TEST_F(ReminderOverlapTest, CountsTheNextTimeOfWhatRepeats) {
    const ProcessZone zone("UTC");
    CRemindInfo daily = manualEntry(2'000'000, 100);
    daily.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
    const unsigned long uid = add(daily);
    EXPECT_THAT(overlapping(manualEntry(2'000'000, 100)), ElementsAre(uid));
    EXPECT_THAT(overlapping(manualEntry(2'000'000 + 86'400, 100)), IsEmpty());
    store().removeEnded(2'000'100);
    EXPECT_THAT(overlapping(manualEntry(2'000'000 + 86'400, 100)), ElementsAre(uid));
}

TEST_F(ReminderOverlapTest, CountsTheFirstTimeOfAnEntryThatIsToRepeat) {
    const ProcessZone zone("UTC");
    const std::uint32_t saturday = 2 * 86'400;  // 3 January 1970
    const unsigned long uid = add(manualEntry(saturday + 2 * 86'400, 100));
    CRemindInfo weekdays = manualEntry(saturday, 100);
    weekdays.SetRepeat(CReminder::REPEAT_WEEKDAYS, 0);
    EXPECT_THAT(overlapping(weekdays), ElementsAre(uid));
}

}  // namespace
}  // namespace epgset
