#include "set/text/Utf8.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace epgset {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

const std::string R = "\xEF\xBF\xBD";

/// Decodes a text character by character; false at the first invalid one.
bool decodes(std::string_view text) {
    while (!text.empty()) {
        std::int32_t character = 0;
        const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                             static_cast<utf8proc_ssize_t>(text.size()), &character);
        if (length <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

TEST(Utf8, LeavesValidTextAlone) {
    for (const std::string& text : {""s, "plain"s, "Kia ora, \xC4\x81otearoa"s, "\xF0\x9F\x93\xBA"s,
                                    "\xE2\x82\xAC at the end \xE2\x82\xAC"s, "line\nbreak\ttab\r"s}) {
        EXPECT_TRUE(isCleanUtf8(text, Utf8Repertoire::Xml)) << text;
        EXPECT_EQ(repairedUtf8(text, Utf8Repertoire::Xml), text);
    }
}

TEST(Utf8, ReplacesALoneByteThatBeginsNoCharacter) {
    EXPECT_EQ(repairedUtf8("a\x80z"), "a" + R + "z");
    EXPECT_EQ(repairedUtf8("a\xFFz"), "a" + R + "z");
    EXPECT_EQ(repairedUtf8("a\xC0\xAFz"), "a" + R + R + "z");
}

TEST(Utf8, ReplacesACharacterThatBreaksOffOnce) {
    EXPECT_EQ(repairedUtf8("\xE2\x82"), R);
    EXPECT_EQ(repairedUtf8("\xE2\x82 x"), R + " x");
    EXPECT_EQ(repairedUtf8("\xF0\x9F\x93"), R);
    EXPECT_EQ(repairedUtf8("\xF0\x9F\x93\xC3\xA9"), R + "\xC3\xA9");
    EXPECT_EQ(repairedUtf8("\xC3\xC3\xA9"), R + "\xC3\xA9");
}

TEST(Utf8, ReplacesEveryByteOfOverlongFormsAndSurrogatesAndWhatIsAboveTheLastCharacter) {
    EXPECT_EQ(repairedUtf8("\xE0\x80\xAF"), R + R + R);
    EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), R + R + R);
    EXPECT_EQ(repairedUtf8("\xF4\x90\x80\x80"), R + R + R + R);
    EXPECT_EQ(repairedUtf8("\xF0\x80\x80\x80"), R + R + R + R);
    EXPECT_EQ(repairedUtf8("\xF4\x8F\xBF\xBF"), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, FindsABadByteWhereverItStandsInALongText) {
    const std::string plain(40, 'x');
    for (std::size_t at = 0; at < plain.size(); ++at) {
        std::string text = plain;
        text[at] = '\x9F';
        EXPECT_FALSE(isCleanUtf8(text)) << at;
        EXPECT_EQ(repairedUtf8(text), std::string(plain).replace(at, 1, R));
        text[at] = '\x1F';
        EXPECT_TRUE(isCleanUtf8(text)) << at;
        EXPECT_FALSE(isCleanUtf8(text, Utf8Repertoire::Xml)) << at;
        EXPECT_EQ(repairedUtf8(text, Utf8Repertoire::Xml), std::string(plain).replace(at, 1, R));
    }
}

TEST(Utf8, KeepsControlCharactersOnlyWhereTheyAreAllowed) {
    const std::string text = "\0\x01\t\n\v\r\x1F \x7F"s;
    EXPECT_EQ(repairedUtf8(text), text);
    EXPECT_EQ(repairedUtf8(text, Utf8Repertoire::Xml), R + R + "\t\n" + R + "\r" + R + " \x7F");
}

TEST(Utf8, ReplacesTheNonCharactersThatXmlForbids) {
    const std::string text = "\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD\xEF\xB7\x90";
    EXPECT_EQ(repairedUtf8(text), text);
    EXPECT_EQ(repairedUtf8(text, Utf8Repertoire::Xml), R + R + R + "\xEF\xB7\x90");
}

TEST(Utf8, AppendsBehindWhatIsThere) {
    std::string out = "before ";
    appendRepairedUtf8(out, "x\xFFy");
    EXPECT_EQ(out, "before x" + R + "y");
}

TEST(Utf8, MakesAnyBytesCleanAndLeavesThemSo) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 24, '\0');
        // Mostly bytes that begin or continue characters, so that long sequences come about.
        for (char& byte : text)
            byte = static_cast<char>(random() % 4 == 0 ? random() : 0x80 | random());
        const bool wasValid = decodes(text);
        EXPECT_EQ(isCleanUtf8(text), wasValid);
        for (const auto repertoire : {Utf8Repertoire::All, Utf8Repertoire::Xml}) {
            const std::string repaired = repairedUtf8(text, repertoire);
            ASSERT_TRUE(decodes(repaired));
            ASSERT_TRUE(isCleanUtf8(repaired, repertoire));
            ASSERT_EQ(repairedUtf8(repaired, repertoire), repaired);
            ASSERT_EQ(repaired == text, isCleanUtf8(text, repertoire));
        }
    }
}

}  // namespace
}  // namespace epgset
