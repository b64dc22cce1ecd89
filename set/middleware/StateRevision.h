// What the service's answers depend on, numbered.
#pragma once

#include <cstdint>

namespace epgset {

/// One part of the set's state.
enum class StatePart {
    Guide,     ///< which guide is in use
    Bookings,  ///< the reminder store, and what of it is being recorded
    Table,     ///< the plug-in's table: its fills, and rows that were pruned
    Clients    ///< what clients may have written with requests of their own
};

/// The numbers of all parts and the zone that the middleware counts in. An answer that was made while they
/// stayed the same is the answer for as long as they do.
struct StateRevision {
    std::uint64_t guide = 0;
    std::uint64_t bookings = 0;
    std::uint64_t table = 0;
    std::uint64_t clients = 0;
    int zoneMinutes = 0;
    bool daylightSaving = false;

    bool operator==(const StateRevision&) const = default;
};

/// As it is now. By any thread.
StateRevision stateRevision();

/// Says that a part has changed or is about to: before anybody can be told that it has, and while nobody can
/// see it half changed. By any thread.
void countChange(StatePart part);

}  // namespace epgset
