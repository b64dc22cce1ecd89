// When a plug-in's maintenance callback is due.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace epgset {

/// Calls a function periodically and on demand, from a thread of its own, one call at a time. The
/// destructor waits for a call that is running.
class MaintenanceTimer {
public:
    using Clock = std::chrono::steady_clock;

    /// The first call comes one period from now; a period of 0 means none but on demand.
    MaintenanceTimer(std::function<void()> maintain, Clock::duration period);
    ~MaintenanceTimer();
    MaintenanceTimer(const MaintenanceTimer&) = delete;
    MaintenanceTimer& operator=(const MaintenanceTimer&) = delete;

    /// Asks for a further call when `delay` has passed.
    void callIn(Clock::duration delay);

private:
    void run();

    /// Waits until a call is due, takes it off the list and answers whether there is one: false to end.
    bool waitForNext();

    const std::function<void()> maintain_;
    const Clock::duration period_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Clock::time_point> demanded_;
    std::optional<Clock::time_point> periodic_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace epgset
