#include "set/events/EventRing.h"

#include <chrono>
#include <utility>

#include "set/middleware/ChannelTexts.h"

namespace epgset {
namespace {

constexpr std::size_t ringCapacity = 1024;

/// Milliseconds since 1970: more than an earlier run of the set can have counted up to, and few enough for
/// clients that keep numbers as floating point.
std::uint64_t numberAtStart() {
    using namespace std::chrono;
    return static_cast<std::uint64_t>(
        duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

}  // namespace

std::string channelPath(int tvMode, int major, int minor) {
    return "/ws/epg2/channels/" + channelIdText(tvMode, major, minor);
}

std::string schedulePath(unsigned long uid) {
    return "/ws/epg2/schedules/" + scheduleIdText(uid);
}

EventRing::EventRing(std::size_t capacity, std::uint64_t firstId) : capacity_(capacity), last_(firstId) {}

void EventRing::publish(std::string_view name, std::string path) {
    {
        const std::lock_guard lock(mutex_);
        std::uint64_t& count = counts_[std::string(name)];
        if (events_.size() == capacity_) events_.pop_front();
        events_.push_back({last_ + 1, std::string(name), std::move(path)});
        ++last_;
        ++count;
    }
    wakeListeners();
}

void EventRing::lose() noexcept {
    {
        const std::lock_guard lock(mutex_);
        events_.clear();
        ++last_;
    }
    wakeListeners();
}

void EventRing::wakeListeners() {
    const std::lock_guard lock(listenerMutex_);
    for (const auto& [number, wake] : listeners_)
        wake();
}

std::optional<std::vector<Event>> EventRing::after(std::uint64_t id) const {
    const std::lock_guard lock(mutex_);
    const std::uint64_t gone = last_ - events_.size();
    if (id < gone || id > last_) return std::nullopt;
    return std::vector<Event>(events_.begin() + static_cast<std::ptrdiff_t>(id - gone), events_.end());
}

std::map<std::string, std::uint64_t> EventRing::counts() const {
    const std::lock_guard lock(mutex_);
    return counts_;
}

std::uint64_t EventRing::last() const {
    const std::lock_guard lock(mutex_);
    return last_;
}

int EventRing::addListener(std::function<void()> wake) {
    const std::lock_guard lock(listenerMutex_);
    listeners_.emplace_back(++lastListener_, std::move(wake));
    return lastListener_;
}

void EventRing::removeListener(int listener) {
    const std::lock_guard lock(listenerMutex_);
    std::erase_if(listeners_, [listener](const auto& entry) { return entry.first == listener; });
}

EventRing& events() {
    static EventRing ring(ringCapacity, numberAtStart());
    return ring;
}

}  // namespace epgset
