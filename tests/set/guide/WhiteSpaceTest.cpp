#include "set/guide/WhiteSpace.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace epgset {
namespace {

/// The words of a text with a blank between each two.
std::string words(const std::string& text) {
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    std::string all;
    for (std::string word; in >> word;)
        all += (all.empty() ? "" : " ") + word;
    return all;
}

TEST(CollapsedSpace, IsOneBlankBetweenWords) {
    EXPECT_EQ(withCollapsedSpace(""), "");
    EXPECT_EQ(withCollapsedSpace(" \t\n"), "");
    EXPECT_EQ(withCollapsedSpace("one"), "one");
    EXPECT_EQ(withCollapsedSpace("  one\r\n two\tthree "), "one two three");
    EXPECT_EQ(withCollapsedSpace("It has nothing to collapse."), "It has nothing to collapse.");
    EXPECT_EQ(withCollapsedSpace("Two blanks  within a longer text"), "Two blanks within a longer text");
    EXPECT_EQ(withCollapsedSpace("Très\u00A0bien, très bien"), "Très\u00A0bien, très bien")
        << "a blank that does not break is a letter";
}

TEST(CollapsedSpace, IsTheSameWhereverTheSpaceStands) {
    for (std::size_t length = 0; length < 40; ++length)
        for (std::size_t place = 0; place < length; ++place)
            for (const char* space : {" ", "  ", "\n", "\v", " \f", "\x01"}) {
                std::string text(length, 'x');
                text.insert(place, space);
                EXPECT_EQ(withCollapsedSpace(text), words(text)) << length << " " << place;
            }
}

TEST(CollapsedSpace, IsTheSameForRandomTexts) {
    std::mt19937 random(1);
    for (int text = 0; text < 20000; ++text) {
        std::string letters;
        const std::size_t length = random() % 40;
        const auto rarely = 2 + random() % 30;
        for (std::size_t i = 0; i < length; ++i)
            letters += random() % rarely == 0 ? " \t\n\r!\x80\xA0\xFF"[random() % 8]
                                              : static_cast<char>('a' + random() % 26);
        ASSERT_EQ(withCollapsedSpace(letters), words(letters)) << letters;
    }
}

}  // namespace
}  // namespace epgset
