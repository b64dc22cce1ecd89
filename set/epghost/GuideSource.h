// Where the set's guide comes from.
#pragma once

#include <cstdint>
#include <memory>

#include "set/epghost/Options.h"
#include "set/epghost/StateFolder.h"
#include "set/guide/EventIds.h"
#include "set/guide/Guide.h"

namespace epgset {

/// Reads the guides and the line-up that the options name, or makes the demo guide, which a line-up shapes as
/// well. Used by one thread at a time.
class GuideSource {
public:
    /// The options must outlive the source.
    GuideSource(const Options& options, const StateFolder& state);

    /// The guide as its files are now. Writes nothing. Throws GuideError.
    std::shared_ptr<const Guide> load();

    /// When to load again at the latest, in UNIX seconds: before the plug-in's table no longer holds what
    /// comes near, or before the demo guide has run out. The far future when there is no need.
    std::int64_t loadAgainBy() const { return loadAgainBy_; }

    /// Keeps the event ids that load() gave out for the next start. Throws GuideError.
    void keepEventIds();

private:
    const Options& options_;
    EventIds eventIds_;
    std::int64_t loadAgainBy_;
};

}  // namespace epgset
