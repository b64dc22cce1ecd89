#include "Vexmoor/KeptMirror.h"

#include <sqlite3.h>

#include <atomic>
#include <map>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/TextCompare.h"
#include "host/Statement.h"

namespace {

struct Mirror {
    sqlite3* database;
    unsigned version;
    std::vector<MirroredBooking> bookings;
};

/// The last mirror; whoever looks at it takes it out for as long, so that it needs no lock.
class MirrorSlot {
public:
    ~MirrorSlot() { put(nullptr); }

    std::unique_ptr<Mirror> take() { return std::unique_ptr<Mirror>(m_mirror.exchange(nullptr)); }
    void put(std::unique_ptr<Mirror> mirror) {
        const std::unique_ptr<Mirror> before(m_mirror.exchange(mirror.release()));
    }

private:
    std::atomic<Mirror*> m_mirror = nullptr;  ///< owned
};

constinit MirrorSlot lastMirror;

/// SQLite's version of a database; nothing for one that is not open.
std::optional<unsigned> versionOf(sqlite3* handle, const char* database) {
    unsigned version = 0;
    if (sqlite3_file_control(handle, database, SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return std::nullopt;
    return version;
}

/// Whether there are temporary tables, which may stand before the table, or triggers, which may count on its
/// statements. SQLite opens the database of these only for who looks into it, and a client would see that.
bool hasTemporaries(const KeptMirror::ConnectionPtr& connection) {
    if (!versionOf(connection->handle(), "temp")) return false;
    Statement temporaries;
    temporaries.setConnection(connection);
    temporaries.setSql("SELECT 1 FROM sqlite_temp_master LIMIT 1;");
    temporaries.compile();
    return sqlite3_step(temporaries.handle()) != SQLITE_DONE;
}

/// The version of what is committed; nothing while a write may still be undone, and with temporaries.
std::optional<unsigned> committedVersion(const KeptMirror::ConnectionPtr& connection) {
    sqlite3* const handle = connection ? connection->handle() : nullptr;
    if (handle == nullptr || sqlite3_get_autocommit(handle) == 0 ||
        sqlite3_txn_state(handle, "main") == SQLITE_TXN_WRITE || hasTemporaries(connection))
        return std::nullopt;
    return versionOf(handle, "main");
}

/// Whether the table is the one that the import makes, and no trigger counts on its statements. In a table of
/// a client's own making a row written again may be another one.
bool hasPlainTable(const KeptMirror::ConnectionPtr& connection, const std::string& createSql) {
    Statement schema;
    schema.setConnection(connection);
    schema.setSql("SELECT type, sql FROM sqlite_master WHERE name='myView' OR type='trigger';");
    schema.compile();
    bool found = false;
    int result = SQLITE_OK;
    while ((result = sqlite3_step(schema.handle())) == SQLITE_ROW) {
        const std::string sql = columnText(schema.handle(), 1);  // as it was given, less the semicolon
        found = isText(columnText(schema.handle(), 0), "table") && sql + ";" == createSql;
        if (!found) return false;
    }
    return found && result == SQLITE_DONE;
}

/// Whether clearing would take back just what these bookings wrote. It goes by identifiers and names: where
/// two bookings share an identifier, or a programme has the name of a manual booking, it takes other rows.
/// Manual bookings have all to be there: their INSERT tells of no failure.
bool isRepeatable(const KeptMirror::ConnectionPtr& connection, const std::vector<MirroredBooking>& bookings) {
    std::map<std::string_view, bool> manualById;
    int manualsLeft = 0;
    for (const MirroredBooking& booking : bookings) {
        if (!manualById.emplace(booking.scheduleId, booking.manual.has_value()).second) return false;
        if (booking.manual) ++manualsLeft;
    }
    Statement scheduled;
    scheduled.setConnection(connection);
    scheduled.setSql(scheduledRowsSql);
    scheduled.compile();
    int result = SQLITE_OK;
    while ((result = sqlite3_step(scheduled.handle())) == SQLITE_ROW) {
        const auto booking = manualById.find(columnText(scheduled.handle(), 0));
        const bool namedManual = isText(columnText(scheduled.handle(), 1), manualBookingName);
        if (booking == manualById.end() || booking->second != namedManual) return false;
        if (namedManual) --manualsLeft;
    }
    return result == SQLITE_DONE && manualsLeft == 0 && !manualById.contains("");
}

}  // namespace

bool KeptMirror::holds(const ConnectionPtr& connection, const std::vector<MirroredBooking>& bookings) {
    const auto version = committedVersion(connection);
    if (!version) return false;
    std::unique_ptr<Mirror> mirror = lastMirror.take();
    const bool same = mirror && mirror->database == connection->handle() && mirror->version == *version &&
                      mirror->bookings == bookings;
    if (same) lastMirror.put(std::move(mirror));
    return same;
}

void KeptMirror::forget() {
    lastMirror.take();
}

KeptMirror::Writing::Writing(const ConnectionPtr& connection)
    : m_connection(connection), m_version(committedVersion(connection)) {}

void KeptMirror::Writing::wrote(int result) {
    if (!m_version) return;
    ++*m_version;  // a statement that was run to its end is one transaction
    if (result != SQLITE_DONE || committedVersion(m_connection) != m_version) m_version.reset();
}

void KeptMirror::Writing::read(int result) {
    if (result != SQLITE_DONE) m_version.reset();
}

void KeptMirror::Writing::keep(std::vector<MirroredBooking> bookings, std::string (*createSql)()) {
    if (!m_version) return;
    try {
        if (!hasPlainTable(m_connection, createSql()) || !isRepeatable(m_connection, bookings) ||
            committedVersion(m_connection) != m_version)
            return;
        lastMirror.put(
            std::make_unique<Mirror>(Mirror{m_connection->handle(), *m_version, std::move(bookings)}));
    } catch (const std::bad_alloc&) {
        // The table is right all the same: the next mirror is written.
    }
}
