#include "tests/support/AllocationFaults.h"

#include <malloc.h>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

// The C library's own. The operators new and delete of the C++ library come by what stands before them here.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
void __libc_free(void* block);
}

namespace {

std::atomic<bool> active{false};
std::atomic<bool> allAfter{false};
std::atomic<bool> ofOthers{false};
std::atomic<int> passing{0};  ///< allocations before the one that fails; negative: it has failed
std::atomic<long> outstanding{0};
constinit thread_local bool ownsFault = false;

bool fails() noexcept {
    if (!active.load(std::memory_order_relaxed) || ownsFault == ofOthers.load(std::memory_order_relaxed))
        return false;
    const int before = passing.load(std::memory_order_relaxed) < 0 ? -1 : passing--;
    if (before > 0 || (before < 0 && !allAfter)) return false;
    errno = ENOMEM;
    return true;
}

void* counted(void* block) noexcept {
    if (block != nullptr) outstanding.fetch_add(1, std::memory_order_relaxed);
    return block;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t bytes) noexcept {
    return fails() ? nullptr : counted(__libc_malloc(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
    return fails() ? nullptr : counted(__libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) noexcept {
    if (fails()) return nullptr;
    void* const moved = __libc_realloc(block, bytes);
    if (block == nullptr) return counted(moved);
    if (moved == nullptr && bytes == 0) outstanding.fetch_sub(1, std::memory_order_relaxed);
    return moved;
}

void* memalign(std::size_t alignment, std::size_t bytes) noexcept {
    return fails() ? nullptr : counted(__libc_memalign(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept {
    return memalign(alignment, bytes);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) noexcept {
    void* const made = memalign(alignment, bytes);
    if (made == nullptr) return ENOMEM;
    *block = made;
    return 0;
}

void free(void* block) noexcept {
    if (block != nullptr) outstanding.fetch_sub(1, std::memory_order_relaxed);
    __libc_free(block);
}
}
#pragma GCC visibility pop

namespace epgtest {

AllocationFault::AllocationFault(int passed, Extent extent, Threads threads) {
    ownsFault = true;
    ofOthers = threads == OtherThreads;
    allAfter = extent == AndAllAfter;
    passing = passed;
    active = true;
}

AllocationFault::~AllocationFault() {
    end();
    ownsFault = false;
}

bool AllocationFault::happened() const {
    return passing < 0;
}

void AllocationFault::end() {
    active = false;
}

int faultStep() {
    return std::getenv("EPG_LONG_TESTS") != nullptr ? 1 : 5;
}

int firstFault(AllocationFault::Extent extent) {
    return extent == AllocationFault::One ? 0 : faultStep() / 2;
}

long outstandingAllocations() {
    return outstanding;
}

}  // namespace epgtest
