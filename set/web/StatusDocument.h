// What the set tells about itself.
#pragma once

#include <string>

namespace epgset {

/// What does not change while the set runs.
struct SetFacts {
    std::string pvr;   ///< the word of what the set says of its ability to record
    std::string zone;  ///< the process's time zone by name
};

/// The document of "/set/status" as it is now, compact JSON.
std::string statusDocument(const SetFacts& facts);

}  // namespace epgset
