// The processor time that a piece of work takes.
#pragma once

#include <ctime>

#include <algorithm>
#include <array>

namespace epgbench {

/// What the calling thread has used so far, in milliseconds.
inline double threadMilliseconds() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

/// The milliseconds that one call of `work` takes: the median of seven batches, each long enough for the
/// clock.
template <typename Work>
double medianMilliseconds(const Work& work) {
    constexpr double batchMilliseconds = 20;
    work();
    int calls = 1;
    const auto batch = [&work, &calls] {
        const double begin = threadMilliseconds();
        for (int i = 0; i < calls; ++i)
            work();
        return threadMilliseconds() - begin;
    };
    while (batch() < batchMilliseconds)
        calls *= 2;
    std::array<double, 7> batches{};
    for (double& milliseconds : batches)
        milliseconds = batch() / calls;
    std::nth_element(batches.begin(), batches.begin() + batches.size() / 2, batches.end());
    return batches[batches.size() / 2];
}

}  // namespace epgbench
