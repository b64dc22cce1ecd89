// The reminder store's entries in memory.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/TCProgram.h"
#include "set/reminders/ReminderEntry.h"

namespace epgset {

/// Entries by UID and by the programme that they were made for. No lock: writers keep others out.
class ReminderIndex {
public:
    void put(ReminderEntry entry);
    void remove(unsigned long uid);

    /// The entry with that UID, or null; owned by the index, until it changes.
    const ReminderEntry* find(unsigned long uid) const;

    /// The first entry that was made for the programme, or null. Found without a look at the others: a fill
    /// of the plug-in's table asks for each of its programmes.
    const ReminderEntry* findForProgramme(const TCProgram& program) const;

    /// The entries that `wanted` lets through, by start.
    std::vector<const ReminderEntry*> select(const std::function<bool(const ReminderEntry&)>& wanted) const;

private:
    /// A channel's type and number and an event id. What is not in 16 bits each is no programme of the guide.
    using ProgrammeKey = std::uint64_t;
    static std::optional<ProgrammeKey> keyOf(int channelType, int major, int minor, int eventId);
    static std::optional<ProgrammeKey> keyOf(const CRemindInfo& info);

    std::map<unsigned long, ReminderEntry> entries_;
    std::unordered_multimap<ProgrammeKey, unsigned long> byProgramme_;
};

}  // namespace epgset
