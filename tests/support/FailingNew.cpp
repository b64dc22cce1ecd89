#include "tests/support/FailingNew.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int failuresLeft = 0;  ///< negative: without end

bool fails() noexcept {
    if (failuresLeft > 0) {
        --failuresLeft;
        return true;
    }
    return failuresLeft < 0;
}

void* allocate(std::size_t bytes) noexcept {
    return fails() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}

}  // namespace

void* operator new(std::size_t bytes) {
    void* block = allocate(bytes);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new[](std::size_t bytes) {
    return operator new(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

namespace epgtest {

FailingNew::FailingNew(int times) {
    failuresLeft = times;
}

FailingNew::~FailingNew() {
    failuresLeft = 0;
}

}  // namespace epgtest
