#include "set/epghost/GuideRefresh.h"

#include <utility>

#include "host/Logger.h"
#include "set/epghost/ServiceManager.h"
#include "set/middleware/Clock.h"

namespace epgset {
namespace {

/// A guide that will no longer be good within that time is made again.
constexpr std::chrono::seconds margin{600};

/// How often it is looked whether a load has ended.
constexpr std::chrono::milliseconds loadCheckPeriod{20};

}  // namespace

GuideRefresh::GuideRefresh(GuideSource& source) : source_(source), watch_(source.files()), reload_(source) {}

void GuideRefresh::ask() {
    load_ = askServers_ = true;
}

std::chrono::milliseconds GuideRefresh::check(
    const std::function<void(std::shared_ptr<const Guide>)>& putInUse) {
    if (auto loaded = reload_.takeOutcome()) {
        if (loaded->guide) {
            putInUse(std::move(loaded->guide));
        } else {
            Container::Logger::logger("set/epghost").error("the guide stays as it was: %s", loaded->error);
        }
        tellServiceManager(ServiceState::Ready);
    }
    if (reload_.running()) return loadCheckPeriod;
    if (watch_.changed() || source_.loadAgainBy() - clock().now() <= margin.count()) load_ = true;
    if (std::chrono::steady_clock::now() >= source_.fetchAgainAt()) ask();
    if (!load_) return GuideWatch::period;
    tellServiceManager(ServiceState::Reloading);
    watch_.markKnown();
    reload_.begin(askServers_);
    load_ = askServers_ = false;
    return loadCheckPeriod;
}

}  // namespace epgset
