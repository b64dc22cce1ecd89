// What is wrong with guides and a line-up.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "set/guide/GuideCollector.h"

namespace epgset {

/// Something wrong with a file. An error keeps the set from using the file; the set lives with a warning.
struct CheckFinding {
    bool isError = false;
    std::string file;
    int line = 0;  ///< from 1; 0: the file as a whole
    std::string message;
};

/// How much a guide holds, and what of it the set passes over.
struct CheckedGuide {
    std::string file;
    GuideCounts counts;
    std::size_t sameStart = 0;  ///< programmes that start with a later one of their channel, which counts
};

/// What a line-up holds.
struct CheckedLineup {
    std::string file;
    std::size_t entries = 0;
    std::size_t hidden = 0;
    std::size_t inNoGuide = 0;
};

/// What the set would show.
struct CheckedSet {
    std::size_t channels = 0;
    std::size_t programmes = 0;
    std::size_t programmesDropped = 0;
};

/// What a check came to.
struct CheckReport {
    std::vector<CheckedGuide> guides;
    std::optional<CheckedLineup> lineup;
    std::optional<CheckedSet> shown;     ///< nothing: there are errors
    std::vector<CheckFinding> findings;  ///< by file, the line-up first, and line

    bool hasErrors() const;
};

/// Reads the line-up, unless its name is empty, and the guides to their ends, whatever is wrong with one of
/// them. `maxProgrammes` is the bound of the guide cache.
CheckReport checkGuides(const std::vector<std::string>& guides, const std::string& lineup,
                        std::size_t maxProgrammes);

}  // namespace epgset
