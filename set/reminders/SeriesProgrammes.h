// The programmes of the guide that belong to a series.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "set/guide/Guide.h"
#include "set/reminders/ReminderEntry.h"

namespace epgset {

/// The title of a programme's series: its own title where the guide marks no series.
std::string_view seriesTitleOf(const Programme& programme);

/// The programmes of one entry's series on the entry's channel. It shares the guide.
class SeriesProgrammes {
public:
    SeriesProgrammes(std::shared_ptr<const Guide> guide, const ReminderEntry& entry);

    /// The entry at the programme that begins with that second; nothing where none of the series does.
    std::optional<ReminderEntry> at(std::int64_t start) const;

    /// The entry at the first programme that begins at `from` or later and is `wanted`.
    std::optional<ReminderEntry> next(std::int64_t from,
                                      const std::function<bool(const ReminderEntry&)>& wanted) const;

private:
    /// The entry at a programme of its channel; nothing where that is not of the series or cannot be booked.
    std::optional<ReminderEntry> entryAt(const Programme& programme) const;

    const std::shared_ptr<const Guide> guide_;
    const Channel* const channel_;  ///< null: the line-up does not have it
    const ReminderEntry& entry_;
};

/// The title of the series that an entry is to record, which has been made for a programme of the guide or
/// of an earlier one; empty where the entry has no title.
std::string seriesTitleFor(const ReminderEntry& entry, const Guide& guide);

}  // namespace epgset
