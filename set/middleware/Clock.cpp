#include "set/middleware/Clock.h"

#include <ctime>

namespace epgset {

namespace {

std::atomic<const Clock*> clockInUse{nullptr};

// A cached zone: 50 bits of the second it was found for, 1 for daylight saving, 13 for the minutes.
constexpr unsigned minutesBits = 13;
constexpr unsigned secondShift = minutesBits + 1;
constexpr int minutesBias = 1 << (minutesBits - 1);
constexpr std::uint64_t emptyCache = ~std::uint64_t{0};  // a second that no clock reaches

std::uint64_t packed(std::int64_t second, ZoneOffset zone) {
    return static_cast<std::uint64_t>(second) << secondShift |
           static_cast<std::uint64_t>(zone.daylightSaving ? 1 : 0) << minutesBits |
           static_cast<std::uint64_t>(zone.minutesEast + minutesBias);
}

ZoneOffset unpacked(std::uint64_t cache) {
    const auto minutes = static_cast<int>(cache & ((1U << minutesBits) - 1));
    return {minutes - minutesBias, (cache >> minutesBits & 1U) != 0};
}

bool isFor(std::uint64_t cache, std::int64_t second) {
    return cache != emptyCache &&
           cache >> secondShift == (static_cast<std::uint64_t>(second) << secondShift) >> secondShift;
}

}  // namespace

const Clock& clock() {
    static const RunningClock systemClock(Zone::Utc);
    const Clock* replaced = clockInUse.load(std::memory_order_acquire);
    return replaced ? *replaced : systemClock;
}

void useClock(const Clock* clock) {
    clockInUse.store(clock, std::memory_order_release);
}

RunningClock::RunningClock(Zone zone) : zone_(zone), follows_(true), zoneCache_(emptyCache) {
    tzset();
}

RunningClock::RunningClock(Zone zone, std::int64_t start)
    : zone_(zone),
      follows_(false),
      start_(start),
      began_(std::chrono::steady_clock::now()),
      zoneCache_(emptyCache) {
    tzset();
}

std::int64_t RunningClock::now() const {
    using std::chrono::floor;
    using std::chrono::seconds;
    if (follows_) return floor<seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    return start_ + floor<seconds>(std::chrono::steady_clock::now() - began_).count();
}

int RunningClock::zoneMinutes() const {
    return zoneNow().minutesEast;
}

bool RunningClock::daylightSaving() const {
    return zoneNow().daylightSaving;
}

ZoneOffset RunningClock::zoneNow() const {
    if (zone_ == Zone::Utc) return {};
    const std::int64_t second = now();
    const std::uint64_t cache = zoneCache_.load(std::memory_order_relaxed);
    if (isFor(cache, second)) return unpacked(cache);
    const ZoneOffset zone = localZoneAt(second);
    zoneCache_.store(packed(second, zone), std::memory_order_relaxed);
    return zone;
}

}  // namespace epgset
