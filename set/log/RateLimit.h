// Limits how many lines a second are written.
#pragma once

#include <chrono>
#include <cstdint>

namespace epgset {

/// A token bucket: lets a burst of lines pass and after it so many a second. Used under a lock.
class RateLimit {
public:
    using Time = std::chrono::steady_clock::time_point;

    RateLimit(double burst, double perSecond) : burst_(burst), perSecond_(perSecond), tokens_(burst) {}

    /// Whether a line that comes at `now` passes; one that does not is counted.
    bool admit(Time now);

    /// How many lines were held back since the last call.
    std::uint64_t takeDropped();

private:
    double burst_;
    double perSecond_;
    double tokens_;
    Time last_{};
    std::uint64_t dropped_ = 0;
};

}  // namespace epgset
