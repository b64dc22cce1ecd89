#include "set/epghost/FillRepair.h"

#include <utility>

namespace epgset {

FillRepair::FillRepair(CallIn callIn, std::chrono::seconds refillAge)
    : callIn_(std::move(callIn)), refillAge_(refillAge) {}

void FillRepair::failed(Clock::time_point now) {
    {
        const std::lock_guard lock(mutex_);
        if (now < asked_) return;
        asked_ = now + pause;
    }
    callIn_(pause);
    callIn_(pause + refillAge_);
}

}  // namespace epgset
