// The set's reminder store.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <shared_mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/CReminder.h"
#include "set/reminders/RecordedProgrammes.h"
#include "set/reminders/ReminderFile.h"
#include "set/reminders/ReminderIndex.h"
#include "set/reminders/ReminderPlan.h"

namespace epgset {

/// An entry that is to come due.
struct DueEntry {
    unsigned long uid = 0;
    std::int64_t start = 0;  ///< UNIX seconds
    int tvMode = 0;          ///< its channel
    int major = 0;
    int minor = 0;
    std::string title;  ///< UTF-8; empty for an entry that was not made from a programme
    CReminder::RESERVE_TYPE kind = CReminder::RESERVE_VIEW;
};

/// Keeps reminders and recordings in a file and answers questions from memory. Used by any thread.
///
/// That a recording runs is no kind of an entry but shown instead of its kind, RECORD or SERIES, while it
/// does: an entry that is handed back as RECORDING keeps the kind that it has (a new one is a RECORD).
///
/// A SERIES entry stands at one programme of its series at a time, ReminderPlanner says at which. While it
/// waits for the next it is shown with its last times and without title and event id, as one made by hand,
/// so that clients still list it.
///
/// Each change is published as an event, in the order of the changes.
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

    /// Removes what has ended by `now` (UNIX seconds), and moves on what repeats and what records a series.
    /// Answers whether that is done.
    bool removeEnded(std::int64_t now);

    /// Ends the occurrence of an entry that began at `start` (UNIX seconds), for good: an entry that neither
    /// repeats nor records a series is removed, what repeats comes again at its next time, a series goes on
    /// with another programme. On disk when it comes back. False where the entry has no such occurrence any
    /// more, and where it cannot be written, so that only this run of the set remembers.
    bool endOccurrence(unsigned long uid, std::int64_t start);

    /// Looks for the programmes of series in the guide in use, which has changed.
    void followGuide(std::int64_t now);

    /// Shows an entry as RECORDING until recordingEnded() or until it has another time, and remembers its
    /// programme as recorded. Nothing where it has another time than `start` already.
    void recordingBegan(unsigned long uid, std::int64_t start);
    void recordingEnded(unsigned long uid);

    /// The entry with that UID.
    std::optional<ReminderEntry> find(unsigned long uid) const;

    /// The entries that have begun by `now` (UNIX seconds) and not ended, by start.
    std::vector<ReminderEntry> running(std::int64_t now) const;

    /// The entries that have ended by `now` (UNIX seconds) and are still there, by start.
    std::vector<ReminderEntry> ended(std::int64_t now) const;

    /// The first `count` entries that begin after `now` (UNIX seconds), by start.
    std::vector<DueEntry> nextDue(std::int64_t now, std::size_t count) const;

    /// The store's file, for tests.
    ReminderFile& file() { return file_; }

private:
    using Write = std::function<void()>;

    /// Runs a change of the file and answers whether it was made; logs why not. With writeMutex_ held.
    bool written(const Write& write);

    /// Makes planned changes, all or none. Throws DatabaseError. With writeMutex_ held.
    void carryOut(const ReminderPlan& plan);

    /// Says which programmes series leave out, of each one once. With writeMutex_ held.
    void logSkips(const ReminderPlan& plan, std::int64_t now);

    ReminderPlanner planner(std::int64_t now) const;
    int remove(unsigned long uid);

    /// An entry to be stored: its kind and its series. `old` is the one that it replaces, or null.
    static ReminderEntry storable(const CRemindInfo& info, const ReminderEntry* old);

    /// The entry as the middleware sees it. With memoryMutex_ held.
    CRemindInfo shown(const ReminderEntry& entry) const;

    std::vector<ReminderEntry> select(const std::function<bool(const ReminderEntry&)>& wanted) const;

    std::mutex writeMutex_;
    ReminderFile file_;                                         ///< guarded by writeMutex_
    RecordedProgrammes recorded_{file_.database()};             ///< guarded by writeMutex_
    std::set<std::pair<std::int64_t, unsigned long>> skipped_;  ///< guarded by writeMutex_; start and UID
    bool endingFailed_ = false;  ///< guarded by writeMutex_; whether removeEnded() failed the last time
    mutable std::shared_mutex memoryMutex_;
    ReminderIndex index_;  ///< guarded by memoryMutex_; changed with writeMutex_ held too
    std::map<unsigned long, std::int64_t> recording_;  ///< guarded by memoryMutex_; starts by UID
};

}  // namespace epgset
