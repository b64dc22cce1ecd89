// A point in time as an option gives it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace epgset {

/// The UNIX seconds of an ISO 8601 time: date, "T", hours, minutes and optionally seconds, then "Z", an
/// offset (+hh, +hhmm or +hh:mm, also with "-") or nothing, which means UTC. Nothing for any other text,
/// for a date or time that does not exist and for one that is not within 0 to 2^32 - 1.
std::optional<std::int64_t> parseTimeOption(std::string_view text);

}  // namespace epgset
