// The set's reminder store.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include "host/CReminder.h"
#include "set/reminders/ReminderFile.h"
#include "set/reminders/ReminderIndex.h"

namespace epgset {

/// Keeps reminders and recordings in a file and answers questions from memory. Used by any thread.
///
/// A change is on disk before its call answers. Where it cannot be written it has not happened: the call
/// fails, which is logged with the file and the reason. Entries that refusalOf() names are not taken.
/// Questions do not wait for changes that are being written.
///
/// Locks, in this order: writeMutex_, then memoryMutex_.
class ReminderStore : public CReminder {
public:
    /// The file's name in the state folder.
    static constexpr const char* fileName = "reminders.db";

    /// Opens the store. Throws DatabaseError.
    explicit ReminderStore(const std::filesystem::path& file);
    ~ReminderStore() override;

    bool FindRemindItemFromProgram(const TCProgram& program, CRemindInfo& info) override;
    bool GetRemindItemByUid(unsigned long uid, CRemindInfo& info) override;

    /// All entries (kind 2), by start; those whose channel the line-up does not have now after all others.
    bool GetRemindItemByType(int& count, std::vector<CRemindInfo>& items, int kind) override;

    /// Also sets the start that the entry got, which differs where it repeats and does not begin on one of
    /// its days.
    bool AddRemindItem(CRemindInfo& info, int reserved) override;

    bool UpdateRemindItemByUid(unsigned long uid, const CRemindInfo& info, int reserved, int byUser) override;
    int DeleteRemindItemByUid(unsigned long uid) override;
    int UserDeleteRemindItemByUid(unsigned long uid) override;

    /// An entry that repeats counts with its next time alone, and `info` with its first.
    bool ExistSameTimeRemindItem(const CRemindInfo& info, CRemindInfo& other) override;

    /// By start.
    void GetOverlappingRemindItems(const CRemindInfo& info, std::vector<CRemindInfo>& items) override;

    /// Removes what has ended by `now` (UNIX seconds), and moves what repeats on to its next time that has
    /// not; one of a series is removed. Answers whether that is done.
    bool removeEnded(std::int64_t now);

    /// The entries that have begun by `now` (UNIX seconds) and not ended, by start.
    std::vector<ReminderEntry> running(std::int64_t now) const;

    /// The store's file, for tests.
    ReminderFile& file() { return file_; }

private:
    using Write = std::function<void()>;

    /// Runs a change of the file and answers whether it was made; logs why not. With writeMutex_ held.
    bool written(const Write& write);

    int remove(unsigned long uid);

    std::mutex writeMutex_;
    ReminderFile file_;          ///< guarded by writeMutex_
    bool endingFailed_ = false;  ///< guarded by writeMutex_; whether removeEnded() failed the last time
    mutable std::shared_mutex memoryMutex_;
    ReminderIndex index_;  ///< guarded by memoryMutex_; changed with writeMutex_ held too
};

}  // namespace epgset
