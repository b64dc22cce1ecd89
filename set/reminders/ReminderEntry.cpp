#include "set/reminders/ReminderEntry.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <tuple>

#include "host/TCChannel.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ReceptionModes.h"
#include "set/text/Utf16.h"

namespace epgset {

std::string titleOf(const CRemindInfo& info) {
    return utf8FromUtf16(CRemindInfo::Text(info.GetTitle()), std::endian::big);
}

std::string synopsisOf(const CRemindInfo& info) {
    return utf8FromUtf16(CRemindInfo::Text(info.Synopsis()), std::endian::native);
}

int tvModeOf(const CRemindInfo& info) {
    return TCChannel::GetTVMode(info.ChannelType());
}

ReminderEntry entryOf(const CRemindInfo& info) {
    ReminderEntry entry;
    entry.info = info;
    entry.info.SetStartTime(0);
    entry.start = std::int64_t{info.StartTime()} - clock().localOffset();
    if (const DaySet days = entry.days(); days != 0) {
        entry.wallStart = firstRepeat(wallClockAt(entry.start), days);
        entry.start = unixAtWallClock(*entry.wallStart);
    }
    return entry;
}

CRemindInfo infoOf(const ReminderEntry& entry) {
    CRemindInfo info = entry.info;
    info.SetStartTime(static_cast<std::uint32_t>(entry.start + clock().localOffset()));
    return info;
}

std::string refusalOf(const ReminderEntry& entry) {
    if (receptionModeBySourceType(entry.info.ChannelType()) < 0) return "it has no channel";
    if (entry.info.Duration() == 0) return "it lasts no second";
    if (entry.start < 0 || entry.end() > std::numeric_limits<std::uint32_t>::max()) {
        return "its time is none that the middleware can count";
    }
    const CReminder::REMINDER_REPEAT_TYPE repeat = entry.info.RepeatType();
    if (repeat == CReminder::REPEAT_INVALID) return "its repetition is invalid";
    if (repeat == CReminder::REPEAT_MANUAL && entry.days() == 0) return "it repeats on no day";
    return {};
}

bool overlap(const ReminderEntry& one, const ReminderEntry& other) {
    if (one.waits() || other.waits()) return false;
    return std::max(one.start, other.start) < std::min(one.end(), other.end());
}

bool startsBefore(const ReminderEntry& one, const ReminderEntry& other) {
    return std::tuple(one.start, one.info.UID()) < std::tuple(other.start, other.info.UID());
}

}  // namespace epgset
