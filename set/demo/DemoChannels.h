// The line-up of the demo guide.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "set/demo/DemoSchedule.h"

namespace epgset {

/// A channel of the demo guide.
struct DemoChannel {
    std::string_view antenna;  ///< name of a reception mode
    std::int16_t major;
    std::int16_t minor;  ///< 0: none
    std::string_view name;
    std::span<const DemoSlot> day;  ///< empty: a channel without programmes
    std::span<const DemoShow> shows;
    bool radio = false;
    bool scrambled = false;
};

std::span<const DemoChannel> demoChannels();

}  // namespace epgset
