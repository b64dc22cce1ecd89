// The order in which channels stand in a guide.
#pragma once

#include <cstdint>
#include <tuple>

#include "set/guide/Guide.h"
#include "set/middleware/ReceptionModes.h"

namespace epgset {

/// Where a mode stands among all modes, as a key to order by: first its row in receptionModes(); modes
/// without a row stand behind all others, by their number.
inline std::tuple<std::uint32_t, int> modeRank(int tvMode) {
    return {static_cast<std::uint32_t>(receptionModeByTvMode(tvMode)), tvMode};
}

/// Where a channel stands in a guide, as a key to order by.
inline std::tuple<std::tuple<std::uint32_t, int>, int, int> channelRank(const Channel& channel) {
    return {modeRank(channel.tvMode), channel.major, channel.minor};
}

}  // namespace epgset
