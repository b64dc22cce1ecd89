#include "set/reminders/ReminderStore.h"

#include <algorithm>
#include <new>
#include <utility>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "host/Logger.h"
#include "host/TCProgram.h"
#include "set/events/EventRing.h"
#include "set/middleware/Clock.h"
#include "set/middleware/StateRevision.h"
#include "set/middleware/Television.h"
#include "set/reminders/SeriesProgrammes.h"

namespace epgset {
namespace {

constexpr int allKinds = 2;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/reminders");
    return logger;
}

/// Tells of a change that has been made, which must not fail any more.
void publish(std::string_view name, unsigned long uid) noexcept {
    try {
        events().publish(name, schedulePath(uid));
    } catch (const std::bad_alloc&) {
        events().lose();
    }
}

/// Held while the entries in memory change.
class ChangeLock {
public:
    explicit ChangeLock(std::shared_mutex& mutex) : lock_(mutex) { countChange(StatePart::Bookings); }

private:
    const std::lock_guard<std::shared_mutex> lock_;
};

/// Whether an entry is taken; logs why not.
bool accepted(const ReminderEntry& entry) {
    const std::string refusal = refusalOf(entry);
    if (!refusal.empty()) log().warning("An entry is not taken: %s", refusal);
    return refusal.empty();
}

/// Whether the line-up has the entry's channel, as one that entries can be made for: a digital one.
bool isInLineup(const Guide& guide, const CRemindInfo& info) {
    const Channel* const channel = guide.find(tvModeOf(info), info.Major(), info.Minor());
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
    if (entry) info = shown(*entry);
    return entry != nullptr;
}

bool ReminderStore::GetRemindItemByUid(unsigned long uid, CRemindInfo& info) {
    const std::shared_lock lock(memoryMutex_);
    const ReminderEntry* const entry = index_.find(uid);
    if (entry) info = shown(*entry);
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
            items.push_back(shown(*entry));
    }
    std::stable_partition(items.begin(), items.end(),
                          [&](const CRemindInfo& info) { return isInLineup(*guide, info); });
    count = static_cast<int>(items.size());
    return true;
}

bool ReminderStore::AddRemindItem(CRemindInfo& info, int /*reserved*/) {
    ReminderEntry entry = storable(info, nullptr);
    if (!accepted(entry)) return false;
    ReminderIndex::Prepared prepared(entry);
    info = infoOf(entry);
    const std::lock_guard writing(writeMutex_);
    unsigned long uid = 0;
    if (!written([&] { uid = file_.insert(entry); })) return false;
    // On disk now: what follows takes no memory, so that it cannot be there and not here.
    info.SetUid(uid);
    prepared.setUid(uid);
    {
        const ChangeLock lock(memoryMutex_);
        index_.put(std::move(prepared));
    }
    publish(event::scheduleAdded, uid);
    return true;
}

bool ReminderStore::UpdateRemindItemByUid(unsigned long uid, const CRemindInfo& info, int /*reserved*/,
                                          int /*byUser*/) {
    const std::lock_guard writing(writeMutex_);
    const ReminderEntry* const old = index_.find(uid);
    if (!old) return false;
    ReminderEntry entry = storable(info, old);
    entry.info.SetUid(uid);
    if (!accepted(entry)) return false;
    ReminderIndex::Prepared prepared(entry);
    if (!written([&] { file_.update(entry); })) return false;
    {
        const ChangeLock lock(memoryMutex_);
        index_.put(std::move(prepared));
    }
    publish(event::scheduleChanged, uid);
    return true;
}

ReminderEntry ReminderStore::storable(const CRemindInfo& info, const ReminderEntry* old) {
    ReminderEntry entry = entryOf(info);
    if (entry.info.ReserveType() == RESERVE_RECORDING) {
        entry.info.SetReserveType(old && old->records() ? old->info.ReserveType() : RESERVE_RECORD);
    }
    if (entry.info.ReserveType() != RESERVE_SERIES) return entry;
    // One that waits has been shown without its programme: handed back as it was, it still waits for one.
    if (old && old->waits() && old->start == entry.start) return *old;
    entry.seriesTitle = seriesTitleFor(entry, *currentGuide());
    if (!entry.seriesTitle.empty()) entry.series = SeriesPlace::Chosen;
    return entry;
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
    {
        const ChangeLock lock(memoryMutex_);
        index_.remove(uid);
        recording_.erase(uid);
    }
    publish(event::scheduleRemoved, uid);
    return 1;
}

bool ReminderStore::ExistSameTimeRemindItem(const CRemindInfo& info, CRemindInfo& other) {
    const ReminderEntry wanted = entryOf(info);
    const std::shared_lock lock(memoryMutex_);
    const auto found = index_.select(overlapping(wanted));
    if (!found.empty()) other = shown(*found.front());
    return !found.empty();
}

void ReminderStore::GetOverlappingRemindItems(const CRemindInfo& info, std::vector<CRemindInfo>& items) {
    items.clear();
    const ReminderEntry wanted = entryOf(info);
    const std::shared_lock lock(memoryMutex_);
    for (const ReminderEntry* entry : index_.select(overlapping(wanted)))
        items.push_back(shown(*entry));
}

ReminderPlanner ReminderStore::planner(std::int64_t now) const {
    return {index_, currentGuide(), recorded_, now};
}

