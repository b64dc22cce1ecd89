#include "set/text/Utf16.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace epgset {
namespace {

using Bytes = std::vector<unsigned char>;
using Units = std::vector<unsigned short>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Bytes bigEndian(std::string_view text, std::size_t room = 1000) {
    Bytes buffer(room);
    buffer.resize(utf16FromUtf8(text, std::endian::big, buffer));
    return buffer;
}

/// The text as units that hold their values.
Units unitsOf(std::string_view text) {
    Units units;
    const Bytes bytes = bigEndian(text);
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        units.push_back(static_cast<unsigned short>(bytes[at] << 8 | bytes[at + 1]));
    }
    return units;
}

TEST(Utf16, WritesAUnitACharacterHighByteFirst) {
    EXPECT_THAT(bigEndian("A\xC3\xA9\xE0\xA4\x95"), ElementsAre(0x00, 0x41, 0x00, 0xE9, 0x09, 0x15));
}

TEST(Utf16, WritesLowByteFirstWhenAsked) {
    Bytes buffer(4);
    ASSERT_EQ(utf16FromUtf8("A\xC3\xA9", std::endian::little, buffer), 4U);
    EXPECT_THAT(buffer, ElementsAre(0x41, 0x00, 0xE9, 0x00));
}

TEST(Utf16, WritesAPairOfSurrogatesBeyondTheBasicPlane) {
    EXPECT_THAT(unitsOf("\xF0\x90\x80\x80"), ElementsAre(0xD800, 0xDC00));
    EXPECT_THAT(unitsOf("\xF0\x9F\x98\x80"), ElementsAre(0xD83D, 0xDE00));
    EXPECT_THAT(unitsOf("\xF4\x8F\xBF\xBF"), ElementsAre(0xDBFF, 0xDFFF));
}

TEST(Utf16, CountsUnits) {
    EXPECT_EQ(utf16Length(""), 0U);
    EXPECT_EQ(utf16Length("plain ASCII of some length"), 26U);
    EXPECT_EQ(utf16Length("12345678\xC3\xA9\xE0\xA4\x95\xF0\x9F\x98\x80"), 8U + 1 + 1 + 2);
}

TEST(Utf16, KeepsANulInsideAText) {
    EXPECT_EQ(utf16Length(std::string_view("a\0b", 3)), 3U);
    EXPECT_THAT(unitsOf(std::string_view("a\0b", 3)), ElementsAre('a', 0, 'b'));
}

TEST(Utf16, StopsWhereTheBufferEnds) {
    EXPECT_THAT(bigEndian("abc", 4), ElementsAre(0, 'a', 0, 'b'));
    EXPECT_THAT(bigEndian("abc", 5), ElementsAre(0, 'a', 0, 'b'));
    EXPECT_THAT(bigEndian("abc", 1), IsEmpty());
    EXPECT_THAT(bigEndian("abc", 0), IsEmpty());
}

TEST(Utf16, NeverCutsAPairOfSurrogates) {
    const std::string_view text = "a\xF0\x9F\x98\x80z";
    EXPECT_THAT(bigEndian(text, 4), ElementsAre(0, 'a'));
    EXPECT_THAT(bigEndian(text, 5), ElementsAre(0, 'a'));
    EXPECT_THAT(bigEndian(text, 6), ElementsAre(0, 'a', 0xD8, 0x3D, 0xDE, 0x00));
}

TEST(Utf16, LeavesTheRestOfTheBufferAlone) {
    Bytes buffer(6, 0xAA);
    ASSERT_EQ(utf16FromUtf8("a", std::endian::big, buffer), 2U);
    EXPECT_THAT(buffer, ElementsAre(0, 'a', 0xAA, 0xAA, 0xAA, 0xAA));
}

TEST(Utf16, ReplacesIllFormedUtf8) {
    EXPECT_THAT(unitsOf("a\x80z"), ElementsAre('a', 0xFFFD, 'z'));
    EXPECT_THAT(unitsOf("\xC3"), ElementsAre(0xFFFD));
    EXPECT_THAT(unitsOf("\xE0\xA4z"), ElementsAre(0xFFFD, 'z'));  // one for the part that breaks off
    EXPECT_THAT(unitsOf("\xC0\xAF"), ElementsAre(0xFFFD, 0xFFFD));
    EXPECT_THAT(unitsOf("\xED\xA0\x80"), ElementsAre(0xFFFD, 0xFFFD, 0xFFFD));  // a surrogate in UTF-8
    EXPECT_THAT(unitsOf("\xFF"), ElementsAre(0xFFFD));
}

TEST(Utf16, WritesAsManyUnitsAsItCountsWhateverTheBytes) {
    unsigned state = 1;
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (int length = round % 40; length > 0; --length) {
            state = state * 1664525U + 1013904223U;
            text.push_back(static_cast<char>(state >> 24));
        }
        ASSERT_EQ(bigEndian(text).size(), 2 * utf16Length(text)) << round;
        for (const unsigned short unit : unitsOf(text))
            EXPECT_NE(unit, 0xFFFE);
    }
}

TEST(Utf16, ReadsUnitsInHostOrderAndInBigEndianOrder) {
    const std::string text = "A\xC3\xA9\xE0\xA4\x95\xF0\x9F\x98\x80";
    const Units units = unitsOf(text);
    EXPECT_EQ(utf8FromUtf16(units, std::endian::native), text);

    Units inMemory(units.size());
    utf16FromUtf8(text, std::endian::big,
                  {reinterpret_cast<unsigned char*>(inMemory.data()), inMemory.size() * 2});
    EXPECT_EQ(utf8FromUtf16(inMemory, std::endian::big), text);
}

TEST(Utf16, ReadsSurrogatesWithoutAPartnerAsReplacements) {
    EXPECT_EQ(utf8FromUtf16(Units{0xD83D}, std::endian::native), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8FromUtf16(Units{0xDE00, 'a'}, std::endian::native),
              "\xEF\xBF\xBD"
              "a");
    EXPECT_EQ(utf8FromUtf16(Units{0xD83D, 0xD83D, 0xDE00}, std::endian::native),
              "\xEF\xBF\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8FromUtf16(Units{}, std::endian::native), "");
}

TEST(Utf16, BringsEveryCharacterBack) {
    for (char32_t character = 1; character < 0x110000; character += character < 0x3000 ? 1 : 97) {
        if (character >= 0xD800 && character < 0xE000) continue;
        Units units;
        if (character < 0x10000) {
            units = {static_cast<unsigned short>(character)};
        } else {
            units = {static_cast<unsigned short>(0xD800 + ((character - 0x10000) >> 10)),
                     static_cast<unsigned short>(0xDC00 + ((character - 0x10000) & 0x3FF))};
        }
        ASSERT_EQ(unitsOf(utf8FromUtf16(units, std::endian::native)), units)
            << "U+" << std::hex << static_cast<unsigned>(character);
    }
}

}  // namespace
}  // namespace epgset
