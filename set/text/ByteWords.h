// The bytes of a text eight at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace epgset {

constexpr std::size_t wordBytes = sizeof(std::uint64_t);

constexpr std::uint64_t everyByte(std::uint8_t value) {
    return 0x0101010101010101U * value;
}

/// The bits of a word that tell which bytes are not ASCII.
constexpr std::uint64_t highBits(std::uint64_t word) {
    return word & everyByte(0x80);
}

/// Not 0 when a byte of the word is below 0x20.
constexpr std::uint64_t controlBytes(std::uint64_t word) {
    return highBits((word - everyByte(0x20)) & ~word);
}

/// The high bits of the bytes of the word that are that one, and perhaps of some above them; 0 when none is.
constexpr std::uint64_t bytesThatAre(std::uint8_t value, std::uint64_t word) {
    const std::uint64_t zero = word ^ everyByte(value);
    return highBits((zero - everyByte(1)) & ~zero);
}

inline std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// A word of all the bytes of a text of 1 to 7, some of them several times.
inline std::uint64_t shortWord(std::string_view text) {
    const char* const bytes = text.data();
    if (text.size() >= sizeof(std::uint32_t)) {
        std::uint32_t first;
        std::uint32_t last;
        std::memcpy(&first, bytes, sizeof first);
        std::memcpy(&last, bytes + text.size() - sizeof last, sizeof last);
        return std::uint64_t{last} << 32U | first;
    }
    const auto byte = [bytes](std::size_t index) { return static_cast<std::uint8_t>(bytes[index]); };
    return (everyByte(byte(0)) & ~std::uint64_t{0xFFFF}) | std::uint64_t{byte(text.size() / 2)} << 8U |
           byte(text.size() - 1);
}

/// Whether a test holds for all bytes of a text. It is asked of words that hold them all, some of them twice.
template <typename Test>
bool holdsForAllBytes(std::string_view text, Test test) {
    if (text.size() < wordBytes) return text.empty() || test(shortWord(text));
    const char* const last = text.data() + text.size() - wordBytes;
    for (const char* at = text.data(); at < last; at += wordBytes)
        if (!test(wordAt(at))) return false;
    return test(wordAt(last));
}

}  // namespace epgset
