#include "Vexmoor/KeptMirror.h"

#include <sqlite3.h>

#include <atomic>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

#include "Vexmoor/ColumnText.h"
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

/// Whether something of a client's may run with each of the mirror's statements.
bool hasTriggers(const KeptMirror::ConnectionPtr& connection) {
    Statement triggers;
    triggers.setConnection(connection);
    triggers.setSql(
        "SELECT count(*) FROM (SELECT type FROM sqlite_master UNION ALL SELECT type FROM sqlite_temp_master) "
        "WHERE type='trigger';");
    triggers.compile();
    return sqlite3_step(triggers.handle()) != SQLITE_ROW || sqlite3_column_int(triggers.handle(), 0) != 0;
}

/// Whether clearing would take back just what these bookings wrote. It goes by identifiers and names: where
/// two bookings share an identifier, or a programme has the name of a manual booking, it takes other rows.
bool isRepeatable(const KeptMirror::ConnectionPtr& connection, const std::vector<MirroredBooking>& bookings) {
    std::map<std::string_view, bool> manualById;
    for (const MirroredBooking& booking : bookings)
        if (!manualById.emplace(booking.scheduleId, booking.manual.has_value()).second) return false;
    Statement scheduled;
    scheduled.setConnection(connection);
    scheduled.setSql(scheduledRowsSql);
    scheduled.compile();
    int result = SQLITE_OK;
    while ((result = sqlite3_step(scheduled.handle())) == SQLITE_ROW) {
        const auto booking = manualById.find(columnText(scheduled.handle(), 0));
        const bool namedManual = std::string_view(columnText(scheduled.handle(), 1)) == manualBookingName;
        if (booking == manualById.end() || booking->second != namedManual) return false;
    }
    return result == SQLITE_DONE && !manualById.contains("");
}

}  // namespace

KeptMirror::Version KeptMirror::versionOf(const ConnectionPtr& connection) {
    sqlite3* const database = connection ? connection->handle() : nullptr;
    unsigned version = 0;
    if (database == nullptr || sqlite3_get_autocommit(database) == 0 ||
        sqlite3_file_control(database, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return std::nullopt;
    return version;
}

bool KeptMirror::holds(const ConnectionPtr& connection, const std::vector<MirroredBooking>& bookings) {
    std::unique_ptr<Mirror> mirror = lastMirror.take();
    const bool same = mirror && mirror->database == connection->handle() &&
                      versionOf(connection) == mirror->version && mirror->bookings == bookings;
    if (same) lastMirror.put(std::move(mirror));
    return same;
}

void KeptMirror::keep(const ConnectionPtr& connection, Version before, unsigned writes,
                      std::vector<MirroredBooking> bookings) {
    const Version after = versionOf(connection);
    if (!before || after != *before + writes || hasTriggers(connection) ||
        !isRepeatable(connection, bookings))
        return;
    lastMirror.put(std::make_unique<Mirror>(Mirror{connection->handle(), *after, std::move(bookings)}));
}

void KeptMirror::forget() {
    lastMirror.take();
}
