#include "set/reminders/DueReminders.h"

#include "host/Logger.h"
#include "host/TCChannel.h"

namespace epgset {
namespace {

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/reminders");
    return logger;
}

}  // namespace

void DueReminders::check(std::int64_t now) {
    decltype(viewed_) viewed;
    for (const ReminderEntry& entry : store_.running(now)) {
        if (entry.info.ReserveType() != CReminder::RESERVE_VIEW) continue;
        const std::pair time(entry.info.UID(), entry.start);
        if (!viewed_.contains(time)) view(entry.info);
        viewed.insert(time);
    }
    viewed_.swap(viewed);
    store_.removeEnded(now);
}

void DueReminders::view(const CRemindInfo& info) {
    if (window_.tune(TCChannel::GetTVMode(info.ChannelType()), info.Major(), info.Minor())) {
        log().debug("Reminder %lu is due: tuned to %d-%d", info.UID(), static_cast<int>(info.Major()),
                    static_cast<int>(info.Minor()));
    } else {
        log().warning("Reminder %lu is due, but there is no channel %d-%d", info.UID(),
                      static_cast<int>(info.Major()), static_cast<int>(info.Minor()));
    }
}

}  // namespace epgset
