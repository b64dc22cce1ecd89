// Has the plug-in fill its table again after a fill that failed.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>

namespace epgset {

/// Asks for maintenance after a failure of the plug-in, which may have left its table without some of the
/// guide, or without rows, until the next fill: in a minute, and once more when the plug-in fills a table
/// again that it has filled at the time of the failure. Used by any thread.
class FillRepair {
public:
    using Clock = std::chrono::steady_clock;
    using CallIn = std::function<void(std::chrono::seconds delay)>;

    /// How long the first call waits; failures in this time ask for nothing more.
    static constexpr std::chrono::seconds pause{60};

    /// `callIn` asks for maintenance after a delay. `refillAge`: the age from which the plug-in fills a table
    /// again.
    FillRepair(CallIn callIn, std::chrono::seconds refillAge);

    /// The plug-in has failed.
    void failed(Clock::time_point now = Clock::now());

private:
    const CallIn callIn_;
    const std::chrono::seconds refillAge_;
    std::mutex mutex_;
    Clock::time_point asked_ =
        Clock::time_point::min();  ///< guarded by mutex_; until when nothing is asked for
};

}  // namespace epgset
