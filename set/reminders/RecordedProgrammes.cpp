#include "set/reminders/RecordedProgrammes.h"

#include <algorithm>
#include <utility>

namespace epgset {
namespace {

/// Seconds after its end for which a programme is remembered. No guide shows programmes of that long ago as
/// still to come, unless the clock is set back by more.
constexpr std::int64_t memory = std::int64_t{60} * 86400;

}  // namespace

RecordedProgrammes::RecordedProgrammes(OwnDatabase& database)
    : database_(database),
      insert_(database,
              "INSERT OR REPLACE INTO recorded (channel_type, major, minor, start_utc, end_utc, title)"
              " VALUES (?, ?, ?, ?, ?, ?)"),
      forget_(database, "DELETE FROM recorded WHERE end_utc < ?") {
    OwnStatement all(database, "SELECT channel_type, major, minor, start_utc, end_utc, title FROM recorded");
    while (all.step()) {
        programmes_.push_back({static_cast<int>(all.integer(0)), static_cast<int>(all.integer(1)),
                               static_cast<int>(all.integer(2)), all.integer(3), all.integer(4),
                               all.text(5)});
    }
}

RecordedProgrammes::Programme RecordedProgrammes::programmeOf(const ReminderEntry& entry) {
    const CRemindInfo& info = entry.info;
    return {info.ChannelType(), info.Major(), info.Minor(), entry.start, entry.end(), titleOf(info)};
}

void RecordedProgrammes::add(const ReminderEntry& entry, std::int64_t now) {
    Programme added = programmeOf(entry);
    if (added.title.empty()) return;
    programmes_.reserve(programmes_.size() + 1);  // so that it is remembered if it is written
    OwnTransaction transaction(database_);
    forget_.bind(now - memory).step();
    insert_.bind(added.channelType).bind(added.major).bind(added.minor);
    insert_.bind(added.start).bind(added.end).bind(added.title).step();
    transaction.commit();
    std::erase_if(programmes_, [&](const Programme& programme) {
        return programme.end < now - memory ||
               (programme.channelType == added.channelType && programme.major == added.major &&
                programme.minor == added.minor && programme.start == added.start);
    });
    programmes_.push_back(std::move(added));
}

bool RecordedProgrammes::contains(const ReminderEntry& entry) const {
    const Programme wanted = programmeOf(entry);
    return std::ranges::any_of(programmes_, [&](const Programme& programme) {
        return programme.channelType == wanted.channelType && programme.major == wanted.major &&
               programme.minor == wanted.minor && programme.title == wanted.title &&
               programme.start <= wanted.start && wanted.start < programme.end;
    });
}

}  // namespace epgset
