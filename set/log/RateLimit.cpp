#include "set/log/RateLimit.h"

#include <algorithm>
#include <utility>

namespace epgset {

bool RateLimit::admit(Time now) {
    if (now > last_) {
        const double seconds = std::chrono::duration<double>(now - last_).count();
        tokens_ = std::min(burst_, tokens_ + seconds * perSecond_);
        last_ = now;
    }
    if (tokens_ < 1) {
        ++dropped_;
        return false;
    }
    tokens_ -= 1;
    return true;
}

std::uint64_t RateLimit::takeDropped() {
    return std::exchange(dropped_, 0);
}

}  // namespace epgset
