// Compiled statements that are kept for the next time that their text comes.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace epgset {

/// The statements of one connection that nobody uses at the moment, by their text. The mirror and the lists
/// come with the same texts again and again, and compiling them takes several times what running them does.
///
/// A statement is kept from the second time on that its text is put in: those of which each comes once, as of
/// clients, leave no trace. The least recently used goes when there are too many. To
/// be used under the connection's lock (sqlite3_db_mutex).
class StatementCache {
public:
    /// A mirror of 250 bookings finds all of its statements again; they take some 5 KiB each.
    static constexpr std::size_t mostStatements = 512;

    /// Longer texts are not kept.
    static constexpr std::size_t longestText = 4096;

    /// The kept statement of a text, as if just compiled; the caller owns it from here on. Null when none is.
    sqlite3_stmt* take(std::string_view sql);

    /// Takes over a statement that has been reset, to keep or to finalise it.
    void put(sqlite3_stmt* statement);

    /// Finalises all kept statements: to be called before and after what changes more than rows.
    void clear();

    std::size_t size() const { return m_statements.size(); }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using StatementPtr = std::unique_ptr<sqlite3_stmt, Finalize>;
    using Statements = std::list<StatementPtr>;

    /// Whether a text of that hash came lately; if not, it has now.
    bool cameBefore(std::size_t hash);

    Statements m_statements;                                              ///< the least recently used first
    std::unordered_map<std::string_view, Statements::iterator> m_byText;  ///< views of the statements' texts

    /// Hashes of texts that came once, some of them, the latest of a row first.
    std::array<std::array<std::size_t, 4>, 256> m_seen{};
};

}  // namespace epgset
