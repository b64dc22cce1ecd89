#include "set/database/DatabaseFaults.h"

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace epgset {
namespace {

std::atomic<int> faultCount{0};  ///< spares the list when there are none
std::mutex faultsMutex;          ///< guards faults and what they have seen
std::vector<DatabaseFault*> faults;

}  // namespace

DatabaseFault::DatabaseFault(Operation operation, std::string sql, int first, int times)
    : operation_(operation), sql_(std::move(sql)), first_(first), times_(times) {
    const std::lock_guard lock(faultsMutex);
    faults.push_back(this);
    ++faultCount;
}

DatabaseFault::~DatabaseFault() {
    const std::lock_guard lock(faultsMutex);
    std::erase(faults, this);
    --faultCount;
}

bool DatabaseFault::areSet() {
    return faultCount.load(std::memory_order_relaxed) != 0;
}

bool DatabaseFault::hits(Operation operation, std::string_view sql) {
    if (!areSet()) return false;
    const std::lock_guard lock(faultsMutex);
    bool hit = false;
    for (DatabaseFault* fault : faults) {
        if (fault->operation_ != operation || sql.find(fault->sql_) == std::string_view::npos) continue;
        ++fault->seen_;
        hit = hit || (fault->seen_ >= fault->first_ && fault->seen_ < fault->first_ + fault->times_);
    }
    return hit;
}

}  // namespace epgset
