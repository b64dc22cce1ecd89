#include "set/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "set/text/ByteWords.h"

namespace epgset {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// Whether eight bytes are all ASCII and of the repertoire; may say no of eight that are.
bool isPlainWord(std::uint64_t word, Utf8Repertoire repertoire) noexcept {
    return (highBits(word) | (repertoire == Utf8Repertoire::Xml ? controlBytes(word) : 0)) == 0;
}

bool isAllowed(std::int32_t character, Utf8Repertoire repertoire) noexcept {
    if (repertoire == Utf8Repertoire::All) return true;
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character != 0xFFFE && character != 0xFFFF;
}

/// Bytes of the clean character at the front of a text that is not empty, 0 if there is none.
std::size_t cleanCharacterLength(std::string_view text, Utf8Repertoire repertoire) noexcept {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) return isAllowed(first, repertoire) ? 1 : 0;
    const std::size_t longest = std::min<std::size_t>(text.size(), 4);
    std::int32_t character = 0;
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(longest), &character);
    return length > 0 && isAllowed(character, repertoire) ? static_cast<std::size_t>(length) : 0;
}

std::size_t cleanPrefixLength(std::string_view text, Utf8Repertoire repertoire) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= wordBytes && isPlainWord(wordAt(text.data() + at), repertoire)) {
            at += wordBytes;
            continue;
        }
        // One character after another until the word is behind, then whole words again.
        const std::size_t until = std::min(at + wordBytes, text.size());
        while (at < until) {
            const std::size_t length = cleanCharacterLength(text.substr(at), repertoire);
            if (length == 0) return at;
            at += length;
        }
    }
    return at;
}

struct ByteRange {
    unsigned char low;
    unsigned char high;
};

/// What may follow a lead byte: neither overlong forms nor surrogates nor anything above U+10FFFF.
ByteRange secondByteRange(unsigned char lead) noexcept {
    switch (lead) {
        case 0xE0:
            return {0xA0, 0xBF};
        case 0xED:
            return {0x80, 0x9F};
        case 0xF0:
            return {0x90, 0xBF};
        case 0xF4:
            return {0x80, 0x8F};
        default:
            return {0x80, 0xBF};
    }
}

std::size_t lengthByLead(unsigned char lead) noexcept {
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 1;
}

/// Bytes at the front of a text that is not empty which one U+FFFD stands for: a character outside the
/// repertoire, a character that breaks off, or a byte that begins none.
std::size_t replacedLength(std::string_view text) noexcept {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const std::size_t whole = std::min(lengthByLead(byteAt(0)), text.size());
    ByteRange range = secondByteRange(byteAt(0));
    std::size_t length = 1;
    while (length < whole && byteAt(length) >= range.low && byteAt(length) <= range.high) {
        range = {0x80, 0xBF};
        ++length;
    }
    return length;
}

}  // namespace

bool isCleanUtf8(std::string_view text, Utf8Repertoire repertoire) noexcept {
    const auto isPlain = [repertoire](std::uint64_t word) { return isPlainWord(word, repertoire); };
    return holdsForAllBytes(text, isPlain) || cleanPrefixLength(text, repertoire) == text.size();
}

void appendRepairedUtf8(std::string& out, std::string_view text, Utf8Repertoire repertoire) {
    for (;;) {
        const std::size_t clean = cleanPrefixLength(text, repertoire);
        out.append(text.substr(0, clean));
        text.remove_prefix(clean);
        if (text.empty()) return;
        out.append(replacement);
        text.remove_prefix(replacedLength(text));
    }
}

std::string repairedUtf8(std::string_view text, Utf8Repertoire repertoire) {
    std::string repaired;
    repaired.reserve(text.size());
    appendRepairedUtf8(repaired, text, repertoire);
    return repaired;
}

}  // namespace epgset
