#include "host/CReminder.h"

#include <atomic>

#include "set/middleware/Television.h"

namespace {

std::atomic<CReminder*> store{nullptr};

}  // namespace

CReminder::~CReminder() = default;

CReminder* CReminder::GetInstance() {
    return store.load(std::memory_order_acquire);
}

void epgset::useReminder(CReminder* reminder) {
    store.store(reminder, std::memory_order_release);
}
