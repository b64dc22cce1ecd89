// The set's reminders while it runs.
#pragma once

#include <filesystem>
#include <optional>

#include "set/reminders/DueReminders.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/MaintenanceTimer.h"

namespace epgset {

/// Opens the reminder store of a state folder, puts it in use and does what comes due, as long as it lives.
/// The clock and the guide must be in use before. The plug-in finds a store that holds nothing that has
/// ended.
class Reminders {
public:
    /// Throws StartError when the store cannot be opened.
    explicit Reminders(const std::filesystem::path& stateFolder);
    ~Reminders();
    Reminders(const Reminders&) = delete;
    Reminders& operator=(const Reminders&) = delete;

private:
    ReminderStore store_;
    DueReminders due_;
    std::optional<MaintenanceTimer> timer_;  ///< the last one, so that nothing comes due while the others go
};

}  // namespace epgset
