#include "set/web/MaintenanceTimer.h"

#include <algorithm>
#include <utility>

namespace epgset {

MaintenanceTimer::MaintenanceTimer(std::function<void()> maintain, Clock::duration period)
    : maintain_(std::move(maintain)), period_(period) {
    if (period_ > Clock::duration::zero()) periodic_ = Clock::now() + period_;
    thread_ = std::thread([this] { run(); });
}

MaintenanceTimer::~MaintenanceTimer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void MaintenanceTimer::callIn(Clock::duration delay) {
    {
        const std::lock_guard lock(mutex_);
        demanded_.push_back(Clock::now() + delay);
    }
    changed_.notify_one();
}

void MaintenanceTimer::run() {
    while (waitForNext()) {
        maintain_();
    }
}

bool MaintenanceTimer::waitForNext() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        auto due = periodic_;
        const auto first = std::min_element(demanded_.begin(), demanded_.end());
        if (first != demanded_.end() && (!due || *first < *due)) due = *first;
        if (!due) {
            changed_.wait(lock);
        } else if (const auto now = Clock::now(); now < *due) {
            changed_.wait_until(lock, *due);
        } else {
            // One call serves everything that is due by now.
            std::erase_if(demanded_, [now](auto time) { return time <= now; });
            if (periodic_ && *periodic_ <= now) periodic_ = now + period_;
            return true;
        }
    }
    return false;
}

}  // namespace epgset
