#include "set/epghost/GuideSource.h"

#include <algorithm>
#include <limits>
#include <string>

#include "set/demo/DemoGuide.h"
#include "set/metrics/Metrics.h"
#include "set/middleware/Clock.h"

namespace epgset {
namespace {

constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t day = 86400;

/// The folder of copies in the state folder.
constexpr const char* copiesFolder = "guides";

constexpr const char* demoGuideName = "demo";

}  // namespace

GuideSource::GuideSource(const Options& options, const StateFolder& state)
    : options_(options), eventIds_(state.path()), loadAgainBy_(never) {
    for (const std::string& guide : options.guides) {
        reports_.push_back({.name = guide, .error = {}});
        if (isGuideUrl(guide)) downloads_.emplace_back(guide, state.path() / copiesFolder);
    }
    if (options.guides.empty()) reports_.push_back({.name = demoGuideName, .error = {}});
    if (!options.lineup.empty()) reports_.push_back({.name = options.lineup, .error = {}});
}

std::shared_ptr<const Guide> GuideSource::load() {
    const std::int64_t now = clock().now();
    try {
        if (askServers_) fetch();
        for (;;) {
            try {
                const LoadedGuide loaded = read(sources());
                reportContents(loaded, now);
                return loaded.guide;
            } catch (const GuideError& error) {
                const auto guide = std::ranges::find(downloads_, error.file(), &DownloadedGuide::url);
                if (guide == downloads_.end() || !guide->drop(error.what())) throw;
            }
        }
    } catch (const GuideError& error) {
        reportError(error, now);
        throw;
    }
}

void GuideSource::fetch() {
    if (downloads_.empty()) return;
    askServers_ = false;
    fetchAgainAt_ = std::chrono::steady_clock::now() + fetchAgain;  // also where one throws
    for (DownloadedGuide& guide : downloads_)
        guide.fetch();
    const auto isFetched = [](const DownloadedGuide& guide) { return guide.problem().empty(); };
    if (std::ranges::all_of(downloads_, isFetched))
        fetchAgainAt_ = std::chrono::steady_clock::now() + fetchPeriod;
}

GuideSources GuideSource::sources() {
    GuideSources sources;
    auto download = downloads_.cbegin();
    for (const std::string& guide : options_.guides) {
        sources.guides.emplace_back(isGuideUrl(guide) ? (download++)->path() : std::filesystem::path(guide),
                                    guide);
    }
    if (!options_.lineup.empty()) sources.lineup = options_.lineup;
    sources.maxProgrammes = options_.maxProgrammes;
    sources.now = clock().now();
    return sources;
}

LoadedGuide GuideSource::read(const GuideSources& sources) {
    const bool demo = options_.guides.empty();
    LoadedGuide loaded = demo ? loadDemoGuide(sources) : loadGuide(sources, eventIds_);
    if (demo) loaded.contents = {{loaded.guide->channels().size(), loaded.guide->programmes().size(), 0}};
    loadAgainBy_ = loaded.fitsUntil.value_or(never);
    if (demo) loadAgainBy_ = std::min(loadAgainBy_, sources.now + day);
    return loaded;
}

void GuideSource::keep() {
    eventIds_.save(clock().now());
    for (DownloadedGuide& guide : downloads_)
        guide.keep();
}

std::vector<std::filesystem::path> GuideSource::files() const {
    std::vector<std::filesystem::path> files;
    for (const std::string& guide : options_.guides) {
        if (!isGuideUrl(guide)) files.emplace_back(guide);
    }
    if (!options_.lineup.empty()) files.emplace_back(options_.lineup);
    return files;
}

void GuideSource::reportContents(const LoadedGuide& loaded, std::int64_t now) {
    const std::lock_guard lock(reportsMutex_);
    for (std::size_t index = 0; index < reports_.size(); ++index) {
        GuideReport& report = reports_[index];
        report.time = now;
        const auto download = std::ranges::find(downloads_, report.name, &DownloadedGuide::url);
        report.error = download == downloads_.end() ? std::string() : download->problem();
        if (index >= loaded.contents.size()) continue;
        report.channels = loaded.contents[index].channels;
        report.programmes = loaded.contents[index].programmes;
        report.skipped = loaded.contents[index].skipped;
        metrics().countGuide(report.programmes - std::min(report.programmes, report.skipped), report.skipped);
    }
}

void GuideSource::reportError(const GuideError& error, std::int64_t now) {
    const std::lock_guard lock(reportsMutex_);
    for (GuideReport& report : reports_) {
        if (report.name != error.file()) continue;
        report.time = now;
        report.error = error.what();
    }
}

std::vector<GuideReport> GuideSource::reports() const {
    const std::lock_guard lock(reportsMutex_);
    return reports_;
}

}  // namespace epgset
