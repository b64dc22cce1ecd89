// The reminder store's entries in memory.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "host/TCProgram.h"
#include "set/reminders/ReminderEntry.h"

namespace epgset {

/// Entries by UID and by the programme that they were made for. No lock: writers keep others out.
class ReminderIndex {
    /// A channel's type and number and an event id. What is not in 16 bits each is no programme of the guide.
    using ProgrammeKey = std::uint64_t;
    using Entries = std::map<unsigned long, ReminderEntry>;
    using Programmes = std::multimap<ProgrammeKey, unsigned long>;

public:
    /// An entry for which all memory is there that putting it takes.
    class Prepared {
    public:
        explicit Prepared(ReminderEntry entry);

        /// Gives the entry a UID, which it has to have when it is put.
        void setUid(unsigned long uid);

    private:
        friend class ReminderIndex;
        Entries::node_type entry_;
        Programmes::node_type programme_;  ///< empty for an entry that is of no programme
    };

    void put(ReminderEntry entry) { put(Prepared(std::move(entry))); }

    /// Does not fail.
    void put(Prepared prepared) noexcept;
    void remove(unsigned long uid) noexcept;

    /// The entry with that UID, or null; owned by the index, until it changes.
    const ReminderEntry* find(unsigned long uid) const;

    /// The first entry that was made for the programme, or null. Found without a look at the others: a fill
    /// of the plug-in's table asks for each of its programmes.
    const ReminderEntry* findForProgramme(const TCProgram& program) const;

    /// The entries that `wanted` lets through, by start.
    std::vector<const ReminderEntry*> select(const std::function<bool(const ReminderEntry&)>& wanted) const;

private:
    static std::optional<ProgrammeKey> keyOf(int channelType, int major, int minor, int eventId);
    static std::optional<ProgrammeKey> keyOf(const CRemindInfo& info);

    Entries entries_;
    Programmes byProgramme_;
};

}  // namespace epgset
