#include "set/epghost/GuideSource.h"

#include <limits>

#include "host/Logger.h"
#include "set/demo/DemoGuide.h"
#include "set/guide/GuideLoader.h"
#include "set/middleware/Clock.h"

namespace epgset {
namespace {

constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t day = 86400;

}  // namespace

GuideSource::GuideSource(const Options& options, const StateFolder& state)
    : options_(options), eventIds_(state.path()), loadAgainBy_(never) {}

std::shared_ptr<const Guide> GuideSource::load() {
    if (!options_.guides.empty()) return loadFiles();
    const std::int64_t now = clock().now();
    auto guide = demoGuide(now);
    loadAgainBy_ = now + day;
    return guide;
}

std::shared_ptr<const Guide> GuideSource::loadFiles() {
    GuideSources sources;
    sources.guides.assign(options_.guides.begin(), options_.guides.end());
    if (!options_.lineup.empty()) sources.lineup = options_.lineup;
    sources.maxProgrammes = options_.maxProgrammes;
    sources.now = clock().now();
    const LoadedGuide loaded = loadGuide(sources, eventIds_);
    loadAgainBy_ = loaded.fitsUntil.value_or(never);
    Container::Logger::logger("set/epghost")
        .debug("the guide has %zu channels and %zu programmes; loading took %.2f s",
               loaded.guide->channels().size(), loaded.guide->programmes().size(), loaded.seconds);
    return loaded.guide;
}

void GuideSource::keepEventIds() {
    eventIds_.save(clock().now());
}

}  // namespace epgset
