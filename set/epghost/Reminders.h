// The set's reminders while it runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "set/recorder/RecordingOrder.h"
#include "set/reminders/DueReminders.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/MaintenanceTimer.h"

namespace epgset {

/// Opens the reminder store of a state folder, puts it in use and does what comes due, as long as it lives.
/// The clock and the guide must be in use before. The plug-in finds a store that holds nothing that has
/// ended.
class Reminders {
public:
    /// The recorder, which gets the orders, must outlive the object. Throws StartError when the store cannot
    /// be opened.
    Reminders(const std::filesystem::path& stateFolder, OrderTaker& recorder);

    /// Ends the orders; the set gives them again when it starts.
    ~Reminders();
    Reminders(const Reminders&) = delete;
    Reminders& operator=(const Reminders&) = delete;

    /// Another guide is in use: looks for the programmes of series in it.
    void guideChanged();

    /// Ends what an entry records since `start`, for good: ReminderStore::endOccurrence(). By any thread.
    bool endOccurrence(unsigned long uid, std::int64_t start) { return store_.endOccurrence(uid, start); }

    /// The first `count` entries that are to come due, by start. By any thread.
    std::vector<DueEntry> nextDue(std::size_t count) const;

private:
    ReminderStore store_;
    DueReminders due_;
    std::optional<MaintenanceTimer> timer_;  ///< the last one, so that nothing comes due while the others go
};

}  // namespace epgset
