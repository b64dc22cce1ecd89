#include "set/log/LogEscape.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace epgset {
namespace {

TEST(LogEscape, DropsTheLineBreakThatEndsAMessage) {
    EXPECT_EQ(escapedLogLine("done\n", 100), "done");
    EXPECT_EQ(escapedLogLine("done\r\n", 100), "done");
    EXPECT_EQ(escapedLogLine("done\n\n", 100), "done\\n");
    EXPECT_EQ(escapedLogLine("\n", 100), "");
    EXPECT_EQ(escapedLogLine("", 100), "");
}

TEST(LogEscape, ShowsControlCharactersAsEscapes) {
    EXPECT_EQ(escapedLogLine("a\nb\tc\rd", 100), "a\\nb\\tc\\rd");
    EXPECT_EQ(escapedLogLine("\x1B[31m\x7F", 100), "\\x1B[31m\\x7F");
    EXPECT_EQ(escapedLogLine(std::string_view("a\0b", 3), 100), "a\\x00b");
    EXPECT_EQ(escapedLogLine("\xC2\x9B", 100), "\\xC2\\x9B");
    EXPECT_EQ(escapedLogLine("a\xE2\x80\xA8z", 100), "a\\xE2\\x80\\xA8z");
}

TEST(LogEscape, KeepsUtf8AndShowsOtherBytesAsEscapes) {
    EXPECT_EQ(escapedLogLine("Tagesschau ü 日本 😀", 100), "Tagesschau ü 日本 😀");
    EXPECT_EQ(escapedLogLine("a\xFF\xC3", 100), "a\\xFF\\xC3");
    EXPECT_EQ(escapedLogLine("\xED\xA0\x80", 100), "\\xED\\xA0\\x80");
}

TEST(LogEscape, CutsALongLineBetweenTwoCharacters) {
    EXPECT_EQ(escapedLogLine("abcdef", 4), "abcd");
    EXPECT_EQ(escapedLogLine("abcü", 4), "abc");
    EXPECT_EQ(escapedLogLine("abc\x1B", 6), "abc");
    EXPECT_EQ(escapedLogLine("abc\x1B", 7), "abc\\x1B");
    EXPECT_EQ(escapedLogLine("abc", 0), "");
}

TEST(LogEscape, AsciiLinesEscapeEveryOtherCharacter) {
    EXPECT_EQ(asciiLogLine("a \xC3\xBC~\n\xFF\n", 99), "a \\xC3\\xBC~\\n\\xFF");
    EXPECT_EQ(asciiLogLine("ab\xC3\xBC", 9), "ab") << "a character is not cut";
    EXPECT_EQ(asciiLogLine("ab\xC3\xBC", 10), "ab\\xC3\\xBC");
}

TEST(LogEscape, AnyBytesGiveAPrintableLineWithinItsBound) {
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes(random() % 60, ' ');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        const std::string line = escapedLogLine(bytes, 40);
        ASSERT_LE(line.size(), 40u);
        for (const char c : line)
            ASSERT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
        ASSERT_EQ(escapedLogLine(line, 40), line) << "a line holds nothing that needs an escape";
    }
}

}  // namespace
}  // namespace epgset
