#include "set/reminders/ReminderStore.h"

#include <algorithm>
#include <utility>

#include "host/Logger.h"
#include "host/TCChannel.h"
#include "host/TCProgram.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

constexpr int allKinds = 2;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/reminders");
    return logger;
}

/// Whether an entry is taken; logs why not.
bool accepted(const ReminderEntry& entry) {
    const std::string refusal = refusalOf(entry);
    if (!refusal.empty()) log().warning("An entry is not taken: %s", refusal);
    return refusal.empty();
}

/// Whether the line-up has the entry's channel, as one that entries can be made for: a digital one.
bool isInLineup(const Guide& guide, const CRemindInfo& info) {
    const Channel* const channel =
        guide.find(TCChannel::GetTVMode(info.ChannelType()), info.Major(), info.Minor());
    return channel && channel->digital;
}

/// What lets an entry through that overlaps another one and is not that one itself.
auto overlapping(const ReminderEntry& entry) {
    return [&entry](const ReminderEntry& other) {
        return other.info.UID() != entry.info.UID() && overlap(entry, other);
    };
}

}  // namespace

ReminderStore::ReminderStore(const std::filesystem::path& file) : file_(file) {
    for (ReminderEntry& entry : file_.load())
        index_.put(std::move(entry));
}

ReminderStore::~ReminderStore() = default;

bool ReminderStore::FindRemindItemFromProgram(const TCProgram& program, CRemindInfo& info) {
    const std::shared_lock lock(memoryMutex_);
    const ReminderEntry* const entry = index_.findForProgramme(program);
    if (entry) info = infoOf(*entry);
    return entry != nullptr;
}

bool ReminderStore::GetRemindItemByUid(unsigned long uid, CRemindInfo& info) {
    const std::shared_lock lock(memoryMutex_);
    const ReminderEntry* const entry = index_.find(uid);
    if (entry) info = infoOf(*entry);
    return entry != nullptr;
}

bool ReminderStore::GetRemindItemByType(int& count, std::vector<CRemindInfo>& items, int kind) {
    items.clear();
    count = 0;
    if (kind != allKinds) return false;
    const std::shared_ptr<const Guide> guide = currentGuide();
    {
        const std::shared_lock lock(memoryMutex_);
        for (const ReminderEntry* entry : index_.select([](const ReminderEntry&) { return true; }))
            items.push_back(infoOf(*entry));
    }
    std::stable_partition(items.begin(), items.end(),
                          [&](const CRemindInfo& info) { return isInLineup(*guide, info); });
    count = static_cast<int>(items.size());
    return true;
}

bool ReminderStore::AddRemindItem(CRemindInfo& info, int /*reserved*/) {
    ReminderEntry entry = entryOf(info);
    if (!accepted(entry)) return false;
    const std::lock_guard writing(writeMutex_);
    if (!written([&] { entry.info.SetUid(file_.insert(entry)); })) return false;
    info = infoOf(entry);
    const std::lock_guard lock(memoryMutex_);
    index_.put(std::move(entry));
    return true;
}

bool ReminderStore::UpdateRemindItemByUid(unsigned long uid, const CRemindInfo& info, int /*reserved*/,
                                          int /*byUser*/) {
    ReminderEntry entry = entryOf(info);
    entry.info.SetUid(uid);
    if (!accepted(entry)) return false;
    const std::lock_guard writing(writeMutex_);
    if (!index_.find(uid) || !written([&] { file_.update(entry); })) return false;
    const std::lock_guard lock(memoryMutex_);
    index_.put(std::move(entry));
    return true;
}

int ReminderStore::DeleteRemindItemByUid(unsigned long uid) {
    return remove(uid);
}

int ReminderStore::UserDeleteRemindItemByUid(unsigned long uid) {
    return remove(uid);
}

int ReminderStore::remove(unsigned long uid) {
    const std::lock_guard writing(writeMutex_);
    if (!index_.find(uid) || !written([&] { file_.remove(uid); })) return 0;
    const std::lock_guard lock(memoryMutex_);
    index_.remove(uid);
    return 1;
}

bool ReminderStore::ExistSameTimeRemindItem(const CRemindInfo& info, CRemindInfo& other) {
    const ReminderEntry wanted = entryOf(info);
    const std::shared_lock lock(memoryMutex_);
    const auto found = index_.select(overlapping(wanted));
    if (!found.empty()) other = infoOf(*found.front());
    return !found.empty();
}

void ReminderStore::GetOverlappingRemindItems(const CRemindInfo& info, std::vector<CRemindInfo>& items) {
    items.clear();
    const ReminderEntry wanted = entryOf(info);
    const std::shared_lock lock(memoryMutex_);
    for (const ReminderEntry* entry : index_.select(overlapping(wanted)))
        items.push_back(infoOf(*entry));
}

bool ReminderStore::removeEnded(std::int64_t now) {
    const std::lock_guard writing(writeMutex_);
    std::vector<unsigned long> removed;
    std::vector<ReminderEntry> moved;
    for (const ReminderEntry* ended :
         index_.select([now](const auto& entry) { return entry.end() <= now; })) {
        if (ended->wallStart && ended->info.ReserveType() != RESERVE_SERIES) {
            ReminderEntry& entry = moved.emplace_back(*ended);
            entry.wallStart = nextRepeat(*ended->wallStart, ended->days(), now - ended->info.Duration());
            entry.start = unixAtWallClock(*entry.wallStart);
        } else {
            removed.push_back(ended->info.UID());
        }
    }
    if (removed.empty() && moved.empty()) return true;
    // Tried again and again while it fails, and logged the first time.
    try {
        file_.change(removed, moved);
        endingFailed_ = false;
    } catch (const DatabaseError& error) {
        if (!std::exchange(endingFailed_, true)) {
            log().error("What has ended cannot be removed: %s", error.what());
        }
        return false;
    }
    const std::lock_guard lock(memoryMutex_);
    for (const unsigned long uid : removed)
        index_.remove(uid);
    for (ReminderEntry& entry : moved)
        index_.put(std::move(entry));
    return true;
}

std::vector<ReminderEntry> ReminderStore::running(std::int64_t now) const {
    const std::shared_lock lock(memoryMutex_);
    std::vector<ReminderEntry> entries;
    for (const ReminderEntry* entry : index_.select(
             [now](const ReminderEntry& entry) { return entry.start <= now && now < entry.end(); })) {
        entries.push_back(*entry);
    }
    return entries;
}

bool ReminderStore::written(const Write& write) {
    try {
        write();
        return true;
    } catch (const DatabaseError& error) {
        log().error("A reminder cannot be written: %s", error.what());
        return false;
    }
}

}  // namespace epgset
