#include "set/text/Utf16.h"

#include <utf8proc.h>

#include "set/text/Utf8.h"

namespace epgset {
namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr char32_t firstSupplementary = 0x10000;

/// A text that is clean for certain: the given one, or a repaired copy.
class CleanText {
public:
    explicit CleanText(std::string_view text) : text_(text) {
        if (isCleanUtf8(text)) return;
        repaired_ = repairedUtf8(text);
        text_ = repaired_;
    }
    CleanText(const CleanText&) = delete;
    CleanText& operator=(const CleanText&) = delete;

    std::string_view get() const { return text_; }

private:
    std::string repaired_;
    std::string_view text_;
};

/// Takes the next character from the front of a clean text that is not empty.
char32_t takeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        text.remove_prefix(1);
        return first;
    }
    utf8proc_int32_t character = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &character);
    text.remove_prefix(static_cast<std::size_t>(length));
    return static_cast<char32_t>(character);
}

/// Writes UTF-16 units into a bounded buffer.
class UnitWriter {
public:
    UnitWriter(std::endian order, std::span<unsigned char> buffer) : order_(order), buffer_(buffer) {}

    std::size_t written() const { return written_; }

    /// Writes a character and answers whether it fitted.
    bool write(char32_t character) {
        const bool pair = character >= firstSupplementary;
        if (buffer_.size() - written_ < (pair ? 4U : 2U)) return false;
        if (pair) {
            const char32_t above = character - firstSupplementary;
            put(0xD800U | (above >> 10));
            put(0xDC00U | (above & 0x3FFU));
        } else {
            put(character);
        }
        return true;
    }

private:
    void put(char32_t unit) {
        const auto high = static_cast<unsigned char>(unit >> 8);
        const auto low = static_cast<unsigned char>(unit & 0xFFU);
        buffer_[written_] = order_ == std::endian::big ? high : low;
        buffer_[written_ + 1] = order_ == std::endian::big ? low : high;
        written_ += 2;
    }

    std::endian order_;
    std::span<unsigned char> buffer_;
    std::size_t written_ = 0;
};

/// A unit takes this many bytes of UTF-8 at most, and two that are a pair four.
constexpr std::size_t mostBytesOfUnit = 3;

/// Writes a character and answers where the next one goes.
char* putUtf8(char* place, char32_t character) {
    return place + utf8proc_encode_char(static_cast<utf8proc_int32_t>(character),
                                        reinterpret_cast<utf8proc_uint8_t*>(place));
}

bool isHighSurrogate(char32_t unit) {
    return (unit & 0xFC00U) == 0xD800U;
}
bool isLowSurrogate(char32_t unit) {
    return (unit & 0xFC00U) == 0xDC00U;
}

}  // namespace

std::size_t utf16Length(std::string_view utf8) {
    const CleanText clean(utf8);
    std::size_t units = 0;
    for (const char byte : clean.get()) {
        const auto value = static_cast<unsigned char>(byte);
        units += (value & 0xC0U) != 0x80 ? 1 : 0;  // each character once
        units += value >= 0xF0 ? 1 : 0;            // those of four bytes twice
    }
    return units;
}

std::size_t utf16FromUtf8(std::string_view utf8, std::endian order, std::span<unsigned char> buffer) {
    const CleanText clean(utf8);
    std::string_view rest = clean.get();
    UnitWriter writer(order, buffer);
    while (!rest.empty() && writer.write(takeCharacter(rest))) {
    }
    return writer.written();
}

std::string utf8FromUtf16(std::span<const unsigned short> units, std::endian order) {
    const auto unitAt = [units, order](std::size_t index) -> char32_t {
        const unsigned unit = units[index];
        return order == std::endian::native ? unit : ((unit & 0xFFU) << 8) | (unit >> 8);
    };
    std::string text(units.size() * mostBytesOfUnit, '\0');
    char* end = text.data();
    for (std::size_t index = 0; index < units.size(); ++index) {
        const char32_t unit = unitAt(index);
        if (unit < 0x80) {
            *end++ = static_cast<char>(unit);
        } else if (isHighSurrogate(unit) && index + 1 < units.size() && isLowSurrogate(unitAt(index + 1))) {
            ++index;
            end = putUtf8(end, firstSupplementary + ((unit & 0x3FFU) << 10) + (unitAt(index) & 0x3FFU));
        } else {
            end = putUtf8(end, isHighSurrogate(unit) || isLowSurrogate(unit) ? replacement : unit);
        }
    }
    text.resize(static_cast<std::size_t>(end - text.data()));
    text.shrink_to_fit();
    return text;
}

}  // namespace epgset
