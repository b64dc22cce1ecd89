#include "set/middleware/ReceptionModes.h"

#include <algorithm>
#include <array>

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

template <typename Member, typename Value>
int positionOf(Member member, const Value& value) {
    const auto mode = std::ranges::find(modes, value, member);
    return mode == modes.end() ? -1 : static_cast<int>(mode - modes.begin());
}

}  // namespace

std::span<const ReceptionMode> receptionModes() {
    return modes;
}

int receptionModeByTvMode(int tvMode) {
    return positionOf(&ReceptionMode::tvMode, tvMode);
}

int receptionModeBySourceType(int sourceType) {
    return positionOf(&ReceptionMode::sourceType, sourceType);
}

int receptionModeByName(std::string_view name) {
    return positionOf(&ReceptionMode::name, name);
}

}  // namespace epgset
