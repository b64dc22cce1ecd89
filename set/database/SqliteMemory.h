// What SQLite may hold in memory.
#pragma once

#include <cstddef>

namespace epgset {

/// The most that SQLite holds in this process, for all of its connections together: bytes.
inline constexpr std::size_t mostSqliteMemory = 256UL * 1024 * 1024;

/// Bounds what SQLite holds by mostSqliteMemory, but for what rounding adds to blocks that grow: what would
/// take more fails for want of memory. To be called before a connection is opened; further calls do nothing.
///
/// SQLite's own bound takes its one lock for each allocation and each release, which are a seventh of what a
/// small statement costs. Ours is a counter. SQLite's bound stands in where SQLite was in use already, by
/// somebody else in the process, and takes no other allocator any more.
void boundSqliteMemory();

/// What SQLite holds at the moment, in bytes.
std::size_t sqliteMemoryUsed();

}  // namespace epgset
