// The time zone of the process.
#pragma once

#include <string>

namespace epgset {

/// The name of the process's time zone, such as "Europe/Paris": what TZ says, else the system's zone,
/// else "UTC". UTF-8, whatever bytes TZ holds.
std::string processZoneName();

}  // namespace epgset
