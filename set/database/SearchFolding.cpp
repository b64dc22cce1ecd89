#include "set/database/SearchFolding.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "set/text/ByteWords.h"

namespace epgset {
namespace {

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// Length of the ASCII that the text begins with.
std::size_t asciiLength(std::string_view text) {
    std::size_t at = 0;
    while (text.size() - at >= wordBytes && highBits(wordAt(text.data() + at)) == 0)
        at += wordBytes;
    while (at < text.size() && isAscii(text[at]))
        ++at;
    return at;
}

/// Makes ASCII lower case in its place.
void lowerAscii(char* text, std::size_t length) {
    std::size_t at = 0;
    for (; length - at >= wordBytes; at += wordBytes) {
        std::uint64_t word = wordAt(text + at);
        // The high bit of each byte tells whether it is at least "A", and whether it is above "Z".
        const std::uint64_t fromA = word + everyByte(0x80 - 'A');
        const std::uint64_t aboveZ = word + everyByte(0x80 - 'Z' - 1);
        word |= highBits(fromA & ~aboveZ) >> 2;
        std::memcpy(text + at, &word, wordBytes);
    }
    for (; at < length; ++at)
        if (text[at] >= 'A' && text[at] <= 'Z') text[at] = static_cast<char>(text[at] + ('a' - 'A'));
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

/// Adds the folded form of one code point.
void appendFoldedPoint(std::string& folded, utf8proc_int32_t codePoint) {
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

/// The folded forms of the code points that take two bytes: of Latin letters with accents, of Greek,
/// Cyrillic, Hebrew and Arabic. A search over a guide in one of these would look up little else.
class TwoByteForms {
public:
    TwoByteForms() {
        std::string folded;
        for (std::size_t index = 0; index < forms_.size(); ++index) {
            folded.clear();
            appendFoldedPoint(folded, static_cast<utf8proc_int32_t>(first + index));
            Form& form = forms_[index];
            if (folded.size() > form.bytes.size()) continue;  // none is
            folded.copy(form.bytes.data(), folded.size());
            form.length = static_cast<std::uint8_t>(folded.size());
        }
    }

    /// Adds the form of the code point that the text begins with; false when that does not take two bytes.
    bool append(std::string& folded, std::string_view text) const {
        if (text.size() < 2) return false;
        const unsigned lead = static_cast<unsigned char>(text[0]);
        const unsigned trail = static_cast<unsigned char>(text[1]);
        if (lead < 0xC2 || lead > 0xDF || (trail & 0xC0U) != 0x80U) return false;
        const Form& form = forms_[((lead & 0x1FU) << 6U | (trail & 0x3FU)) - first];
        if (form.length == unknown) return false;
        folded.append(form.bytes.data(), form.length);
        return true;
    }

private:
    static constexpr std::size_t first = 0x80;
    static constexpr std::uint8_t unknown = 0xFF;

    struct Form {
        std::array<char, 7> bytes{};
        std::uint8_t length = unknown;
    };

    std::array<Form, 0x800 - first> forms_;
};

/// Adds the folded form of what the text begins with, which is not ASCII, and answers its length.
std::size_t appendFoldedBeginning(std::string& folded, std::string_view text) {
    static const TwoByteForms twoByteForms;
    if (twoByteForms.append(folded, text)) return 2;
    utf8proc_int32_t codePoint = -1;
    const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                     static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    if (length > 0) {
        appendFoldedPoint(folded, codePoint);
        return static_cast<std::size_t>(length);
    }
    folded += text.front();
    return 1;
}

}  // namespace

void appendFolded(std::string& folded, std::string_view text) {
    while (!text.empty()) {
        if (const std::size_t length = asciiLength(text); length != 0) {
            folded.append(text, 0, length);
            lowerAscii(folded.data() + folded.size() - length, length);
            text.remove_prefix(length);
        } else {
            text.remove_prefix(appendFoldedBeginning(folded, text));
        }
    }
}

std::string foldedForSearch(std::string_view text) {
    std::string folded;
    appendFolded(folded, text);
    return folded;
}

}  // namespace epgset
