#include "set/epghost/GuideNews.h"

#include <new>
#include <utility>

namespace epgset {
namespace {

constexpr const char* programmesPath = "/ws/epg2/programs";

}  // namespace

void GuideNews::reloaded(Clock::time_point now) {
    const std::lock_guard lock(mutex_);
    first_ = true;
    second_ = now + passedOver_;
}

void GuideNews::maintained(Clock::time_point now) {
    {
        const std::lock_guard lock(mutex_);
        const bool second = second_ && *second_ <= now;
        if (second) second_.reset();
        const bool first = std::exchange(first_, false);
        if (!first && !second) return;
    }
    try {
        ring_.publish(event::guideReloaded, programmesPath);
    } catch (const std::bad_alloc&) {
        ring_.lose();
    }
}

}  // namespace epgset
