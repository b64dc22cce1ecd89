// Where the set's guide comes from.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "set/epghost/Options.h"
#include "set/epghost/StateFolder.h"
#include "set/guide/DownloadedGuide.h"
#include "set/guide/EventIds.h"
#include "set/guide/Guide.h"
#include "set/guide/GuideError.h"
#include "set/guide/GuideLoader.h"
#include "set/guide/GuideReport.h"

namespace epgset {

/// Reads the guides and the line-up that the options name, or makes the demo guide, which a line-up shapes as
/// well. Used by one thread at a time, but for reports().
class GuideSource {
public:
    using SteadyTime = std::chrono::steady_clock::time_point;

    /// How often guides are fetched from their servers, and how soon again after one could not be.
    static constexpr std::chrono::hours fetchPeriod{6};
    static constexpr std::chrono::minutes fetchAgain{10};

    /// The options must outlive the source.
    GuideSource(const Options& options, const StateFolder& state);

    /// Has the next load() ask the servers of guides that are named by a URL, as the first one does.
    void askServers() { askServers_ = true; }

    /// The guide as its files are now. Writes nothing but unnamed files. A guide that was fetched and is of
    /// no use is dropped for the copy of an earlier one, where there is one. Throws GuideError.
    std::shared_ptr<const Guide> load();

    /// When to load again at the latest, in UNIX seconds: before the plug-in's table no longer holds what
    /// comes near, or before the demo guide has run out. The far future when there is no need.
    std::int64_t loadAgainBy() const { return loadAgainBy_; }

    /// When the servers are to be asked again. The far future when there are none.
    SteadyTime fetchAgainAt() const { return fetchAgainAt_; }

    /// Keeps what the next start needs of the guide that was loaded: its event ids, and the copies of what
    /// was fetched. Throws GuideError.
    void keep();

    /// The files that the guide is made from: those of the options, but not what was fetched.
    std::vector<std::filesystem::path> files() const;

    /// What became of each guide and of the line-up, in the order of the options. Used by any thread.
    std::vector<GuideReport> reports() const;

private:
    void fetch();
    GuideSources sources();
    LoadedGuide read(const GuideSources& sources);
    void reportContents(const LoadedGuide& loaded, std::int64_t now);
    void reportError(const GuideError& error, std::int64_t now);

    const Options& options_;
    EventIds eventIds_;
    std::list<DownloadedGuide> downloads_;  ///< of the options' URLs, in their order
    bool askServers_ = true;
    SteadyTime fetchAgainAt_ = SteadyTime::max();
    std::int64_t loadAgainBy_;
    mutable std::mutex reportsMutex_;
    std::vector<GuideReport> reports_;  ///< guarded by reportsMutex_; the line-up's last
};

}  // namespace epgset
