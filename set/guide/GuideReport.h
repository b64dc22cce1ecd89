// What became of the last reading of a guide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace epgset {

/// A guide, or the line-up, as it was last read. The counts are those of the last time that it was of use.
struct GuideReport {
    std::string name;       ///< its path or URL
    std::int64_t time = 0;  ///< when it was last read, UNIX seconds
    std::size_t channels = 0;
    std::size_t programmes = 0;
    std::size_t skipped = 0;  ///< programmes that could not be used
    std::string error;        ///< why it was of no use the last time; empty: it was
};

}  // namespace epgset
