#include "set/reminders/SeriesProgrammes.h"

#include <algorithm>
#include <span>
#include <utility>

#include "host/TCProgram.h"

namespace epgset {
namespace {

const Channel* channelOf(const Guide& guide, const CRemindInfo& info) {
    return guide.find(tvModeOf(info), info.Major(), info.Minor());
}

/// The programmes that begin at `from` or later.
std::span<const Programme> programmesFrom(const Guide& guide, const Channel* channel, std::int64_t from) {
    if (!channel) return {};
    const std::span<const Programme> programmes = guide.programmesOf(*channel);
    return {std::ranges::lower_bound(programmes, from, {}, &Programme::start), programmes.end()};
}

}  // namespace

std::string_view seriesTitleOf(const Programme& programme) {
    return programme.series.empty() ? programme.title : programme.series;
}

SeriesProgrammes::SeriesProgrammes(std::shared_ptr<const Guide> guide, const ReminderEntry& entry)
    : guide_(std::move(guide)), channel_(channelOf(*guide_, entry.info)), entry_(entry) {}

std::optional<ReminderEntry> SeriesProgrammes::at(std::int64_t start) const {
    for (const Programme& programme : programmesFrom(*guide_, channel_, start)) {
        if (programme.start != start) break;
        if (auto entry = entryAt(programme)) return entry;
    }
    return std::nullopt;
}

std::optional<ReminderEntry> SeriesProgrammes::next(
    std::int64_t from, const std::function<bool(const ReminderEntry&)>& wanted) const {
    for (const Programme& programme : programmesFrom(*guide_, channel_, from)) {
        if (auto entry = entryAt(programme); entry && wanted(*entry)) return entry;
    }
    return std::nullopt;
}

std::optional<ReminderEntry> SeriesProgrammes::entryAt(const Programme& programme) const {
    if (seriesTitleOf(programme) != entry_.seriesTitle) return std::nullopt;
    ReminderEntry entry;
    entry.info.Set(TCProgram(std::shared_ptr<const Programme>(guide_, &programme), channel_),
                   CReminder::RESERVE_SERIES, 0);
    entry.info.SetStartTime(0);
    entry.info.SetUid(entry_.info.UID());
    entry.info.SetCreationMethod(entry_.info.CreationMethod());
    entry.start = programme.start;
    entry.series = SeriesPlace::Found;
    entry.seriesTitle = entry_.seriesTitle;
    if (!refusalOf(entry).empty()) return std::nullopt;
    return entry;
}

std::string seriesTitleFor(const ReminderEntry& entry, const Guide& guide) {
    for (const Programme& programme : programmesFrom(guide, channelOf(guide, entry.info), entry.start)) {
        if (programme.start != entry.start) break;
        if (programme.eventId == entry.info.EventId()) return std::string(seriesTitleOf(programme));
    }
    return titleOf(entry.info);
}

}  // namespace epgset
