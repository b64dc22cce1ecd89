// How many programmes the guide cache holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "set/guide/Guide.h"
#include "set/guide/ProgrammeMerge.h"

namespace epgset {

/// The bounds of a guide. Those of one channel's event ids hold always.
struct GuideBounds {
    std::size_t maxProgrammes = 0;  ///< 0: nothing is dropped for the number or for the table
    std::size_t maxTablePages = 0;  ///< of the plug-in's table, by estimate
    std::int64_t now = 0;           ///< UNIX seconds
};

/// What bounding a guide came to.
struct BoundedGuide {
    std::size_t dropped = 0;
    /// Without a bound: whether the plug-in's table would, by estimate, not hold what it is to be filled
    /// with.
    bool exceedsTable = false;
    /// When programmes that come near would first make the table larger than its bound; nothing: never, or
    /// there is no bound. A guide that is loaded afresh by then fits again. At least ten hours from `now`.
    std::optional<std::int64_t> fitsUntil;
};

/// Leaves out what is more than the bounds allow: first programmes that have ended, the oldest first, then
/// those that start last. For the table only programmes count that the plug-in would put into it now: those
/// that start within the next seven days, and a day more, or earlier. `channels` are in the guide's order;
/// `programmes` are by channel and start and stay so, `channel` an index into `channels`.
BoundedGuide applyBounds(std::vector<ScheduledProgramme>& programmes, const std::vector<Channel>& channels,
                         const GuideBounds& bounds);

}  // namespace epgset
