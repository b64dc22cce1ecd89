// The reminder store's file.
#pragma once

#include <filesystem>
#include <span>
#include <vector>

#include "set/reminders/ReminderEntry.h"
#include "set/reminders/SqliteHandles.h"

namespace epgset {

/// Entries in an SQLite database. What a function wrote is on disk when it comes back; one that throws has
/// changed nothing. All throw DatabaseError. Used by one thread at a time.
class ReminderFile {
public:
    /// Opens the file or makes it, and brings it to the latest version of its schema.
    explicit ReminderFile(const std::filesystem::path& file);

    /// All entries, by UID.
    std::vector<ReminderEntry> load();

    /// Adds an entry and answers its UID, one that no entry has had before.
    unsigned long insert(const ReminderEntry& entry);

    /// Replaces the entry with that UID.
    void update(const ReminderEntry& entry);

    void remove(unsigned long uid);

    /// Removes entries and replaces others, all at once.
    void change(std::span<const unsigned long> removed, std::span<const ReminderEntry> replaced);

    /// The database, for what else is kept in it.
    OwnDatabase& database() { return database_; }

    /// For tests: the file as SQLite sees it.
    sqlite3* handle() const { return database_.handle(); }

private:
    OwnDatabase database_;
    OwnStatement insert_;
    OwnStatement update_;
    OwnStatement remove_;
};

}  // namespace epgset
