// Whether the table still holds the bookings that were mirrored last.
#include "Vexmoor/MirrorState.h"

#include <utility>

MirrorState::Change::Change(MirrorState& state) : m_state(state) {
    const std::lock_guard lock(m_state.m_mutex);
    if (m_state.m_running++ > 0) m_state.m_overlapped = true;
    m_state.m_known = false;
}

MirrorState::Change::~Change() {
    const std::lock_guard lock(m_state.m_mutex);
    if (--m_state.m_running == 0) m_state.m_overlapped = false;
}

MirrorState::Content MirrorState::contentOf(sqlite3* database) {
    Content content;
    content.database = database;
    sqlite3_file_control(database, "main", SQLITE_FCNTL_DATA_VERSION, &content.main);
    sqlite3_file_control(database, "temp", SQLITE_FCNTL_DATA_VERSION, &content.temp);  // 0 without one
    return content;
}

bool MirrorState::holds(sqlite3* database, const std::string& bookings) {
    const std::lock_guard lock(m_mutex);
    // Inside a transaction a change does not show until it is committed.
    return m_known && m_running == 0 && sqlite3_get_autocommit(database) != 0 &&
           m_content == contentOf(database) && m_bookings == bookings;
}

void MirrorState::begin(sqlite3* database) {
    const std::lock_guard lock(m_mutex);
    m_allRan = database != nullptr;
    if (!m_allRan) return;
    m_changesBefore = sqlite3_total_changes(database);
    m_changes = 0;
}

void MirrorState::ended(sqlite3* database, int result, bool changes) {
    const std::lock_guard lock(m_mutex);
    if (database == nullptr) return;
    if (result != SQLITE_DONE && result != SQLITE_ROW) m_allRan = false;
    if (changes && result == SQLITE_DONE) m_changes += sqlite3_changes(database);
}

void MirrorState::finish(sqlite3* database, std::string bookings) {
    const std::lock_guard lock(m_mutex);
    m_known = m_allRan && !m_overlapped && sqlite3_get_autocommit(database) != 0 &&
              sqlite3_total_changes(database) - m_changesBefore == m_changes;
    if (!m_known) return;
    m_content = contentOf(database);
    m_bookings = std::move(bookings);
}
