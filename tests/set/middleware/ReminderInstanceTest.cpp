#include <gtest/gtest.h>

#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "set/middleware/Television.h"
#include "tests/support/TestReminders.h"

namespace epgset {
namespace {

TEST(ReminderInstance, IsWhatIsInUse) {
    EXPECT_EQ(CReminder::GetInstance(), nullptr);
    {
        epgtest::TestReminders reminders;
        EXPECT_EQ(CReminder::GetInstance(), &reminders);
    }
    EXPECT_EQ(CReminder::GetInstance(), nullptr);
}

TEST(RemindInfo, IsCopiedWithItsTexts) {
    CRemindInfo info;
    info.SetUid(7);
    info.SetTitle({0x4100, 0x4200});
    info.SetSynopsis({'x'});
    const CRemindInfo copy = info;
    info.Initialise();
    EXPECT_EQ(info.UID(), 0U);
    EXPECT_EQ(info.GetTitle()[0], 0);
    EXPECT_EQ(copy.UID(), 7U);
    EXPECT_EQ(CRemindInfo::Text(copy.GetTitle()), CRemindInfo::Text({0x4100, 0x4200}));
    EXPECT_EQ(CRemindInfo::Text(copy.Synopsis()), CRemindInfo::Text({'x'}));
}

}  // namespace
}  // namespace epgset
