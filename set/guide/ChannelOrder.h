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

/// The same as one number, for a mode of less than 24 bits.
inline std::uint64_t channelNumber(int tvMode, int major, int minor) {
    const auto row = static_cast<std::uint64_t>(receptionModeByTvMode(tvMode) & 0xFF);
    const auto mode = (static_cast<std::uint64_t>(tvMode) + 0x80'0000) & 0xFF'FFFF;
    const auto ascending = [](int number) { return static_cast<std::uint64_t>(number + 0x8000) & 0xFFFF; };
    return row << 56 | mode << 32 | ascending(major) << 16 | ascending(minor);
}

}  // namespace epgset
