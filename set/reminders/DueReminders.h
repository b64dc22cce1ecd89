// What the set does when reminders come due and when they end.
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "set/middleware/GuideWindow.h"
#include "set/reminders/ReminderStore.h"

namespace epgset {

/// Tunes to the channel of what is to be viewed and tidies the store. Used by one thread; both the store and
/// the window may be in use by others.
class DueReminders {
public:
    /// How often check() is to be called, so that nothing is late by more than a second.
    static constexpr int periodMilliseconds = 500;

    /// The store and the window must outlive the object.
    DueReminders(ReminderStore& store, GuideWindow& window) : store_(store), window_(window) {}

    /// Tunes to the channel of each reminder to view that has come due, once for each of its times, then
    /// removes what has ended or moves it on. One that began before the set was started is due until it
    /// ends. `now` is a UNIX time.
    void check(std::int64_t now);

private:
    void view(const CRemindInfo& info);

    ReminderStore& store_;
    GuideWindow& window_;
    std::set<std::pair<unsigned long, std::int64_t>>
        viewed_;  ///< UID and start of what is on and was tuned to
};

}  // namespace epgset
