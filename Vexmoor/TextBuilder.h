// Heap texts of a fixed size, built piece by piece.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>

#include "Vexmoor/HeapText.h"

/// Builds a NUL-terminated heap text in a block of fixed size; what does not fit is cut. An import makes
/// several such texts a row, so this is kept lean.
class TextBuilder {
public:
    /// `bytes` counts the terminator and is at least 1.
    explicit TextBuilder(std::size_t bytes)
        : m_text(static_cast<char*>(std::malloc(bytes))), m_room(m_text ? bytes - 1 : 0) {}

    TextBuilder& add(const char* text) { return add(text, std::strlen(text)); }

    /// Adds a decimal number, filled up with zeros to `width` characters, its sign included.
    TextBuilder& add(int number, std::size_t width = 0) {
        constexpr std::size_t pair = 2;  // nearly all numbers are parts of a time
        if (width == pair && number >= 0 && number < 100 && m_room - m_length >= pair) {
            addCharacter(static_cast<char>('0' + number / 10));
            addCharacter(static_cast<char>('0' + number % 10));
            return *this;
        }
        char digits[16];
        const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        const char* from = digits;
        auto length = static_cast<std::size_t>(end - from);
        if (number < 0) {
            add(from++, 1);
            --length;
            if (width > 0) --width;  // the sign counts
        }
        for (std::size_t i = length; i < width; ++i)
            add("0", 1);
        return add(from, length);
    }

    /// The finished text, which the caller releases with free; null without memory.
    char* release() {
        if (m_text) m_text.get()[m_length] = '\0';
        return m_text.release();
    }

private:
    TextBuilder& add(const char* text, std::size_t length) {
        const std::size_t fitting = std::min(length, m_room - m_length);
        if (fitting == 1) {
            addCharacter(*text);
            return *this;
        }
        if (fitting != 0) std::memcpy(m_text.get() + m_length, text, fitting);
        m_length += fitting;
        return *this;
    }

    /// There must be room for it.
    void addCharacter(char character) { m_text.get()[m_length++] = character; }

    HeapText m_text;
    std::size_t m_room;
    std::size_t m_length = 0;
};
