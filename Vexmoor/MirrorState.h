// Whether the table still holds the bookings that were mirrored last.
#pragma once

#include <sqlite3.h>

#include <mutex>
#include <string>

/// Remembers the last mirror whose statements all ran, and the state of the database that it left. A mirror
/// of the same bookings on that state would change nothing. Used by any thread.
class MirrorState {
public:
    /// What changes the table, from before its first statement to after its last one. The result of one that
    /// overlaps with another is not remembered. A null database holds nothing.
    class Change {
    public:
        explicit Change(MirrorState& state);
        ~Change();
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

    private:
        MirrorState& m_state;
    };

    /// Whether the table holds exactly these bookings.
    bool holds(sqlite3* database, const std::string& bookings);

    /// A mirror begins, inside a change.
    void begin(sqlite3* database);

    /// One of its statements has ended with `result`. `changes` says that it is one that changes rows.
    void ended(sqlite3* database, int result, bool changes);

    /// The mirror of these bookings is done.
    void finish(sqlite3* database, std::string bookings);

private:
    /// Which content a database has; the content is another when a number is.
    struct Content {
        sqlite3* database = nullptr;  ///< only compared
        unsigned main = 0;
        unsigned temp = 0;  ///< holds what stands before the table of the same name
        bool operator==(const Content&) const = default;
    };
    static Content contentOf(sqlite3* database);

    std::mutex m_mutex;
    int m_running = 0;          ///< changes that have begun and not ended
    bool m_overlapped = false;  ///< more than one of them was there at once
    bool m_allRan = false;
    int m_changesBefore = 0;
    int m_changes = 0;  ///< rows that the mirror's own statements changed; triggers are a client's
    bool m_known = false;
    Content m_content;
    std::string m_bookings;
};
