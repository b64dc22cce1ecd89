// What the set tells about itself.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "set/guide/GuideReport.h"

namespace epgset {

/// What the set is started with.
struct SetFacts {
    std::string pvr;   ///< the word of what the set says of its ability to record
    std::string zone;  ///< the process's time zone by name
    std::function<std::vector<GuideReport>()> guides = {};  ///< what became of each guide; may be empty
};

/// The document of "/set/status" as it is now, compact JSON.
std::string statusDocument(const SetFacts& facts);

}  // namespace epgset
