#include "set/reminders/ReminderPlan.h"

#include <algorithm>
#include <utility>

#include "set/reminders/SeriesProgrammes.h"

namespace epgset {
namespace {

/// Seconds after its start for which a programme still counts as one to come: when a programme ends and the
/// next of its series follows at once, the set looks for it a little later.
constexpr std::int64_t lateness = 5;

bool sameProgramme(const ReminderEntry& one, const ReminderEntry& other) {
    return one.start == other.start && one.info.Duration() == other.info.Duration() &&
           one.info.EventId() == other.info.EventId() && titleOf(one.info) == titleOf(other.info) &&
           synopsisOf(one.info) == synopsisOf(other.info);
}

}  // namespace

ReminderPlanner::ReminderPlanner(const ReminderIndex& index, std::shared_ptr<const Guide> guide,
                                 const RecordedProgrammes& recorded, std::int64_t now)
    : index_(index), guide_(std::move(guide)), recorded_(recorded), now_(now) {}

void ReminderPlanner::endAll() {
    const auto ended =
        index_.select([this](const ReminderEntry& entry) { return entry.end() <= now_ && !entry.waits(); });
    std::vector<const ReminderEntry*> series;
    for (const ReminderEntry* entry : ended) {
        if (entry->series != SeriesPlace::None) {
            series.push_back(entry);
        } else {
            repeat(*entry, now_ - entry->info.Duration());
        }
    }
    // Last, so that they find where the others have gone.
    for (const ReminderEntry* entry : series)
        goOn(*entry);
}

void ReminderPlanner::endEarly(const ReminderEntry& entry) {
    if (entry.series != SeriesPlace::None) {
        goOn(entry);
    } else {
        repeat(entry, std::max(now_, entry.start));
    }
}

void ReminderPlanner::followGuide() {
    guideChanged_ = true;
    for (const ReminderEntry* entry :
         index_.select([](const ReminderEntry& entry) { return entry.series != SeriesPlace::None; })) {
        follow(*entry);
    }
}

void ReminderPlanner::goOn(const ReminderEntry& entry) {
    std::optional<ReminderEntry> next = nextOf(entry);
    if (!next) {
        next = entry;
        next->series = SeriesPlace::Waiting;
        next->info.SetEventId(0);
    }
    plan_.replaced.push_back(std::move(*next));
}

void ReminderPlanner::repeat(const ReminderEntry& entry, std::int64_t after) {
    if (!entry.wallStart || entry.info.ReserveType() == CReminder::RESERVE_SERIES) {
        plan_.removed.push_back(entry.info.UID());
        return;
    }
    ReminderEntry& next = plan_.replaced.emplace_back(entry);
    next.wallStart = nextRepeat(*entry.wallStart, entry.days(), after);
    next.start = unixAtWallClock(*next.wallStart);
}

void ReminderPlanner::follow(const ReminderEntry& entry) {
    if (!entry.waits() && entry.start <= now_) return;
    std::optional<ReminderEntry> next;
    if (entry.series == SeriesPlace::Chosen) {
        next = SeriesProgrammes(guide_, entry).at(entry.start);
        if (next) next->series = SeriesPlace::Chosen;
    }
    if (!next) next = nextOf(entry);
    if (next && !sameProgramme(*next, entry)) plan_.replaced.push_back(std::move(*next));
}

std::optional<ReminderEntry> ReminderPlanner::nextOf(const ReminderEntry& entry) {
    const bool done = entry.waits() || entry.start <= now_;
    return SeriesProgrammes(guide_, entry).next(now_ - lateness, [&](const ReminderEntry& found) {
        if ((done && found.start == entry.start) || recorded_.contains(found)) return false;
        const ReminderEntry* const obstacle = obstacleTo(found);
        if (obstacle) plan_.skips.push_back({found, obstacle->info.UID()});
        return !obstacle;
    });
}

const ReminderEntry* ReminderPlanner::obstacleTo(const ReminderEntry& entry) const {
    const auto overlaps = [&](const ReminderEntry& other) {
        return other.info.UID() != entry.info.UID() && overlap(entry, other);
    };
    const auto planned = std::ranges::find_if(plan_.replaced, overlaps);
    if (planned != plan_.replaced.end()) return &*planned;
    const auto isPlanned = [this](unsigned long uid) {
        return std::ranges::find(plan_.removed, uid) != plan_.removed.end() ||
               std::ranges::any_of(plan_.replaced,
                                   [uid](const ReminderEntry& other) { return other.info.UID() == uid; });
    };
    const auto found = index_.select([&](const ReminderEntry& other) {
        return overlaps(other) && !isPlanned(other.info.UID()) && !isAdrift(other);
    });
    return found.empty() ? nullptr : found.front();
}

bool ReminderPlanner::isAdrift(const ReminderEntry& entry) const {
    return guideChanged_ && entry.series != SeriesPlace::None && entry.start > now_ &&
           !SeriesProgrammes(guide_, entry).at(entry.start);
}

}  // namespace epgset
