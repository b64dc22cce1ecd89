// What has happened in the set lately, for those who want to be told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace epgset {

/// Something that has happened. Its name says what, its path to which resource of the web server.
struct Event {
    std::uint64_t id = 0;
    std::string name;
    std::string path;
};

/// The names that events have.
namespace event {
constexpr std::string_view guideReloaded = "guide-reloaded";        ///< path: /ws/epg2/programs
constexpr std::string_view scheduleAdded = "schedule-added";        ///< path: of the schedule
constexpr std::string_view scheduleChanged = "schedule-changed";    ///< path: of the schedule
constexpr std::string_view scheduleRemoved = "schedule-removed";    ///< path: of the schedule
constexpr std::string_view scheduleDue = "schedule-due";            ///< path: of the schedule
constexpr std::string_view recordingStarted = "recording-started";  ///< path: of the schedule
constexpr std::string_view recordingEnded = "recording-ended";      ///< path: of the schedule
constexpr std::string_view channelChanged = "channel-changed";      ///< path: of the channel
}  // namespace event

/// The path of a channel of the service: "/ws/epg2/channels/cid-003-7".
std::string channelPath(int tvMode, int major, int minor);

/// The path of a reminder or recording of the service: "/ws/epg2/schedules/sch_id_17".
std::string schedulePath(unsigned long uid);

/// The last events, numbered upwards without a gap. Used by any thread.
class EventRing {
public:
    /// Keeps that many events. Numbers begin after `firstId`, so that those of an earlier run of the set can
    /// be told from its own.
    explicit EventRing(std::size_t capacity, std::uint64_t firstId = 0);

    /// Enters an event and wakes the listeners.
    /// Without memory it throws and nothing is entered.
    void publish(std::string_view name, std::string path);

    /// Counts an event that could not be entered. Who asks for what came after an earlier one learns that
    /// some is gone.
    void lose() noexcept;

    /// The events after the one with that number; nothing when some of them are gone or when the number is
    /// none that was given.
    std::optional<std::vector<Event>> after(std::uint64_t id) const;

    /// How many events of each name there were since the ring was made.
    std::map<std::string, std::uint64_t> counts() const;

    /// The number of the last event; that before the first while there is none.
    std::uint64_t last() const;

    /// Has `wake` called after each event, by the thread that entered it, until `removeListener`. It must not
    /// call the ring.
    int addListener(std::function<void()> wake);

    /// When it comes back, the listener is neither running nor called again.
    void removeListener(int listener);

private:
    void wakeListeners();

    const std::size_t capacity_;
    mutable std::mutex mutex_;
    std::deque<Event> events_;                                      ///< guarded by mutex_
    std::uint64_t last_;                                            ///< guarded by mutex_
    std::map<std::string, std::uint64_t> counts_;                   ///< guarded by mutex_
    std::vector<std::pair<int, std::function<void()>>> listeners_;  ///< guarded by listenerMutex_
    int lastListener_ = 0;                                          ///< guarded by listenerMutex_
    std::mutex listenerMutex_;
};

/// The set's events.
EventRing& events();

}  // namespace epgset
