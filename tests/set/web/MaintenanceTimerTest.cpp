#include "set/web/MaintenanceTimer.h"

#include <gtest/gtest.h>

#include <atomic>

namespace epgset {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

/// Counts calls and waits for them.
class Calls {
public:
    void call() {
        const std::lock_guard lock(mutex_);
        ++count_;
        changed_.notify_all();
    }

    bool reach(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return count_ >= count; });
    }

    int count() {
        const std::lock_guard lock(mutex_);
        return count_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

TEST(MaintenanceTimer, CallsAtThePeriod) {
    Calls calls;
    MaintenanceTimer timer([&] { calls.call(); }, milliseconds(5));
    EXPECT_TRUE(calls.reach(3));
}

TEST(MaintenanceTimer, CallsOnDemand) {
    Calls calls;
    MaintenanceTimer timer([&] { calls.call(); }, hours(4));
    timer.callIn(milliseconds(0));
    EXPECT_TRUE(calls.reach(1));
    timer.callIn(milliseconds(0));
    EXPECT_TRUE(calls.reach(2));
}

TEST(MaintenanceTimer, CallsAtOnceAndAgainLater) {
    Calls calls;
    MaintenanceTimer timer([&] { calls.call(); }, hours(0));
    const auto begin = MaintenanceTimer::Clock::now();
    timer.callIn(milliseconds(0));
    timer.callIn(milliseconds(50));
    EXPECT_TRUE(calls.reach(2));
    EXPECT_GE(MaintenanceTimer::Clock::now() - begin, milliseconds(50));
}

TEST(MaintenanceTimer, CallsTheSoonerFirst) {
    Calls calls;
    MaintenanceTimer timer([&] { calls.call(); }, hours(0));
    timer.callIn(hours(1));
    timer.callIn(milliseconds(1));
    EXPECT_TRUE(calls.reach(1));
    EXPECT_EQ(1, calls.count());
}

TEST(MaintenanceTimer, DoesNotCallBeforeItsTime) {
    Calls calls;
    {
        MaintenanceTimer timer([&] { calls.call(); }, hours(4));
        timer.callIn(hours(1));
    }
    EXPECT_EQ(0, calls.count());
}

}  // namespace
}  // namespace epgset
