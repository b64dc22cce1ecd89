#include "set/reminders/ReminderFile.h"

#include <bit>
#include <string>
#include <utility>

#include "set/reminders/ReminderSchema.h"
#include "set/text/Utf16.h"

namespace epgset {
namespace {

/// Ready for statements: changes reach the disk before they count, older files get the tables of today.
OwnDatabase opened(const std::filesystem::path& file) {
    OwnDatabase database(file);
    database.run("PRAGMA trusted_schema = OFF");
    // Looked at before anything is written, so that a file of a later program stays as it is.
    migrateReminders(database);
    {
        OwnStatement journal(database, "PRAGMA journal_mode = WAL");
        if (!journal.step() || journal.text(0) != "wal")
            database.fail("it cannot be given a write-ahead log");
    }
    database.run("PRAGMA synchronous = FULL");
    return database;
}

constexpr const char* insertText =
    "INSERT INTO reminder (channel_type, major, minor, ptc, program_number, event_id, reserve_type,"
    " repeat_type, repeat_days, creation_method, start_utc, start_wall, duration, title, synopsis,"
    " series_title, series_place) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr const char* updateText =
    "UPDATE reminder SET channel_type = ?, major = ?, minor = ?, ptc = ?, program_number = ?, event_id = ?,"
    " reserve_type = ?, repeat_type = ?, repeat_days = ?, creation_method = ?, start_utc = ?,"
    " start_wall = ?, duration = ?, title = ?, synopsis = ?, series_title = ?, series_place = ? WHERE uid = "
    "?";

constexpr const char* loadText =
    "SELECT channel_type, major, minor, ptc, program_number, event_id, reserve_type, repeat_type,"
    " repeat_days, creation_method, start_utc, start_wall, duration, title, synopsis, series_title,"
    " series_place, uid FROM reminder ORDER BY uid";

/// The values of all columns but the uid, in the order of the statements above.
void bindValues(OwnStatement& statement, const ReminderEntry& entry) {
    const CRemindInfo& info = entry.info;
    // Before the first value is bound: without memory for them the statement is as it was.
    const std::string title = titleOf(info);
    const std::string synopsis = synopsisOf(info);
    statement.bind(info.ChannelType()).bind(info.Major()).bind(info.Minor()).bind(info.PTC());
    statement.bind(info.ProgramNumber()).bind(info.EventId()).bind(info.ReserveType());
    statement.bind(info.RepeatType()).bind(info.ManualRepeat()).bind(info.CreationMethod());
    statement.bind(entry.start);
    if (entry.wallStart) {
        statement.bind(*entry.wallStart);
    } else {
        statement.bindNull();
    }
    statement.bind(info.Duration());
    statement.bind(title).bind(synopsis);
    statement.bind(entry.seriesTitle).bind(static_cast<std::int64_t>(entry.series));
}

CRemindInfo::Text unitsOf(const std::string& text, std::endian order) {
    CRemindInfo::Text units(utf16Length(text), 0);
    utf16FromUtf8(text, order, {reinterpret_cast<unsigned char*>(units.data()), units.size() * 2});
    return units;
}

/// One row of the load statement.
class Row {
public:
    explicit Row(const OwnStatement& statement) : statement_(statement) {}

    template <typename Value>
    Value next() {
        return static_cast<Value>(statement_.integer(column_++));
    }

    std::string nextText() { return statement_.text(column_++); }

    std::optional<WallSeconds> nextWallSeconds() {
        const int column = column_++;
        return statement_.isNull(column) ? std::nullopt : std::optional(statement_.integer(column));
    }

private:
    const OwnStatement& statement_;
    int column_ = 0;
};

ReminderEntry entryOf(Row row) {
    ReminderEntry entry;
    CRemindInfo& info = entry.info;
    const auto channelType = row.next<int>();
    const auto major = row.next<short>();
    const auto minor = row.next<short>();
    const auto ptc = row.next<std::uint16_t>();
    info.Set(major, minor, ptc, channelType, row.next<std::uint16_t>());
    info.SetEventId(row.next<int>());
    info.SetReserveType(row.next<CReminder::RESERVE_TYPE>());
    const auto repeat = row.next<CReminder::REMINDER_REPEAT_TYPE>();
    info.SetRepeat(repeat, row.next<int>());
    info.SetCreationMethod(row.next<CReminder::CREATION_TYPE>());
    entry.start = row.next<std::int64_t>();
    entry.wallStart = row.nextWallSeconds();
    if (entry.wallStart) entry.start = unixAtWallClock(*entry.wallStart);
    info.SetDuration(row.next<std::uint32_t>());
    info.SetTitle(unitsOf(row.nextText(), std::endian::big));
    info.SetSynopsis(unitsOf(row.nextText(), std::endian::native));
    entry.seriesTitle = row.nextText();
    entry.series = row.next<SeriesPlace>();
    info.SetUid(row.next<unsigned long>());
    return entry;
}

}  // namespace

ReminderFile::ReminderFile(const std::filesystem::path& file)
    : database_(opened(file)),
      insert_(database_, insertText),
      update_(database_, updateText),
      remove_(database_, "DELETE FROM reminder WHERE uid = ?") {}

std::vector<ReminderEntry> ReminderFile::load() {
    std::vector<ReminderEntry> entries;
    OwnStatement statement(database_, loadText);
    while (statement.step())
        entries.push_back(entryOf(Row(statement)));
    return entries;
}

unsigned long ReminderFile::insert(const ReminderEntry& entry) {
    database_.requireInPlace();
    bindValues(insert_, entry);
    insert_.step();
    return static_cast<unsigned long>(sqlite3_last_insert_rowid(database_.handle()));
}

void ReminderFile::update(const ReminderEntry& entry) {
    database_.requireInPlace();
    bindValues(update_, entry);
    update_.bind(static_cast<std::int64_t>(entry.info.UID())).step();
}

void ReminderFile::remove(unsigned long uid) {
    database_.requireInPlace();
    remove_.bind(static_cast<std::int64_t>(uid)).step();
}

void ReminderFile::change(std::span<const unsigned long> removed, std::span<const ReminderEntry> replaced) {
    OwnTransaction transaction(database_);
    for (const unsigned long uid : removed)
        remove(uid);
    for (const ReminderEntry& entry : replaced)
        update(entry);
    transaction.commit();
}

}  // namespace epgset
