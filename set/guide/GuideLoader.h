// From guide files and a line-up to the guide cache.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "set/guide/EventIds.h"
#include "set/guide/Guide.h"
#include "set/guide/GuideCollector.h"

namespace epgset {

/// A file that a guide is read from.
struct GuideInput {
    GuideInput(std::filesystem::path file, std::string called)
        : path(std::move(file)), name(std::move(called)) {}
    /// One that is called by its path.
    GuideInput(const std::string& file) : GuideInput(file, file) {}
    GuideInput(const std::filesystem::path& file) : GuideInput(file, file.string()) {}

    std::filesystem::path path;
    std::string name;  ///< what messages call it
};

/// What a guide is made from.
struct GuideSources {
    std::vector<GuideInput> guides;               ///< XMLTV, plain or compressed with gzip
    std::optional<std::filesystem::path> lineup;  ///< TOML
    std::size_t maxProgrammes = 90000;            ///< 0: no bound of any kind but that of the event ids
    std::int64_t now = 0;                         ///< the set's clock, UNIX seconds
};

/// What was read of one guide file.
struct GuideContent {
    std::size_t channels = 0;
    std::size_t programmes = 0;
    std::size_t skipped = 0;  ///< programmes that could not be used
};

/// A guide, and what became of its sources.
struct LoadedGuide {
    std::shared_ptr<const Guide> guide;
    std::vector<GuideContent> contents;  ///< of each of the guides, in their order
    std::size_t programmesSkipped = 0;   ///< of unknown channels, without a readable start, ending before it
    /// UNIX time at which the plug-in's table, filled as time goes by, would no longer hold what comes near;
    /// loading again before then leaves out what is needed. Nothing: the table holds it all.
    std::optional<std::int64_t> fitsUntil;
};

/// Reads the line-up and the guides. What can be lived with is logged as a warning: one a guide for what of
/// it was skipped or cut, and one for what the bounds dropped. Throws GuideError for a file that cannot be
/// used; `ids` is as it was then. The ids that it gives out are not saved: the caller does so when the guide
/// is in use.
LoadedGuide loadGuide(const GuideSources& sources, EventIds& ids);

/// The same, but the channels and programmes are what `collect` puts into the collector, as one guide, and
/// not those of files.
LoadedGuide loadGuideOf(const std::function<void(GuideCollector&)>& collect, const GuideSources& sources,
                        EventIds& ids);

}  // namespace epgset
