#include "set/database/SqliteMemory.h"

#include <malloc.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <mutex>

namespace epgset {
namespace {

/// The bytes of the blocks that are in use. Only their sum matters, so no order is asked for.
std::atomic<std::size_t> held = 0;

/// Counts what is about to be taken; false, and nothing counted, when it is too much.
bool take(std::size_t bytes) {
    if (held.fetch_add(bytes, std::memory_order_relaxed) + bytes <= mostSqliteMemory) return true;
    held.fetch_sub(bytes, std::memory_order_relaxed);
    return false;
}

void giveBack(std::size_t bytes) {
    held.fetch_sub(bytes, std::memory_order_relaxed);
}

int sizeOf(void* block) {
    return static_cast<int>(malloc_usable_size(block));
}

void* allocate(int bytes) {
    void* const block = std::malloc(static_cast<std::size_t>(bytes));
    if (block == nullptr || take(malloc_usable_size(block))) return block;
    std::free(block);
    return nullptr;
}

void release(void* block) {
    giveBack(malloc_usable_size(block));
    std::free(block);
}

/// The old block stays as it is when the new one cannot be had.
void* reallocate(void* block, int bytes) {
    const std::size_t before = malloc_usable_size(block);
    const auto wanted = static_cast<std::size_t>(bytes);
    const std::size_t growth = wanted > before ? wanted - before : 0;
    if (growth != 0 && !take(growth)) return nullptr;
    void* const moved = std::realloc(block, wanted);
    // Less than nothing is given back where the block has become larger than was asked for.
    const std::size_t after = moved == nullptr ? before : malloc_usable_size(moved);
    giveBack(before + growth - after);
    return moved;
}

int roundUp(int bytes) {
    return (bytes + 7) & ~7;
}

bool useOwnAllocator() {
    const sqlite3_mem_methods own = {allocate,     release, reallocate,
                                     sizeOf,       roundUp, [](void*) { return SQLITE_OK; },
                                     [](void*) {}, nullptr};
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &own) == SQLITE_OK &&
           sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
}

bool isOwn = false;

}  // namespace

void boundSqliteMemory() {
    static std::once_flag done;
    std::call_once(done, [] {
        isOwn = useOwnAllocator();
        if (!isOwn) sqlite3_hard_heap_limit64(static_cast<sqlite3_int64>(mostSqliteMemory));
    });
}

std::size_t sqliteMemoryUsed() {
    return isOwn ? held.load(std::memory_order_relaxed) : static_cast<std::size_t>(sqlite3_memory_used());
}

}  // namespace epgset
