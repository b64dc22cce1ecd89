#include "tests/support/FailingAllocations.h"

#include <atomic>

namespace {

std::atomic<std::size_t> failingBytes{0};  ///< 0: none fails
std::atomic<int> passing{-1};              ///< allocations before the one that fails; negative: none does

bool fails(std::size_t bytes) {
    if (passing.load(std::memory_order_relaxed) >= 0 && passing-- == 0) return true;
    return bytes != 0 && bytes == failingBytes.load(std::memory_order_relaxed);
}

}  // namespace

extern "C" {

void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
// Visible, since the linker refers libraries' own calls of malloc to these names while it checks them.
__attribute__((visibility("default"))) void* __wrap_malloc(std::size_t bytes);
__attribute__((visibility("default"))) void* __wrap_calloc(std::size_t count, std::size_t bytes);

void* __wrap_malloc(std::size_t bytes) {
    return fails(bytes) ? nullptr : __real_malloc(bytes);
}

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return fails(count * bytes) ? nullptr : __real_calloc(count, bytes);
}
}

namespace epgtest {

FailingAllocations::FailingAllocations(std::size_t bytes) {
    failingBytes = bytes;
}

FailingAllocations::~FailingAllocations() {
    failingBytes = 0;
}

FailingAllocation::FailingAllocation(int passed) {
    passing = passed;
}

FailingAllocation::~FailingAllocation() {
    passing = -1;
}

bool FailingAllocation::happened() const {
    return passing < 0;
}

}  // namespace epgtest
