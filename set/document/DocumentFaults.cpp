#include "set/document/DocumentFaults.h"

#include <atomic>

namespace epgset {
namespace {

std::atomic<int> objectsLeft{-1};
std::atomic<bool> printingFails{false};
std::atomic<std::size_t> byteBudget{defaultDocumentByteBudget};

}  // namespace

void failDocumentObjectsAfter(int successes) noexcept {
    objectsLeft.store(successes, std::memory_order_relaxed);
}

void failDocumentPrinting(bool fail) noexcept {
    printingFails.store(fail, std::memory_order_relaxed);
}

void setDocumentByteBudget(std::size_t bytes) noexcept {
    byteBudget.store(bytes, std::memory_order_relaxed);
}

bool mayMakeDocumentObject() noexcept {
    int left = objectsLeft.load(std::memory_order_relaxed);
    while (left > 0 && !objectsLeft.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
    }
    return left != 0;
}

bool isDocumentPrintingFailing() noexcept {
    return printingFails.load(std::memory_order_relaxed);
}

std::size_t documentByteBudget() noexcept {
    return byteBudget.load(std::memory_order_relaxed);
}

}  // namespace epgset
