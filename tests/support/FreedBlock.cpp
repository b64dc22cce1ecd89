#include "tests/support/FreedBlock.h"

#include <atomic>

namespace {

std::atomic<const void*> watchedBlock{nullptr};  ///< null: none is watched
std::atomic<int> timesFreed{0};

}  // namespace

extern "C" {

void __real_free(void* block);
// Visible, since the linker refers libraries' own calls of free to this name while it checks them.
__attribute__((visibility("default"))) void __wrap_free(void* block);

void __wrap_free(void* block) {
    if (block != nullptr && block == watchedBlock.load(std::memory_order_relaxed)) ++timesFreed;
    __real_free(block);
}
}

namespace epgtest {

FreedBlock::FreedBlock(const void* block) {
    timesFreed = 0;
    watchedBlock = block;
}

FreedBlock::~FreedBlock() {
    watchedBlock = nullptr;
}

int FreedBlock::times() const {
    return timesFreed;
}

}  // namespace epgtest
