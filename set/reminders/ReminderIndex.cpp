#include "set/reminders/ReminderIndex.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "host/TCChannel.h"
#include "set/guide/Guide.h"

namespace epgset {

std::optional<ReminderIndex::ProgrammeKey> ReminderIndex::keyOf(int channelType, int major, int minor,
                                                                int eventId) {
    constexpr int last = std::numeric_limits<std::uint16_t>::max();
    if (channelType < 0 || channelType > last || eventId < 1 || eventId > last) return std::nullopt;
    const auto field = [](int value) { return ProgrammeKey{static_cast<std::uint16_t>(value)}; };
    return field(channelType) << 48 | field(major) << 32 | field(minor) << 16 | field(eventId);
}

std::optional<ReminderIndex::ProgrammeKey> ReminderIndex::keyOf(const CRemindInfo& info) {
    return keyOf(info.ChannelType(), info.Major(), info.Minor(), info.EventId());
}

ReminderIndex::Prepared::Prepared(ReminderEntry entry) {
    const unsigned long uid = entry.info.UID();
    if (const auto key = keyOf(entry.info)) {
        Programmes programmes;
        programme_ = programmes.extract(programmes.emplace(*key, uid));
    }
    Entries entries;
    entry_ = entries.extract(entries.emplace(uid, std::move(entry)).first);
}

void ReminderIndex::Prepared::setUid(unsigned long uid) {
    entry_.key() = uid;
    entry_.mapped().info.SetUid(uid);
    if (programme_) programme_.mapped() = uid;
}

void ReminderIndex::put(Prepared prepared) noexcept {
    remove(prepared.entry_.key());
    if (prepared.programme_) byProgramme_.insert(std::move(prepared.programme_));
    entries_.insert(std::move(prepared.entry_));
}

void ReminderIndex::remove(unsigned long uid) noexcept {
    const auto found = entries_.find(uid);
    if (found == entries_.end()) return;
    if (const auto key = keyOf(found->second.info)) {
        const auto [first, last] = byProgramme_.equal_range(*key);
        byProgramme_.erase(std::find_if(first, last, [uid](const auto& pair) { return pair.second == uid; }));
    }
    entries_.erase(found);
}

const ReminderEntry* ReminderIndex::find(unsigned long uid) const {
    const auto found = entries_.find(uid);
    return found == entries_.end() ? nullptr : &found->second;
}

const ReminderEntry* ReminderIndex::findForProgramme(const TCProgram& program) const {
    const Channel* const channel = program.SourceChannel();
    if (byProgramme_.empty() || !channel) return nullptr;
    const auto key = keyOf(TCChannel::GetDigitalChType(channel->tvMode), channel->major, channel->minor,
                           program.EventId());
    if (!key) return nullptr;
    const auto [first, last] = byProgramme_.equal_range(*key);
    const auto lowest = std::min_element(
        first, last, [](const auto& one, const auto& other) { return one.second < other.second; });
    return lowest == last ? nullptr : find(lowest->second);
}

std::vector<const ReminderEntry*> ReminderIndex::select(
    const std::function<bool(const ReminderEntry&)>& wanted) const {
    std::vector<const ReminderEntry*> selected;
    for (const auto& [uid, entry] : entries_) {
        if (wanted(entry)) selected.push_back(&entry);
    }
    std::ranges::sort(selected,
                      [](const auto* one, const auto* other) { return startsBefore(*one, *other); });
    return selected;
}

}  // namespace epgset
