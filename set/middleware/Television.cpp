#include "set/middleware/Television.h"

#include <mutex>
#include <utility>

#include "set/middleware/StateRevision.h"

namespace epgset {
namespace {

// Constant-initialised, so that they exist before any other static object asks.
constinit std::mutex guideMutex;
constinit std::shared_ptr<const Guide> guideInUse;  // guarded by guideMutex; null: an empty one

std::shared_ptr<const Guide> emptyGuide() {
    static const std::shared_ptr<const Guide> empty = std::make_shared<Guide>();
    return empty;
}

}  // namespace

std::shared_ptr<const Guide> currentGuide() {
    {
        const std::lock_guard lock(guideMutex);
        if (guideInUse) return guideInUse;
    }
    return emptyGuide();
}

void useGuide(std::shared_ptr<const Guide> guide) {
    {
        const std::lock_guard lock(guideMutex);
        guideInUse.swap(guide);
        countChange(StatePart::Guide);
    }
    // The last reference to the old guide may go here, after the lock: freeing a big one takes a while.
}

}  // namespace epgset