bool ReminderStore::removeEnded(std::int64_t now) {
    const std::lock_guard writing(writeMutex_);
    ReminderPlanner planner = this->planner(now);
    planner.endAll();
    const ReminderPlan plan = planner.take();
    if (plan.empty()) return true;
    logSkips(plan, now);
    // Tried again and again while it fails, and logged the first time.
    try {
        carryOut(plan);
        endingFailed_ = false;
    } catch (const DatabaseError& error) {
        if (!std::exchange(endingFailed_, true)) {
            log().error("What has ended cannot be removed: %s", error.what());
        }
        return false;
    }
    return true;
}

bool ReminderStore::endOccurrence(unsigned long uid, std::int64_t start) {
    const std::int64_t now = clock().now();
    const std::lock_guard writing(writeMutex_);
    const ReminderEntry* const entry = index_.find(uid);
    if (!entry || entry->start != start || entry->waits()) return false;
    ReminderPlanner planner = this->planner(now);
    planner.endEarly(*entry);
    const ReminderPlan plan = planner.take();
    logSkips(plan, now);
    recordingEnded(uid);
    return written([&] { carryOut(plan); });
}

void ReminderStore::followGuide(std::int64_t now) {
    const std::lock_guard writing(writeMutex_);
    ReminderPlanner planner = this->planner(now);
    planner.followGuide();
    const ReminderPlan plan = planner.take();
    logSkips(plan, now);
    if (!plan.empty()) written([&] { carryOut(plan); });
}

void ReminderStore::carryOut(const ReminderPlan& plan) {
    std::vector<ReminderIndex::Prepared> prepared;
    for (const ReminderEntry& entry : plan.replaced)
        prepared.emplace_back(entry);
    file_.change(plan.removed, plan.replaced);
    {
        const ChangeLock lock(memoryMutex_);
        for (const unsigned long uid : plan.removed) {
            index_.remove(uid);
            recording_.erase(uid);
        }
        for (ReminderIndex::Prepared& entry : prepared)
            index_.put(std::move(entry));
    }
    for (const unsigned long uid : plan.removed)
        publish(event::scheduleRemoved, uid);
    for (const ReminderEntry& entry : plan.replaced)
        publish(event::scheduleChanged, entry.info.UID());
}

void ReminderStore::logSkips(const ReminderPlan& plan, std::int64_t now) {
    skipped_.erase(skipped_.begin(), skipped_.lower_bound({now - 86400, 0}));
    for (const auto& [programme, other] : plan.skips) {
        if (!skipped_.emplace(programme.start, programme.info.UID()).second) continue;
        log().warning("Series %lu leaves out \"%s\" of %s: reminder %lu overlaps it", programme.info.UID(),
                      titleOf(programme.info),
                      fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time_t{programme.start})), other);
    }
}

void ReminderStore::recordingBegan(unsigned long uid, std::int64_t start) {
    const std::lock_guard writing(writeMutex_);
    const ReminderEntry* const entry = index_.find(uid);
    if (!entry || entry->start != start) return;
    {
        const ChangeLock lock(memoryMutex_);
        recording_[uid] = start;
    }
    written([&] { recorded_.add(*entry, clock().now()); });
}

void ReminderStore::recordingEnded(unsigned long uid) {
    const ChangeLock lock(memoryMutex_);
    recording_.erase(uid);
}

CRemindInfo ReminderStore::shown(const ReminderEntry& entry) const {
    CRemindInfo info = infoOf(entry);
    const auto recording = recording_.find(info.UID());
    if (recording != recording_.end() && recording->second == entry.start && entry.records()) {
        info.SetReserveType(RESERVE_RECORDING);
    }
    if (entry.waits()) info.SetTitle({});
    return info;
}

std::vector<ReminderEntry> ReminderStore::select(
    const std::function<bool(const ReminderEntry&)>& wanted) const {
    const std::shared_lock lock(memoryMutex_);
    std::vector<ReminderEntry> entries;
    for (const ReminderEntry* entry : index_.select(wanted))
        entries.push_back(*entry);
    return entries;
}

std::optional<ReminderEntry> ReminderStore::find(unsigned long uid) const {
    const std::shared_lock lock(memoryMutex_);
    const ReminderEntry* const entry = index_.find(uid);
    return entry ? std::optional(*entry) : std::nullopt;
}

std::vector<ReminderEntry> ReminderStore::running(std::int64_t now) const {
    return select([now](const ReminderEntry& entry) {
        return entry.start <= now && now < entry.end() && !entry.waits();
    });
}

std::vector<ReminderEntry> ReminderStore::ended(std::int64_t now) const {
    return select([now](const ReminderEntry& entry) { return entry.end() <= now && !entry.waits(); });
}

std::vector<DueEntry> ReminderStore::nextDue(std::int64_t now, std::size_t count) const {
    std::vector<DueEntry> due;
    const std::shared_lock lock(memoryMutex_);
    for (const ReminderEntry* entry :
         index_.select([now](const ReminderEntry& entry) { return entry.start > now && !entry.waits(); })) {
        if (due.size() == count) break;
        const CRemindInfo& info = entry->info;
        due.push_back({info.UID(), entry->start, tvModeOf(info), info.Major(), info.Minor(), titleOf(info),
                       info.ReserveType()});
    }
    return due;
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
