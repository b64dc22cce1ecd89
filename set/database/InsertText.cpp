#include "set/database/InsertText.h"

#include <limits>

namespace epgset {
namespace {

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// Takes what comes next from a text.
class Reading {
public:
    explicit Reading(std::string_view text) : length_(text.size()), rest_(text) {}

    bool take(std::string_view expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(expected.size());
        return true;
    }

    bool takeName() {
        std::size_t length = 0;
        while (length < rest_.size() && isNameCharacter(rest_[length]))
            ++length;
        rest_.remove_prefix(length);
        return length != 0;
    }

    void takeBlanks() {
        while (take(" ")) {
        }
    }

    /// Adds the text of a literal to `value`; false when there is none. Quotes stand doubled in it.
    bool takeLiteral(std::string& value) {
        if (!take("'")) return false;
        for (;;) {
            const std::size_t end = rest_.find('\'');
            if (end == std::string_view::npos) return false;
            value.append(rest_, 0, end);
            rest_.remove_prefix(end + 1);
            if (!take("'")) return true;
            value += '\'';
        }
    }

    bool atEnd() const { return rest_.empty(); }
    std::size_t position() const { return length_ - rest_.size(); }

private:
    std::size_t length_;
    std::string_view rest_;
};

}  // namespace

std::optional<InsertText> InsertText::of(std::string_view sql) {
    static_assert(longestStatement <= std::numeric_limits<std::uint16_t>::max());
    if (sql.size() > longestStatement || sql.find('\0') != std::string_view::npos) return std::nullopt;
    Reading reading(sql);
    if (!reading.take("INSERT INTO ") || !reading.takeName() || !reading.take(" values("))
        return std::nullopt;
    std::optional<InsertText> insert(std::in_place);
    insert->row_.reserve(sql.size());
    std::size_t copied = 0;
    const auto copyTo = [&](std::size_t end) {
        insert->withParameters_.append(sql, copied, end - copied);
        copied = end;
    };
    do {
        if (insert->columns_ == mostColumns) return std::nullopt;
        reading.takeBlanks();
        copyTo(reading.position());
        if (!reading.takeLiteral(insert->row_)) return std::nullopt;
        copied = reading.position();
        insert->withParameters_ += '?';
        insert->ends_[insert->columns_++] = static_cast<std::uint16_t>(insert->row_.size());
        reading.takeBlanks();
    } while (reading.take(","));
    if (!reading.take(")")) return std::nullopt;
    reading.takeBlanks();
    reading.take(";");
    reading.takeBlanks();
    if (!reading.atEnd()) return std::nullopt;
    copyTo(sql.size());
    return insert;
}

int InsertText::bind(sqlite3_stmt* statement, const std::string& row) const {
    std::size_t begin = 0;
    for (std::size_t column = 0; column < columns_; ++column) {
        const std::size_t end = ends_[column];
        const int code = sqlite3_bind_text(statement, static_cast<int>(column + 1), row.data() + begin,
                                           static_cast<int>(end - begin), SQLITE_STATIC);
        if (code != SQLITE_OK) return code;
        begin = end;
    }
    return SQLITE_OK;
}

}  // namespace epgset
