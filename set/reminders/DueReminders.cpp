#include "set/reminders/DueReminders.h"

#include <memory>

#include "host/Logger.h"
#include "set/events/EventRing.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

/// Seconds by which a clock may be put right without a word.
constexpr std::int64_t clockCorrection = 60;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/reminders");
    return logger;
}

/// Whether the set does something when the entry comes due; the middleware knows other kinds.
bool comesDue(const ReminderEntry& entry) {
    return entry.records() || entry.info.ReserveType() == CReminder::RESERVE_VIEW;
}

/// The channel of an entry, apart from the guide; null where the line-up does not have it.
std::shared_ptr<const Channel> channelOf(const CRemindInfo& info) {
    const std::shared_ptr<const Guide> guide = currentGuide();
    const Channel* const channel = guide->find(tvModeOf(info), info.Major(), info.Minor());
    return channel ? std::make_shared<const Channel>(*channel) : nullptr;
}

}  // namespace

DueReminders::Occurrence::Occurrence(const ReminderEntry& entry)
    : start(entry.start),
      end(entry.records() ? entry.end() : 0),
      channelType(entry.info.ChannelType()),
      major(entry.info.Major()),
      minor(entry.info.Minor()),
      recorded(entry.records()) {}

void DueReminders::check(std::int64_t now) {
    noteClock(now);
    noteLost();
    endOrders(now);
    warnOfMissed(now);
    store_.removeEnded(now);
    for (const ReminderEntry& entry : store_.running(now)) {
        if (isDue(entry) || !comesDue(entry)) continue;
        const unsigned long uid = entry.info.UID();
        Due& due = due_.insert_or_assign(uid, Due{Occurrence(entry), false}).first->second;
        events().publish(event::scheduleDue, schedulePath(uid));
        if (entry.records()) {
            due.ordered = order(entry);
        } else {
            view(entry.info);
        }
    }
    lastChecked_ = now;
}

void DueReminders::stop() {
    for (auto& [uid, due] : due_)
        endOrder(uid, due, RecordingEnd::SetStops);
    due_.clear();
}

void DueReminders::noteClock(std::int64_t now) {
    if (lastChecked_ && now < *lastChecked_ - clockCorrection) {
        log().warning("The clock went back by %lld s: reminders that came due do not come due again",
                      static_cast<long long>(*lastChecked_ - now));
    }
}

void DueReminders::noteLost() {
    for (auto& [uid, due] : due_) {
        if (!due.ordered || recorder_.records(uid)) continue;
        due.ordered = false;
        store_.recordingEnded(uid);
    }
}

void DueReminders::endOrders(std::int64_t now) {
    for (auto next = due_.begin(); next != due_.end();) {
        auto& [uid, due] = *next;
        const std::optional<ReminderEntry> entry = store_.find(uid);
        const bool stays = entry && !entry->waits() && Occurrence(*entry) == due.occurrence;
        if (stays && entry->end() <= now) endOrder(uid, due, RecordingEnd::Ended);
        if (!stays) endOrder(uid, due, entry ? RecordingEnd::Replaced : RecordingEnd::Removed);
        next = stays ? std::next(next) : due_.erase(next);
    }
}

void DueReminders::endOrder(unsigned long uid, Due& due, RecordingEnd why) {
    if (!due.ordered) return;
    due.ordered = false;
    store_.recordingEnded(uid);
    recorder_.end(uid, why);
}

void DueReminders::warnOfMissed(std::int64_t now) {
    for (const ReminderEntry& entry : store_.ended(now)) {
        if (isDue(entry) || !comesDue(entry)) continue;
        log().warning(
            "Reminder %lu (\"%s\") %s", entry.info.UID(), titleOf(entry.info),
            lastChecked_ ? "did not come due: the clock has passed over it" : "ended while the set was off");
        due_.insert_or_assign(entry.info.UID(), Due{Occurrence(entry), false});
    }
}

bool DueReminders::isDue(const ReminderEntry& entry) const {
    const auto found = due_.find(entry.info.UID());
    return found != due_.end() && found->second.occurrence == Occurrence(entry);
}

void DueReminders::view(const CRemindInfo& info) {
    if (window_.tune(tvModeOf(info), info.Major(), info.Minor())) {
        log().debug("Reminder %lu is due: tuned to %d-%d", info.UID(), static_cast<int>(info.Major()),
                    static_cast<int>(info.Minor()));
    } else {
        log().warning("Reminder %lu is due, but there is no channel %d-%d", info.UID(),
                      static_cast<int>(info.Major()), static_cast<int>(info.Minor()));
    }
}

bool DueReminders::order(const ReminderEntry& entry) {
    const CRemindInfo& info = entry.info;
    const RecordingOrder order{info.UID(),  channelOf(info), tvModeOf(info), info.Major(),    info.Minor(),
                               entry.start, entry.end(),     titleOf(info),  synopsisOf(info)};
    if (!recorder_.begin(order)) return false;
    store_.recordingBegan(order.uid, order.start);
    return true;
}

}  // namespace epgset
