// Lets allocations fail: all of one size, or one of them.
#pragma once

#include <cstddef>

namespace epgtest {

/// While it lives, every malloc and calloc of exactly `bytes` bytes fails, as far as the program's own
/// code asks for it; libraries are not touched. One at a time. A program that uses it compiles
/// FailingAllocations.cpp in and links with -Wl,--wrap=malloc,--wrap=calloc.
class FailingAllocations {
public:
    explicit FailingAllocations(std::size_t bytes);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;
};

/// While it lives, one malloc or calloc fails: the one before which `passed` others went well. Otherwise as
/// above, and not together with it.
class FailingAllocation {
public:
    explicit FailingAllocation(int passed);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether it has failed.
    bool happened() const;
};

/// Runs `attempt(n)` with the allocation number n failing, for each n from 0 until none is left to fail, and
/// answers how many there were.
template <typename Attempt>
int withEachAllocationFailing(const Attempt& attempt) {
    for (int n = 0;; ++n) {
        const FailingAllocation fault(n);
        attempt(n, fault);
        if (!fault.happened()) return n;
    }
}

}  // namespace epgtest
