#include "set/text/IsoTime.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstdlib>

namespace epgset {

std::string isoTime(const std::tm& wallClock, long secondsEast) {
    const long minutes = std::labs(secondsEast) / 60;
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}{}{:02}:{:02}", wallClock, secondsEast < 0 ? '-' : '+',
                       minutes / 60, minutes % 60);
}

}  // namespace epgset
