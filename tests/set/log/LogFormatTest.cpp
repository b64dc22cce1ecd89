#include "set/log/LogFormat.h"

#include <gtest/gtest.h>

#include <climits>
#include <initializer_list>
#include <random>
#include <string>

using Container::LogArgument;

namespace epgset {
namespace {

std::string format(const char* text, std::initializer_list<LogArgument> arguments = {}) {
    return formatLogMessage(text, arguments.begin(), arguments.size());
}

TEST(LogFormat, LeavesATextWithoutDirectivesAlone) {
    EXPECT_EQ(format("Table and DB created\n"), "Table and DB created\n");
    EXPECT_EQ(format(""), "");
}

TEST(LogFormat, PrintsIntegersByTheirOwnWidthAndSign) {
    EXPECT_EQ(format("%d %i", {-5, 7}), "-5 7");
    EXPECT_EQ(format("%u", {4000000000u}), "4000000000");
    EXPECT_EQ(format("%u", {-1}), "4294967295");
    EXPECT_EQ(format("%d", {4294967295u}), "-1");
    EXPECT_EQ(format("%ld", {LONG_MIN}), std::to_string(LONG_MIN));
    EXPECT_EQ(format("%lld", {LLONG_MIN}), "-9223372036854775808");
    EXPECT_EQ(format("%llu", {ULLONG_MAX}), "18446744073709551615");
    EXPECT_EQ(format("%ld", {-3}), "-3");
    EXPECT_EQ(format("%d", {1LL << 40}), "1099511627776");
    EXPECT_EQ(format("%zu", {std::string().size()}), "0");
    EXPECT_EQ(format("%d", {static_cast<short>(-2)}), "-2");
    EXPECT_EQ(format("%d", {true}), "1");
}

TEST(LogFormat, PrintsHexadecimalOctalAndPaddedNumbers) {
    EXPECT_EQ(format("%04X|%x|%#x|%o", {0xBE, 255, 255, 8}), "00BE|ff|0xff|10");
    EXPECT_EQ(format("cid-%03d-%d", {4, 12}), "cid-004-12");
    EXPECT_EQ(format("[%5d][%-5d][%+d][% d]", {42, 42, 42, 42}), "[   42][42   ][+42][ 42]");
    EXPECT_EQ(format("%05d", {-42}), "-0042");
}

TEST(LogFormat, PrintsCharactersTextsPointersAndFloats) {
    EXPECT_EQ(format("%c%c", {'a', 98}), "ab");
    EXPECT_EQ(format("%s, %s", {"one", std::string("two")}), "one, two");
    EXPECT_EQ(format("[%5s][%-5s][%.2s]", {"ab", "ab", "abc"}), "[   ab][ab   ][ab]");
    EXPECT_EQ(format("%.2f %g", {1.5, 0.25}), "1.50 0.25");
    EXPECT_EQ(format("%p", {static_cast<const void*>(nullptr)}), "(nil)");
}

TEST(LogFormat, PrintsAPercentSign) {
    EXPECT_EQ(format("100%%"), "100%");
    EXPECT_EQ(format("%d%%", {50}), "50%");
}

TEST(LogFormat, PrintsANullTextAsNull) {
    const char* const none = nullptr;
    EXPECT_EQ(format("val %s!", {none}), "val (null)!");
    EXPECT_EQ(format("val %.3s!", {none}), "val (nu!");
    EXPECT_EQ(formatLogMessage(nullptr, nullptr, 0), "(null)");
}

TEST(LogFormat, ShowsTheFormatWhenAnArgumentIsMissing) {
    EXPECT_EQ(format("%s"), "%s");
    EXPECT_EQ(format("50%% of %d"), "50%% of %d");
    EXPECT_EQ(format("%d %d", {1}), "%d %d");
}

TEST(LogFormat, ShowsTheFormatWhenAnArgumentIsOfAnotherKind) {
    EXPECT_EQ(format("%s", {12}), "%s");
    EXPECT_EQ(format("%d", {"text"}), "%d");
    EXPECT_EQ(format("%d", {1.5}), "%d");
    EXPECT_EQ(format("%f", {1}), "%f");
    EXPECT_EQ(format("%p", {1}), "%p");
}

TEST(LogFormat, NeverHonoursTheWritingDirective) {
    int target = 77;
    EXPECT_EQ(format("ab%n", {static_cast<const void*>(&target)}), "ab%n");
    EXPECT_EQ(format("ab%hhn%n"), "ab%hhn%n");
    EXPECT_EQ(target, 77);
}

TEST(LogFormat, ShowsAFormatWhoseWidthsComeFromArgumentsOrPositions) {
    EXPECT_EQ(format("%*d", {5, 1}), "%*d");
    EXPECT_EQ(format("%.*s", {5, "text"}), "%.*s");
    EXPECT_EQ(format("%1$d", {1}), "%1$d");
}

TEST(LogFormat, BoundsWidthAndPrecision) {
    EXPECT_EQ(format("%4096d", {1}).size(), 4096u);
    EXPECT_EQ(format("%4097d", {1}), "%4097d");
    EXPECT_EQ(format("%.4097f", {1.0}), "%.4097f");
    EXPECT_EQ(format("%99999999999999999999s", {"x"}), "%99999999999999999999s");
    EXPECT_EQ(format("%.99999999999999999999s", {"x"}), "%.99999999999999999999s");
}

TEST(LogFormat, ShowsAFormatThatEndsInsideADirective) {
    for (const char* text : {"%", "a%", "%5", "%5.", "%l", "%ll", "%-", "%h", "%.", "%#"})
        EXPECT_EQ(format(text, {1}), text);
}

TEST(LogFormat, IgnoresArgumentsThatNoDirectiveAsksFor) {
    EXPECT_EQ(format("%d", {1, "more"}), "1");
}

TEST(LogFormat, AnyFormatGivesAMessage) {
    const std::string alphabet = "%%%%dsnuxXcplhLzjt*.$0123456789-+ #a";
    std::mt19937 random(20);
    std::size_t shown = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text(random() % 12, ' ');
        for (char& c : text)
            c = random() % 16 == 0 ? static_cast<char>(random() % 255 + 1)
                                   : alphabet[random() % alphabet.size()];
        const std::string message = format(text.c_str(), {-1, "text", 2.5, 'c', 7ULL});
        shown += message == text;
        ASSERT_LE(message.size(), text.size() * (maxLogFieldWidth + 1u));
    }
    EXPECT_GT(shown, 0u);
}

}  // namespace
}  // namespace epgset
