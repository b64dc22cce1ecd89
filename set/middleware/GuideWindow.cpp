#include "set/middleware/GuideWindow.h"

#include <algorithm>
#include <utility>

#include "host/Logger.h"
#include "set/events/EventRing.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/middleware");
    return logger;
}

/// The channel of that number on one antenna, or null. Minor 0 is looked for as it stands first.
const Channel* findOnAntenna(const Guide& guide, int tvMode, int major, int minor) {
    const Channel* const exact = guide.find(tvMode, major, minor);
    if (exact || minor != 0) return exact;
    const auto channels = guide.channelsOf(tvMode);
    const auto first =
        std::ranges::find(channels, major, [](const Channel& channel) -> int { return channel.major; });
    return first == channels.end() ? nullptr : &*first;
}

const Channel* findOnAnyAntenna(const Guide& guide, std::optional<int> preferred, int major, int minor) {
    if (preferred) {
        if (const Channel* found = findOnAntenna(guide, *preferred, major, minor)) return found;
    }
    for (const ReceptionMode& mode : receptionModes()) {
        if (const Channel* found = findOnAntenna(guide, mode.tvMode, major, minor)) return found;
    }
    return nullptr;
}

}  // namespace

void GuideWindow::ChangeChannel(int major, int minor) {
    const std::shared_ptr<const Guide> guide = currentGuide();
    const std::optional<Key> now = tuned();
    const std::optional<int> preferred = now ? std::optional(now->tvMode) : std::nullopt;
    if (const Channel* found = findOnAnyAntenna(*guide, preferred, major, minor)) {
        setTuned(*found);
    } else {
        log().warning("Cannot change to the channel %d-%d: no antenna has it", major, minor);
    }
}

bool GuideWindow::tune(int tvMode, int major, int minor) {
    const std::shared_ptr<const Guide> guide = currentGuide();
    const Channel* const found = guide->find(tvMode, major, minor);
    if (found) setTuned(*found);
    return found != nullptr;
}

std::shared_ptr<const Channel> GuideWindow::channel() const {
    const std::optional<Key> key = tuned();
    if (!key) return nullptr;
    std::shared_ptr<const Guide> guide = currentGuide();
    const Channel* const found = guide->find(key->tvMode, key->major, key->minor);
    return found ? std::shared_ptr<const Channel>(std::move(guide), found) : nullptr;
}

void GuideWindow::reset() {
    const std::lock_guard lock(mutex_);
    tuned_.reset();
}

std::optional<GuideWindow::Key> GuideWindow::tuned() const {
    const std::lock_guard lock(mutex_);
    return tuned_;
}

void GuideWindow::setTuned(const Channel& channel) {
    log().debug("Tuned to channel %d-%d of antenna %d", static_cast<int>(channel.major),
                static_cast<int>(channel.minor), channel.tvMode);
    const Key key{channel.tvMode, channel.major, channel.minor};
    {
        const std::lock_guard lock(mutex_);
        if (tuned_ == key) return;
        tuned_ = key;
    }
    events().publish(event::channelChanged, channelPath(key.tvMode, key.major, key.minor));
}

}  // namespace epgset
