// What the set does when reminders come due and when they end.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "set/middleware/GuideWindow.h"
#include "set/recorder/RecordingOrder.h"
#include "set/reminders/ReminderStore.h"

namespace epgset {

/// Tunes to the channel of what is to be viewed, orders what is to be recorded, and tidies the store. Used
/// by one thread at a time; the store and the window may be in use by others.
///
/// The clock may be moved. An occurrence that has come due stays due until it ends, though the clock goes
/// back before its start: it comes due once. What the clock passes over from its start to its end does not
/// come due, and what ended while the set was off neither; both are logged. What the clock moves into comes
/// due late. What has ended does not come again when the clock goes back, which is logged too.
class DueReminders {
public:
    /// How often check() is to be called, so that nothing is late by more than a second.
    static constexpr int periodMilliseconds = 500;

    /// The store, the window and the recorder must outlive the object.
    DueReminders(ReminderStore& store, GuideWindow& window, OrderTaker& recorder)
        : store_(store), window_(window), recorder_(recorder) {}

    /// Ends the orders of what has ended, was removed or was replaced by something else; then removes what
    /// has ended or moves it on; then tunes to or orders what has come due, once for each occurrence, also
    /// where it began before the set was started. What the recorder does not record any more is no longer
    /// shown as RECORDING. `now` is a UNIX time.
    void check(std::int64_t now);

    /// The set goes down: ends the orders, which are given again when it starts.
    void stop();

private:
    /// What came due of an entry. Another time, channel or kind of the entry is another occurrence, and what
    /// is recorded has its end in the order too.
    struct Occurrence {
        explicit Occurrence(const ReminderEntry& entry);
        bool operator==(const Occurrence&) const = default;

        std::int64_t start;
        std::int64_t end;  ///< 0 for what is viewed
        int channelType;
        int major;
        int minor;
        bool recorded;
    };

    struct Due {
        Occurrence occurrence;
        bool ordered;  ///< whether the recorder carries out its order
    };

    void noteClock(std::int64_t now);
    void noteLost();
    void endOrders(std::int64_t now);
    void warnOfMissed(std::int64_t now);
    bool isDue(const ReminderEntry& entry) const;
    void endOrder(unsigned long uid, Due& due, RecordingEnd why);
    void view(const CRemindInfo& info);
    bool order(const ReminderEntry& entry);

    ReminderStore& store_;
    GuideWindow& window_;
    OrderTaker& recorder_;
    std::map<unsigned long, Due> due_;         ///< by UID, until the entry goes or moves on
    std::optional<std::int64_t> lastChecked_;  ///< nothing before the first check
};

}  // namespace epgset
