// What the schedule columns were last written from, as long as the table holds just that.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/Connection.h"
#include "host/SharedPtr.h"

/// One booking as the mirror writes it: into the row of its programme, or as a row of its own.
struct MirroredBooking {
    std::string channelId;
    std::string programId;
    std::string scheduleId;
    std::string scheduleType;
    std::string repeat;

    /// The rest of the row of a manual booking, which has one of its own.
    struct ManualRow {
        std::string channelNumber;
        std::string channelName;
        std::string serviceType;
        std::string antenna;
        std::string scrambled;
        std::string start;
        std::string end;

        bool operator==(const ManualRow&) const = default;
    };
    std::optional<ManualRow> manual;

    bool operator==(const MirroredBooking&) const = default;
};

/// The name of a manual booking's row.
constexpr const char* manualBookingName = "scheduled_event";

/// The rows with a schedule: its identifier, and the programme's name.
constexpr const char* scheduledRowsSql =
    "SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';";

/// Remembers the last mirror, so that bookings which the table shows already are not cleared and written
/// again: that would end in the very same table. What the table holds is told by SQLite's version of the
/// database, which counts the transactions, whoever wrote them.
///
/// Used by any thread: of two that mirror at once, one finds nothing kept.
class KeptMirror {
public:
    using ConnectionPtr = Container::SharedPtr<Connection>;

    /// Whether the table is as the mirror of just these bookings left it.
    static bool holds(const ConnectionPtr& connection, const std::vector<MirroredBooking>& bookings);

    /// Makes the next mirror be written, whatever the table holds.
    static void forget();

    /// Follows the statements of one mirror while they run.
    class Writing {
    public:
        explicit Writing(const ConnectionPtr& connection);

        /// To be told of each statement that changes the table, right after it, with SQLite's answer.
        void wrote(int result);

        /// To be told of a statement that was to be read to its end, with SQLite's last answer.
        void read(int result);

        /// Remembers the mirror of these bookings, unless a statement failed, somebody else wrote meanwhile,
        /// or writing it again would change anything. Without memory it is not remembered. `createSql`
        /// answers the statement that makes the table.
        void keep(std::vector<MirroredBooking> bookings, std::string (*createSql)());

    private:
        ConnectionPtr m_connection;
        std::optional<unsigned> m_version;  ///< nothing when the mirror is not to be kept
    };
};
