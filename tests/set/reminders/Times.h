// Times that tests of reminders speak of, in seconds.
#pragma once

#include <cstdint>

namespace epgset {

constexpr std::uint32_t day = 86'400;
constexpr std::uint32_t hour = 3'600;

// Paris in 2026: daylight saving from 29 March 01:00 UTC to 25 October 01:00 UTC.
constexpr std::int64_t march29 = 1'774'742'400;
constexpr std::int64_t october25 = 1'792'886'400;

}  // namespace epgset
