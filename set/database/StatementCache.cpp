#include "set/database/StatementCache.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <new>
#include <utility>

namespace epgset {

sqlite3_stmt* StatementCache::take(std::string_view sql) {
    const auto found = m_byText.find(sql);
    if (found == m_byText.end()) return nullptr;
    const auto place = found->second;
    m_byText.erase(found);
    sqlite3_stmt* const statement = place->release();
    m_statements.erase(place);
    // SQLite counts a statement's steps over all of its runs, and asks for the time by that count.
    sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 1);
    return statement;
}

void StatementCache::put(sqlite3_stmt* statement) {
    StatementPtr owned(statement);
    const char* const text = sqlite3_sql(statement);
    if (text == nullptr) return;
    const std::string_view sql(text);
    if (sql.size() > longestText || m_byText.contains(sql)) return;
    const bool wasKept = sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_RUN, 0) > 1;
    if (!wasKept && !cameBefore(std::hash<std::string_view>{}(sql))) return;
    sqlite3_clear_bindings(statement);
    try {
        m_statements.push_back(std::move(owned));
        m_byText.emplace(sql, std::prev(m_statements.end()));
    } catch (const std::bad_alloc&) {
        if (!m_statements.empty() && m_statements.back().get() == statement) m_statements.pop_back();
        return;
    }
    if (m_statements.size() <= mostStatements) return;
    m_byText.erase(sqlite3_sql(m_statements.front().get()));
    m_statements.pop_front();
}

void StatementCache::clear() {
    m_byText.clear();
    m_statements.clear();
}

bool StatementCache::cameBefore(std::size_t hash) {
    auto& row = m_seen[hash % m_seen.size()];
    if (std::find(row.begin(), row.end(), hash) != row.end()) return true;
    std::rotate(row.begin(), row.end() - 1, row.end());
    row.front() = hash;
    return false;
}

}  // namespace epgset
