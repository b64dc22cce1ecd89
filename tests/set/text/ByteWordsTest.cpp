#include "set/text/ByteWords.h"

#include <gtest/gtest.h>

#include <string>

namespace epgset {
namespace {

bool holdsNoControl(std::string_view text) {
    return holdsForAllBytes(text, [](std::uint64_t word) { return controlBytes(word) == 0; });
}

bool isAscii(std::string_view text) {
    return holdsForAllBytes(text, [](std::uint64_t word) { return highBits(word) == 0; });
}

bool isWithout(char character, std::string_view text) {
    return holdsForAllBytes(text, [character](std::uint64_t word) {
        return bytesThatAre(static_cast<std::uint8_t>(character), word) == 0;
    });
}

TEST(ByteWords, ATestHoldsForTheBytesOfNoText) {
    EXPECT_TRUE(holdsForAllBytes({}, [](std::uint64_t) { return false; }));
}

TEST(ByteWords, EachByteIsSeenWhateverItsPlace) {
    for (std::size_t length = 1; length < 30; ++length) {
        std::string text(length, 'x');
        EXPECT_TRUE(holdsNoControl(text) && isAscii(text) && isWithout('"', text)) << length;
        for (char& place : text) {
            place = '\x1F';
            EXPECT_FALSE(holdsNoControl(text)) << length;
            place = '\x80';
            EXPECT_FALSE(isAscii(text)) << length;
            place = '"';
            EXPECT_FALSE(isWithout('"', text)) << length;
            place = 'x';
        }
    }
}

TEST(ByteWords, EachByteIsTakenForWhatItIs) {
    for (unsigned value = 0; value < 256; ++value) {
        const auto byte = static_cast<char>(value);
        for (const std::size_t length : {1U, 2U, 3U, 5U, 8U, 11U}) {
            const std::string text(length, byte);
            EXPECT_EQ(holdsNoControl(text), value >= 0x20) << value;
            EXPECT_EQ(isAscii(text), value < 0x80) << value;
            EXPECT_EQ(isWithout('\\', text), byte != '\\') << value;
            EXPECT_FALSE(isWithout(byte, text)) << value;
        }
    }
}

TEST(ByteWords, NoByteIsBlamedForAnother) {
    // Of two neighbours the one that borrows from the other in a subtraction.
    for (const char* text :
         {"!\"!!!!!!", " \x80       ", "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "\x7F\x7F\x7F\x7F"})
        EXPECT_TRUE(holdsNoControl(text)) << text;
}

}  // namespace
}  // namespace epgset
