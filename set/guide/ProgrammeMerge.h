// Programmes of several guides become one schedule a channel.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "set/guide/GuideCollector.h"
#include "set/guide/TextPool.h"

namespace epgset {

/// A programme as it stands in the schedule of its channel.
struct ScheduledProgramme {
    std::uint32_t channel = 0;
    std::uint32_t start = 0;
    std::uint32_t stop = 0;
    bool inSeries = false;
    std::string_view title;
    std::string_view synopsis;
};

/// Orders programmes by channel and start and leaves one for each start: the parts of a clump are joined,
/// else the last one counts. A missing stop becomes the next start on the channel, or half an hour after the
/// start where none follows. Joined titles are kept in `texts`.
std::vector<ScheduledProgramme> mergeProgrammes(std::vector<CollectedProgramme> programmes, TextPool& texts);

}  // namespace epgset
