// What becomes of entries whose time is over and of those that record a series.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "set/guide/Guide.h"
#include "set/reminders/RecordedProgrammes.h"
#include "set/reminders/ReminderEntry.h"
#include "set/reminders/ReminderIndex.h"

namespace epgset {

/// Changes of the store that are to be made together.
struct ReminderPlan {
    /// A programme that a series leaves out because another entry overlaps it.
    struct Skip {
        ReminderEntry programme;  ///< the entry as it would be
        unsigned long other = 0;  ///< UID of what overlaps it
    };

    std::vector<unsigned long> removed;
    std::vector<ReminderEntry> replaced;
    std::vector<Skip> skips;

    bool empty() const { return removed.empty() && replaced.empty(); }
};

/// Plans and changes nothing. Used where the index and the recorded programmes stay as they are meanwhile;
/// they must outlive it.
///
/// An entry of a series goes on to the first programme of its series on its channel that begins now or
/// later, was not recorded, and overlaps no other entry. Where the guide has none, it waits: it keeps its
/// last times, is at no programme, overlaps nothing and does not end. One that has no title records no
/// series and is removed like an entry that does not repeat.
class ReminderPlanner {
public:
    /// `now` is a UNIX time.
    ReminderPlanner(const ReminderIndex& index, std::shared_ptr<const Guide> guide,
                    const RecordedProgrammes& recorded, std::int64_t now);

    /// Removes or moves what has ended: what repeats to its next time that has not ended.
    void endAll();

    /// The same for one entry that is ended before its time: what repeats to its next time that has not
    /// begun, a series to another programme.
    void endEarly(const ReminderEntry& entry);

    /// Looks again for the programmes of series, as after a change of the guide. An entry stays where it is
    /// while it runs, at the programme that it was made for as long as the guide has that, and where the
    /// guide has no programme that it could go to. Texts and length follow the guide.
    void followGuide();

    ReminderPlan take() { return std::move(plan_); }

private:
    void goOn(const ReminderEntry& entry);
    void repeat(const ReminderEntry& entry, std::int64_t after);
    void follow(const ReminderEntry& entry);

    /// The entry at the next programme of its series.
    std::optional<ReminderEntry> nextOf(const ReminderEntry& entry);

    /// What overlaps an entry of a series in the store as it will be; null: nothing.
    const ReminderEntry* obstacleTo(const ReminderEntry& entry) const;

    /// Whether the guide has changed and no longer has the programme of a series that the entry was to go to.
    bool isAdrift(const ReminderEntry& entry) const;

    const ReminderIndex& index_;
    const std::shared_ptr<const Guide> guide_;
    const RecordedProgrammes& recorded_;
    const std::int64_t now_;
    bool guideChanged_ = false;
    ReminderPlan plan_;
};

}  // namespace epgset
