// One entry of the reminder store.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/CRemindInfo.h"
#include "set/reminders/RepeatTimes.h"

namespace epgset {

/// Where an entry stands that records a series.
enum class SeriesPlace {
    None = 0,     ///< it records no series
    Chosen = 1,   ///< at the programme that it was made for
    Found = 2,    ///< at a programme of the series that the set has found
    Waiting = 3,  ///< the guide has no next programme; its times are those of the last one
};

/// An entry as the store keeps it. Its time is a UNIX time, so that neither daylight saving nor another zone
/// of the middleware's clock moves it; what repeats follows the wall clock.
struct ReminderEntry {
    CRemindInfo info;  ///< all but its start, which counts in local seconds
    std::int64_t start = 0;
    std::optional<WallSeconds> wallStart;  ///< of an entry that repeats: its next time on the wall clock
    SeriesPlace series = SeriesPlace::None;
    std::string seriesTitle;  ///< UTF-8; empty for an entry that records no series

    /// Whether it is to be recorded, alone or with its series.
    bool records() const {
        const CReminder::RESERVE_TYPE type = info.ReserveType();
        return type == CReminder::RESERVE_RECORD || type == CReminder::RESERVE_SERIES;
    }

    bool waits() const { return series == SeriesPlace::Waiting; }
    std::int64_t end() const { return start + info.Duration(); }
    DaySet days() const { return repeatDays(info.RepeatType(), info.ManualRepeat()); }
};

/// The texts of an entry in UTF-8; empty for one that was not made from a programme.
std::string titleOf(const CRemindInfo& info);
std::string synopsisOf(const CRemindInfo& info);

/// The number of an entry's antenna; -1 when it has none.
int tvModeOf(const CRemindInfo& info);

/// An entry of what the middleware counts in local seconds. One that repeats begins on the first of its days
/// that is not before its start.
ReminderEntry entryOf(const CRemindInfo& info);

/// The entry for the middleware: its start in local seconds.
CRemindInfo infoOf(const ReminderEntry& entry);

/// Why the store does not take an entry; empty when it does. Refused are an entry without a channel type, one
/// that lasts no second or beyond the 32 bits of the middleware's times, and one that repeats on no day.
std::string refusalOf(const ReminderEntry& entry);

/// Whether two entries share a second. Entries that touch do not; one that waits for a programme shares none.
bool overlap(const ReminderEntry& one, const ReminderEntry& other);

/// The earlier one first; of those that start together the one that was added first.
bool startsBefore(const ReminderEntry& one, const ReminderEntry& other);

}  // namespace epgset
