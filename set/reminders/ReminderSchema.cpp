#include "set/reminders/ReminderSchema.h"

#include <array>
#include <cstdint>
#include <string>

namespace epgset {
namespace {

constexpr std::array<const char*, 2> stepsOfTheStore{
    // AUTOINCREMENT: the uid of an entry that is gone is never given out again. Clients see it as a 32-bit
    // number. The start is kept twice: start_utc in UNIX seconds, which decides for an entry that does not
    // repeat, whatever zone the middleware counts in; start_wall, NULL for such an entry, in seconds of the
    // wall clock, which decides for one that repeats. Texts are UTF-8.
    R"(CREATE TABLE reminder (
        uid INTEGER PRIMARY KEY AUTOINCREMENT CHECK (uid BETWEEN 1 AND 2147483647),
        channel_type INTEGER NOT NULL,
        major INTEGER NOT NULL,
        minor INTEGER NOT NULL,
        ptc INTEGER NOT NULL,
        program_number INTEGER NOT NULL,
        event_id INTEGER NOT NULL,
        reserve_type INTEGER NOT NULL,
        repeat_type INTEGER NOT NULL,
        repeat_days INTEGER NOT NULL,
        creation_method INTEGER NOT NULL,
        start_utc INTEGER NOT NULL,
        start_wall INTEGER,
        duration INTEGER NOT NULL CHECK (duration > 0),
        title TEXT NOT NULL,
        synopsis TEXT NOT NULL
    ) STRICT)",
    // A series: its title, and series_place, the number of a SeriesPlace. Recorded: what has been recorded,
    // so that a series records no programme twice; rows go some time after their programme. That a recording
    // runs is no kind of entry any more.
    R"(ALTER TABLE reminder ADD COLUMN series_title TEXT NOT NULL DEFAULT '';
    ALTER TABLE reminder ADD COLUMN series_place INTEGER NOT NULL DEFAULT 0
        CHECK (series_place BETWEEN 0 AND 3);
    UPDATE reminder SET series_title = title, series_place = 1 WHERE reserve_type = 9 AND title != '';
    UPDATE reminder SET reserve_type = 1 WHERE reserve_type = 3;
    CREATE TABLE recorded (
        channel_type INTEGER NOT NULL,
        major INTEGER NOT NULL,
        minor INTEGER NOT NULL,
        start_utc INTEGER NOT NULL,
        end_utc INTEGER NOT NULL,
        title TEXT NOT NULL,
        PRIMARY KEY (channel_type, major, minor, start_utc)
    ) STRICT, WITHOUT ROWID)",
};

std::int64_t numberOf(OwnDatabase& database, const char* query) {
    OwnStatement statement(database, query);
    return statement.step() ? statement.integer(0) : 0;
}

}  // namespace

std::span<const char* const> reminderSchemaSteps() {
    return stepsOfTheStore;
}

void migrateReminders(OwnDatabase& database, std::span<const char* const> steps) {
    const std::int64_t version = numberOf(database, "PRAGMA user_version");
    const auto latest = static_cast<std::int64_t>(steps.size());
    if (version < 0 || version > latest) {
        database.fail("its version is " + std::to_string(version) +
                      ", and this program knows versions up to " + std::to_string(latest));
    }
    if (version == 0 && numberOf(database, "SELECT count(*) FROM sqlite_schema") > 0) {
        database.fail("it is a database of something else");
    }
    if (version == latest) return;
    OwnTransaction transaction(database);
    for (const char* const step : steps.subspan(static_cast<std::size_t>(version)))
        database.run(step);
    database.run(("PRAGMA user_version = " + std::to_string(latest)).c_str());
    transaction.commit();
}

}  // namespace epgset
