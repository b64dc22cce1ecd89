// The reception modes of the set: its antennas.
#pragma once

#include <span>
#include <string_view>

namespace epgset {

/// One way to receive channels.
struct ReceptionMode {
    int tvMode;             ///< the middleware's number of the mode
    int sourceType;         ///< the number that key lists are asked for; also its channel type
    std::string_view name;  ///< the word of the line-up, such as "AIR"
};

/// All modes, in the order in which they are listed everywhere.
std::span<const ReceptionMode> receptionModes();

/// Position of a mode in receptionModes(), by its number or by its name; -1 when there is none.
int receptionModeByTvMode(int tvMode);
int receptionModeBySourceType(int sourceType);
int receptionModeByName(std::string_view name);

}  // namespace epgset
