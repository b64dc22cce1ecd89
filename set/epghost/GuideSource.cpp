#include "set/epghost/GuideSource.h"

#include <algorithm>
#include <limits>

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
    GuideSources sources;
    sources.guides.assign(options_.guides.begin(), options_.guides.end());
    if (!options_.lineup.empty()) sources.lineup = options_.lineup;
    sources.maxProgrammes = options_.maxProgrammes;
    sources.now = clock().now();
    const bool demo = options_.guides.empty();
    const LoadedGuide loaded = demo ? loadDemoGuide(sources) : loadGuide(sources, eventIds_);
    loadAgainBy_ = loaded.fitsUntil.value_or(never);
    if (demo) loadAgainBy_ = std::min(loadAgainBy_, sources.now + day);
    return loaded.guide;
}

void GuideSource::keepEventIds() {
    eventIds_.save(clock().now());
}

}  // namespace epgset
