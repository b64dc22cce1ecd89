// Guides of a stated size, for measuring.
#pragma once

#include <cstdint>
#include <memory>

#include "set/guide/Guide.h"

namespace epgbench {

/// A time at which the synthetic guides begin: 2026-08-23T00:00:00Z.
constexpr std::int64_t guideStart = 1'787'443'200;

/// A guide of `channels` digital channels on three antennas with `programmesEach` programmes of 45
/// minutes, from guideStart on. The same numbers give the same guide.
std::shared_ptr<const epgset::Guide> syntheticGuide(int channels, int programmesEach);

}  // namespace epgbench
