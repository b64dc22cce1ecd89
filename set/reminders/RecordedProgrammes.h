// The programmes that have been recorded.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "set/reminders/ReminderEntry.h"
#include "set/reminders/SqliteHandles.h"

namespace epgset {

/// Remembers what was recorded, in the reminder file, so that a series records no programme twice. A
/// programme is forgotten 60 days after its end. Used by one thread at a time.
class RecordedProgrammes {
public:
    /// The database must outlive the object. Throws DatabaseError.
    explicit RecordedProgrammes(OwnDatabase& database);

    /// Enters the programme of an entry that is recorded now (`now` in UNIX seconds); one without a title is
    /// no programme. On disk when it comes back. Throws DatabaseError and has changed nothing then.
    void add(const ReminderEntry& entry, std::int64_t now);

    /// Whether the programme of that entry was recorded: one of its title and channel, during which it
    /// begins. So a programme that the guide moves by a few minutes while it is recorded stays the same.
    bool contains(const ReminderEntry& entry) const;

private:
    struct Programme {
        int channelType;
        int major;
        int minor;
        std::int64_t start;
        std::int64_t end;
        std::string title;
    };

    static Programme programmeOf(const ReminderEntry& entry);

    OwnDatabase& database_;
    OwnStatement insert_;
    OwnStatement forget_;
    std::vector<Programme> programmes_;
};

}  // namespace epgset
