#include "set/memory/MemoryShortage.h"

#include <utility>

namespace epgset {
namespace {

constinit thread_local bool noted = false;

}  // namespace

void noteMemoryShortage() noexcept {
    noted = true;
}

bool takeMemoryShortage() noexcept {
    return std::exchange(noted, false);
}

}  // namespace epgset
