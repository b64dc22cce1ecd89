// Lets any allocation of the process fail, of the program and of every library.
#pragma once

#include <cstddef>

namespace epgtest {

/// While it lives, an allocation fails: the one before which `passed` others went well. With AndAllAfter,
/// so does each one after it. That goes for every malloc, calloc, realloc and operator new, SQLite's and the
/// standard library's included, of the thread that made the object, or with OtherThreads of all others. One
/// at a time. A program that uses it compiles AllocationFaults.cpp in.
class AllocationFault {
public:
    enum Extent { One, AndAllAfter };
    enum Threads { OwnThread, OtherThreads };

    explicit AllocationFault(int passed, Extent extent = One, Threads threads = OwnThread);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    /// Whether an allocation has failed.
    bool happened() const;

    /// Ends it early.
    void end();
};

/// How far apart the allocations are that a series of faults lets fail. Each of them fails where
/// EPG_LONG_TESTS is in the environment, as `./test --long` has it, and every fifth otherwise.
int faultStep();

/// The first of them. It differs by the extent, so that other allocations fail alone than with all that
/// follow.
int firstFault(AllocationFault::Extent extent);

/// Blocks that were allocated and not freed, by all threads.
long outstandingAllocations();

}  // namespace epgtest
