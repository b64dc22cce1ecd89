#include "set/database/SearchFolding.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <array>
#include <cstdlib>
#include <string>

namespace epgset {
namespace {

std::string utf8Of(int codePoint) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(codePoint, bytes.data());
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length)};
}

bool isMark(int codePoint) {
    const utf8proc_category_t category = utf8proc_category(codePoint);
    return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_ME;
}

/// The library's own case folding and stripping of marks, for what has no marks but accents.
std::string foldedByLibrary(const std::string& text) {
    utf8proc_uint8_t* folded = nullptr;
    utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                 static_cast<utf8proc_ssize_t>(text.size()), &folded,
                 static_cast<utf8proc_option_t>(UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK | UTF8PROC_DECOMPOSE));
    std::string result(reinterpret_cast<const char*>(folded));
    std::free(folded);
    return result;
}

TEST(SearchFolding, LowersEveryAsciiLetterAndNothingElseWhereverItStands) {
    for (int c = 1; c < 128; ++c) {
        const auto lower = static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
        for (std::size_t length = 1; length < 20; ++length)
            EXPECT_EQ(foldedForSearch(std::string(length, static_cast<char>(c))), std::string(length, lower));
    }
}

TEST(SearchFolding, FoldsAccentsBetweenRunsOfAscii) {
    EXPECT_EQ(foldedForSearch("Ein LANGER Titel über ÄRZTE in Köln"), "ein langer titel uber arzte in koln");
    EXPECT_EQ(foldedForSearch("ÉÉÉ"), "eee");
    EXPECT_EQ(foldedForSearch("Größe"), "grosse");
    EXPECT_EQ(foldedForSearch("ΐ"), "ι") << "what decomposes into three";
    EXPECT_EQ(foldedForSearch("ﬃ"), "ffi") << "a form of three bytes";
}

TEST(SearchFolding, AddsToWhatIsThere) {
    std::string folded = "x";
    appendFolded(folded, "ÄB");
    EXPECT_EQ(folded, "xab");
}

TEST(SearchFolding, FoldsWhatTakesTwoBytesAsItsLibraryDoes) {
    for (int codePoint = 0x80; codePoint < 0x800; ++codePoint) {
        if (isMark(codePoint)) continue;
        const std::string text = "a" + utf8Of(codePoint) + "Z";
        EXPECT_EQ(foldedForSearch(text), foldedByLibrary(text)) << codePoint;
    }
}

TEST(SearchFolding, BytesThatAreNotUtf8StayAsTheyAre) {
    for (const char* text : {"\xFF", "\xC3", "a\xC3", "\xC0\x80", "\xC1\xBF", "\xC3\xC3", "\x80", "\xE2\x82"})
        EXPECT_EQ(foldedForSearch(text), text);
    EXPECT_EQ(foldedForSearch(std::string_view("A\0B", 3)), std::string_view("a\0b", 3));
}

}  // namespace
}  // namespace epgset
