// The channels of a guide, by the line-up and by the guides' own statements.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "set/guide/Guide.h"
#include "set/guide/GuideCollector.h"
#include "set/guide/Lineup.h"

namespace epgset {

/// The channels that the set shows, and where those of the guides went.
struct ChannelList {
    /// What became of a channel of the guides.
    enum class Fate { Unknown, Hidden, Shown };

    struct Place {
        Fate fate = Fate::Unknown;
        std::size_t index = 0;  ///< in `channels`, where it is shown
    };

    std::vector<Channel> channels;
    std::vector<Place> places;         ///< by the collector's channels
    std::vector<std::string> missing;  ///< ids of the line-up that no guide defines
    std::size_t withoutNumber = 0;     ///< channels left out because their antenna has no number left
};

/// Numbers of the line-up go first, then those that the guides state, in file order, then the lowest free
/// ones. An entry of the line-up that no guide defines makes a channel all the same, that one can tune to and
/// record by time; programmes that name it count.
ChannelList listChannels(const std::vector<CollectedChannel>& collected, const Lineup& lineup);

}  // namespace epgset
