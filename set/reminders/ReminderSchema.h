// The tables of the reminder file, and how older files get them.
#pragma once

#include <span>

#include "set/reminders/SqliteHandles.h"

namespace epgset {

/// SQL texts that each bring a file from one version of the schema to the next: the first one an empty file
/// to version 1. A text that has been released is never changed; what changes the tables is a further one.
std::span<const char* const> reminderSchemaSteps();

/// Brings the file to the version of the last step, all at once or not at all. Throws DatabaseError for a
/// file of a later version, which stays as it is, and for a database that is none of reminders.
void migrateReminders(OwnDatabase& database, std::span<const char* const> steps = reminderSchemaSteps());

}  // namespace epgset
