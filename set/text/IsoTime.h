// Points in time as ISO 8601 writes them.
#pragma once

#include <ctime>
#include <string>

namespace epgset {

/// "2026-08-23T20:15:00+02:00" of a wall clock's date and time, and how many seconds the clock is ahead of
/// UTC.
std::string isoTime(const std::tm& wallClock, long secondsEast);

}  // namespace epgset
