#include "set/database/SearchScore.h"

#include <utf8proc.h>

#include <cstring>
#include <exception>
#include <memory>

#include "set/database/SearchFolding.h"

namespace epgset {
namespace {

/// Whether the code point that ends just before `position` belongs to a word.
bool wordBefore(std::string_view text, std::size_t position) {
    const auto last = static_cast<unsigned char>(text[position - 1]);
    if (last < 0x80) return (last >= 'a' && last <= 'z') || (last >= '0' && last <= '9');
    std::size_t start = position - 1;
    while (start > 0 && position - start < 4 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
        --start;
    utf8proc_int32_t codePoint = -1;
    if (utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + start),
                         static_cast<utf8proc_ssize_t>(position - start), &codePoint) <= 0)
        return false;
    switch (utf8proc_category(codePoint)) {
        case UTF8PROC_CATEGORY_LU:
        case UTF8PROC_CATEGORY_LL:
        case UTF8PROC_CATEGORY_LT:
        case UTF8PROC_CATEGORY_LM:
        case UTF8PROC_CATEGORY_LO:
        case UTF8PROC_CATEGORY_MN:
        case UTF8PROC_CATEGORY_MC:
        case UTF8PROC_CATEGORY_ME:
        case UTF8PROC_CATEGORY_ND:
        case UTF8PROC_CATEGORY_NL:
        case UTF8PROC_CATEGORY_NO:
            return true;
        default:
            return false;
    }
}

/// Position of the needle from `from` on; npos when there is none.
std::size_t find(std::string_view text, std::string_view needle, std::size_t from) {
    constexpr std::size_t shortText = 256;
    if (text.size() <= shortText) return text.find(needle, from);
    // Linear whatever the texts hold, but slow to begin.
    const void* const found = memmem(text.data() + from, text.size() - from, needle.data(), needle.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

SearchScore scoreFolded(std::string_view text, std::string_view needle) {
    // Giant texts in which the needle recurs all the time are not searched to their end for a better
    // match.
    constexpr std::size_t mostWork = 1 << 24;
    std::size_t work = 0;
    for (std::size_t from = 0; work < mostWork; work += needle.size()) {
        const std::size_t position = find(text, needle, from);
        if (position == std::string_view::npos) return from == 0 ? NoMatch : MatchInside;
        if (position == 0) return text.size() == needle.size() ? MatchWhole : MatchAtWordStart;
        if (!wordBefore(text, position)) return MatchAtWordStart;
        from = position + 1;
    }
    return MatchInside;
}

}  // namespace

SearchScore Search::scoreOf(std::string_view text) {
    if (needle_.empty()) return NoMatch;
    folded_.clear();
    appendFolded(folded_, text);
    return scoreFolded(folded_, needle_);
}

namespace {

std::string_view textOf(sqlite3_value* value) {
    const unsigned char* const text = sqlite3_value_text(value);
    if (!text) return {};
    return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void evaluateSearchScore(sqlite3_context* context, int, sqlite3_value** arguments) {
    constexpr int needleArgument = 1;
    try {
        // SQLite keeps the search from row to row as long as the argument is a constant.
        auto* search = static_cast<Search*>(sqlite3_get_auxdata(context, needleArgument));
        std::unique_ptr<Search> made;
        if (!search) {
            made = std::make_unique<Search>(textOf(arguments[needleArgument]));
            search = made.get();
        }
        sqlite3_result_int(context, search->scoreOf(textOf(arguments[0])));
        if (made) {
            sqlite3_set_auxdata(context, needleArgument, made.release(),
                                [](void* kept) { delete static_cast<Search*>(kept); });
        }
    } catch (const std::exception&) {
        sqlite3_result_error_nomem(context);
    }
}

}  // namespace

int registerSearchScore(sqlite3* database) {
    return sqlite3_create_function_v2(database, "SEARCH_SCORE", 2,
                                      SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                      evaluateSearchScore, nullptr, nullptr, nullptr);
}

}  // namespace epgset
