// How the days of the demo guide are divided.
#pragma once

#include <span>

#include "set/demo/DemoShow.h"

namespace epgset {

/// A stretch of a day and what is shown in it.
struct DemoSlot {
    int minutes;
    DemoKind kind;
};

// One division a genre. Its lengths sum to a day or to an even part of one; it is repeated until the day is
// full.
std::span<const DemoSlot> generalDay();
std::span<const DemoSlot> newsDay();
std::span<const DemoSlot> filmDay();
std::span<const DemoSlot> sportDay();
std::span<const DemoSlot> childrensDay();
std::span<const DemoSlot> musicDay();
std::span<const DemoSlot> documentaryDay();
std::span<const DemoSlot> radioDay();

}  // namespace epgset
