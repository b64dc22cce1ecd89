#include "set/database/SearchScore.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>

namespace epgset {
namespace {

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

/// Writes `text` in lower case to `lower`, which has room for it, eight bytes at a time. False when it
/// is not ASCII.
bool lowerAscii(std::string_view text, char* lower) {
    constexpr std::uint64_t each = 0x0101010101010101U;
    constexpr std::uint64_t highBits = 0x80 * each;
    std::size_t at = 0;
    for (; text.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t)) {
        std::uint64_t bytes;
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if (bytes & highBits) return false;
        // The high bit of each byte tells whether it is at least "A", and whether it is above "Z".
        const std::uint64_t fromA = bytes + (0x80 - 'A') * each;
        const std::uint64_t aboveZ = bytes + (0x80 - 'Z' - 1) * each;
        bytes |= (fromA & ~aboveZ & highBits) >> 2;
        std::memcpy(lower + at, &bytes, sizeof bytes);
    }
    for (; at < text.size(); ++at) {
        if (static_cast<unsigned char>(text[at]) >= 0x80) return false;
        lower[at] = asciiLower(text[at]);
    }
    return true;
}

/// A mark that only accents a letter. Marks that make another letter of it (kana voicing, nukta, the
/// vowel signs of Indic and South-East Asian scripts) are no accents.
bool isAccent(utf8proc_int32_t codePoint) {
    constexpr utf8proc_propval_t overlay = 1;
    constexpr utf8proc_propval_t firstPoint = 10;  // Hebrew and Arabic points
    constexpr utf8proc_propval_t lastPoint = 36;
    constexpr utf8proc_propval_t firstAttached = 200;  // above, below, attached
    const utf8proc_propval_t combiningClass = utf8proc_get_property(codePoint)->combining_class;
    return combiningClass == overlay || (combiningClass >= firstPoint && combiningClass <= lastPoint) ||
           combiningClass >= firstAttached;
}

utf8proc_ssize_t readCodePoint(std::string_view text, utf8proc_int32_t& codePoint) {
    return utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                            static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
}

/// Adds the folded form of one code point.
void appendFolded(std::string& folded, utf8proc_int32_t codePoint) {
    std::array<utf8proc_int32_t, 32> parts{};
    int boundary = 0;
    const utf8proc_ssize_t count = utf8proc_decompose_char(
        codePoint, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
        static_cast<utf8proc_option_t>(UTF8PROC_CASEFOLD | UTF8PROC_DECOMPOSE), &boundary);
    for (utf8proc_ssize_t part = 0; part < std::min<utf8proc_ssize_t>(count, std::ssize(parts)); ++part) {
        const utf8proc_int32_t partPoint = parts[static_cast<std::size_t>(part)];
        if (isAccent(partPoint)) continue;
        std::array<utf8proc_uint8_t, 4> bytes{};
        const utf8proc_ssize_t length = utf8proc_encode_char(partPoint, bytes.data());
        folded.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
    }
}

/// Whether the code point that ends just before `position` belongs to a word.
bool wordBefore(std::string_view text, std::size_t position) {
    const auto last = static_cast<unsigned char>(text[position - 1]);
    if (last < 0x80) return (last >= 'a' && last <= 'z') || (last >= '0' && last <= '9');
    std::size_t start = position - 1;
    while (start > 0 && position - start < 4 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
        --start;
    utf8proc_int32_t codePoint = -1;
    if (readCodePoint(text.substr(start, position - start), codePoint) <= 0) return false;
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

std::string foldedForSearch(std::string_view text) {
    std::string folded;
    folded.reserve(text.size());
    while (!text.empty()) {
        utf8proc_int32_t codePoint = -1;
        utf8proc_ssize_t length = 1;
        if (static_cast<unsigned char>(text.front()) < 0x80) {
            folded += asciiLower(text.front());
        } else if (length = readCodePoint(text, codePoint); length > 0) {
            appendFolded(folded, codePoint);
        } else {
            folded += text.front();
            length = 1;
        }
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return folded;
}

SearchScore searchScore(std::string_view text, std::string_view foldedNeedle) {
    if (foldedNeedle.empty()) return NoMatch;
    std::array<char, 256> shortLower;
    std::string longLower;
    char* lower = shortLower.data();
    if (text.size() > shortLower.size()) {
        longLower.resize(text.size());
        lower = longLower.data();
    }
    if (!lowerAscii(text, lower)) return scoreFolded(foldedForSearch(text), foldedNeedle);
    return scoreFolded(std::string_view(lower, text.size()), foldedNeedle);
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
        // SQLite keeps the folded needle from row to row as long as the argument is a constant.
        auto* kept = static_cast<std::string*>(sqlite3_get_auxdata(context, needleArgument));
        std::unique_ptr<std::string> made;
        if (!kept) {
            made = std::make_unique<std::string>(foldedForSearch(textOf(arguments[needleArgument])));
            kept = made.get();
        }
        sqlite3_result_int(context, searchScore(textOf(arguments[0]), *kept));
        if (made) {
            sqlite3_set_auxdata(context, needleArgument, made.release(),
                                [](void* needle) { delete static_cast<std::string*>(needle); });
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
