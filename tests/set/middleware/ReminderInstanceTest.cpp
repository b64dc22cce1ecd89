#include <gtest/gtest.h>

#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

class EmptyReminder : public CReminder {
public:
    bool FindRemindItemFromProgram(const TCProgram&, CRemindInfo&) override { return false; }
    bool GetRemindItemByUid(unsigned long, CRemindInfo&) override { return false; }
};

TEST(ReminderInstance, IsWhatIsInUse) {
    EXPECT_EQ(CReminder::GetInstance(), nullptr);
    EmptyReminder reminder;
    useReminder(&reminder);
    EXPECT_EQ(CReminder::GetInstance(), &reminder);
    useReminder(nullptr);
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
