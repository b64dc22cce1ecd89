#include <atomic>
#include <thread>

#include "set/reminders/DueReminders.h"
#include "tests/set/reminders/ReminderFixture.h"
#include "tests/support/FakeOrderTaker.h"

namespace epgset {
namespace {

using ::testing::IsEmpty;

using ReminderThreadsTest = ReminderFixture;

TEST_F(ReminderThreadsTest, MayAskAndChangeAtTheSameTime) {
    constexpr int rounds = 20;
    constexpr int writers = 2;
    std::atomic<int> failures{0};
    std::atomic<bool> done{false};
    const auto change = [&](std::uint32_t start) {
        for (int round = 0; round < rounds; ++round) {
            CRemindInfo info = manualEntry(start, 60);
            if (!store().AddRemindItem(info, 0)) ++failures;
            if (!store().UpdateRemindItemByUid(info.UID(), manualEntry(start + 1, 60), 0, 1)) ++failures;
            if (store().DeleteRemindItemByUid(info.UID()) != 1) ++failures;
        }
    };
    const auto ask = [&] {
        GuideWindow window;
        epgtest::FakeOrderTaker recorder;
        DueReminders due(store(), window, recorder);
        while (!done) {
            std::vector<CRemindInfo> items;
            int count = 0;
            if (!store().GetRemindItemByType(count, items, 2) || count > writers) ++failures;
            CRemindInfo info;
            store().ExistSameTimeRemindItem(manualEntry(2'000'000, 60), info);
            due.check(2'000'030);  // while one of the entries runs
            store().followGuide(2'000'030);
            if (store().nextDue(2'000'030, 9).size() > 1) ++failures;
        }
    };
    std::thread asking(ask);
    std::thread first(change, 2'000'000);
    std::thread second(change, 3'000'000);
    first.join();
    second.join();
    done = true;
    asking.join();
    EXPECT_EQ(failures, 0);
    EXPECT_THAT(all(), IsEmpty());
}

}  // namespace
}  // namespace epgset
