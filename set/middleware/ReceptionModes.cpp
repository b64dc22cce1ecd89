#include "set/middleware/ReceptionModes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace epgset {

namespace {

constexpr std::array<ReceptionMode, 18> modes{{
    {0, 2, "AIR"},
    {1, 4, "CABLE"},
    {2, 6, "POD"},
    {3, 7, "SATELLITE"},
    {4, 8, "FREESAT"},
    {5, 9, "CANALDIGITALSAT"},
    {6, 10, "TIVUSAT"},
    {7, 11, "CD_TVV"},
    {8, 14, "ASTRA_HD_PLUS"},
    {9, 15, "TNTSAT"},
    {10, 16, "DIGITAL_PLUS"},
    {11, 17, "CYFRA_PLUS"},
    {12, 18, "DSMART"},
    {13, 19, "DIGITURK"},
    {19, 22, "CI_OP_1"},
    {20, 23, "CI_OP_2"},
    {22, 12, "BS"},
    {23, 13, "CS"},
}};

/// Positions by a number of the modes; both numbers are below this.
using Positions = std::array<std::int8_t, 24>;

constexpr Positions positionsBy(int ReceptionMode::*number) {
    Positions positions{};
    positions.fill(-1);
    for (std::size_t position = 0; position < modes.size(); ++position) {
        positions[static_cast<std::size_t>(modes[position].*number)] = static_cast<std::int8_t>(position);
    }
    return positions;
}

// Tables, because channels are ordered and found by these, many times for each request.
constexpr Positions byTvMode = positionsBy(&ReceptionMode::tvMode);
constexpr Positions bySourceType = positionsBy(&ReceptionMode::sourceType);

int positionIn(const Positions& positions, int number) {
    const auto index = static_cast<std::size_t>(number);
    return index < positions.size() ? positions[index] : -1;
}

}  // namespace

std::span<const ReceptionMode> receptionModes() {
    return modes;
}

int receptionModeByTvMode(int tvMode) {
    return positionIn(byTvMode, tvMode);
}

int receptionModeBySourceType(int sourceType) {
    return positionIn(bySourceType, sourceType);
}

int receptionModeByName(std::string_view name) {
    const auto mode = std::ranges::find(modes, name, &ReceptionMode::name);
    return mode == modes.end() ? -1 : static_cast<int>(mode - modes.begin());
}

}  // namespace epgset
