// Points in time as the set's files tell them: by the wall clock of the process's TZ.
#pragma once

#include <cstdint>
#include <string>

namespace epgset {

/// ISO 8601 with the offset: "2026-08-23T20:15:00+02:00".
std::string localIsoTime(std::int64_t unixSeconds);

/// For file names: "2026-08-23 20-15".
std::string localFileTime(std::int64_t unixSeconds);

}  // namespace epgset
