#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::SizeIs;

/// Runs a function in a process of its own, which is killed as soon as the function is done; answers what
/// it wrote down last.
int resultOfKilledProcess(const std::function<int()>& function) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int result = function();
        const bool told = write(ends[1], &result, sizeof result) == sizeof result;
        kill(getpid(), told ? SIGKILL : SIGABRT);
    }
    ::close(ends[1]);
    int result = -1;
    EXPECT_EQ(read(ends[0], &result, sizeof result), static_cast<ssize_t>(sizeof result));
    ::close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    return result;
}

using ReminderPowerCutTest = ReminderFixture;

TEST_F(ReminderPowerCutTest, LosesNothingThatWasAnswered) {
    const unsigned long before = add(manualEntry(2'000'000, 60));
    const unsigned long removed = add(manualEntry(2'500'000, 60));
    close();  // no open database goes into another process
    const int added = resultOfKilledProcess([&] {
        ReminderStore store(file());
        CRemindInfo info = manualEntry(3'000'000, 60);
        if (!store.AddRemindItem(info, 0)) return 0;
        if (!store.UpdateRemindItemByUid(before, manualEntry(2'100'000, 60), 0, 1)) return 0;
        if (store.DeleteRemindItemByUid(removed) != 1) return 0;
        return static_cast<int>(info.UID());
    });
    open();
    EXPECT_THAT(uidsOf(all()), ::testing::ElementsAre(before, static_cast<unsigned long>(added)));
    EXPECT_EQ(entry(before).StartTime(), 2'100'000U);
}

TEST_F(ReminderPowerCutTest, KeepsTheUidsOfWhatWasRemovedBefore) {
    close();  // no open database goes into another process
    const int last = resultOfKilledProcess([&] {
        ReminderStore store(file());
        CRemindInfo info = manualEntry(3'000'000, 60);
        if (!store.AddRemindItem(info, 0) || store.DeleteRemindItemByUid(info.UID()) != 1) return 0;
        return static_cast<int>(info.UID());
    });
    open();
    EXPECT_GT(add(manualEntry(3'000'000, 60)), static_cast<unsigned long>(last));
}

TEST_F(ReminderPowerCutTest, LeavesEarlierEntriesWholeWhenTheDiskRunsFull) {
    close();  // no open database goes into another process
    const int kept = resultOfKilledProcess([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{200'000, 200'000};  // bytes a file may grow to
        setrlimit(RLIMIT_FSIZE, &small);
        ReminderStore store(file());
        CRemindInfo info = manualEntry(3'000'000, 60);
        info.SetSynopsis(CRemindInfo::Text(5'000, 'x'));
        int added = 0;
        while (added < 1'000 && store.AddRemindItem(info, 0))
            ++added;
        std::vector<CRemindInfo> items;
        int count = 0;
        store.GetRemindItemByType(count, items, 2);
        return count == added && added < 1'000 ? added : -2;
    });
    EXPECT_GT(kept, 0);
    open();
    EXPECT_THAT(all(), SizeIs(static_cast<std::size_t>(kept)));
    EXPECT_NE(add(manualEntry(4'000'000, 60)), 0U);
}

}  // namespace
}  // namespace epgset
