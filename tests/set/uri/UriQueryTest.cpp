#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/Uri.h"

namespace {

using Pairs = std::optional<std::vector<std::pair<std::string, std::string>>>;
using QueryPtr = std::unique_ptr<TARNO_rstr_uri_query_st, decltype(&TARNO_rstr_uri_delete_query)>;

Pairs pairsOf(const char* query, int length = -1) {
    const QueryPtr record(TARNO_rstr_uri_parse_query(query, length), &TARNO_rstr_uri_delete_query);
    if (record == nullptr) return std::nullopt;
    std::vector<std::pair<std::string, std::string>> found;
    for (std::int32_t i = 0; i < record->count; ++i)
        found.emplace_back(record->names[i], record->values[i]);
    return found;
}

Pairs pairs(std::vector<std::pair<std::string, std::string>> expected) {
    return expected;
}

TEST(UriQuery, SplitsIntoPairsInTheirOrder) {
    EXPECT_EQ(pairsOf("sort=name&items_max=5&sort=id"),
              pairs({{"sort", "name"}, {"items_max", "5"}, {"sort", "id"}}));
}

TEST(UriQuery, SplitsAPairAtItsFirstEqualsSign) {
    EXPECT_EQ(pairsOf("sql=a=b==c&=x&y="), pairs({{"sql", "a=b==c"}, {"", "x"}, {"y", ""}}));
}

TEST(UriQuery, GivesANameWithoutEqualsSignAnEmptyValue) {
    EXPECT_EQ(pairsOf("flag&other"), pairs({{"flag", ""}, {"other", ""}}));
}

TEST(UriQuery, SkipsEmptyPieces) {
    EXPECT_EQ(pairsOf("&&a=1&&&b=2&"), pairs({{"a", "1"}, {"b", "2"}}));
    EXPECT_EQ(pairsOf("="), pairs({{"", ""}}));
}

TEST(UriQuery, DecodesNamesAndValuesAfterSplitting) {
    EXPECT_EQ(pairsOf("n%61me=a%26b%3Dc&%3d=%26"), pairs({{"name", "a&b=c"}, {"=", "&"}}));
}

TEST(UriQuery, ReadsAPlusSignAsABlankAndAnEncodedOneAsItself) {
    EXPECT_EQ(pairsOf("a+b=c+d%2Be%2B"), pairs({{"a b", "c d+e+"}}));
}

TEST(UriQuery, KeepsMalformedEscapesAsTheyStand) {
    EXPECT_EQ(pairsOf("a=%zz&%4=%&c=%4+"), pairs({{"a", "%zz"}, {"%4", "%"}, {"c", "%4 "}}));
}

TEST(UriQuery, WithANulGivesNoRecord) {
    EXPECT_EQ(pairsOf("a=1&b=x%00y"), std::nullopt);
    EXPECT_EQ(pairsOf("a%00=1"), std::nullopt);
    EXPECT_EQ(pairsOf("a=b\0c", 5), std::nullopt);
    EXPECT_EQ(pairsOf("a=%2500"), pairs({{"a", "%00"}}));
}

TEST(UriQuery, ThatIsEmptyGivesARecordWithoutPairs) {
    EXPECT_EQ(pairsOf(""), pairs({}));
    EXPECT_EQ(pairsOf("&&&"), pairs({}));
    EXPECT_EQ(pairsOf("a=1", 0), pairs({}));
}

TEST(UriQuery, ReadsAsFarAsTheLengthSays) {
    EXPECT_EQ(pairsOf("a=12345", 4), pairs({{"a", "12"}}));
    EXPECT_EQ(pairsOf("a=%41", 4), pairs({{"a", "%4"}}));
}

TEST(UriQuery, OfNullGivesNoRecord) {
    EXPECT_EQ(TARNO_rstr_uri_parse_query(nullptr, -1), nullptr);
}

TEST(UriQuery, DeletingNullIsHarmless) {
    TARNO_rstr_uri_delete_query(nullptr);
}

TEST(UriQuery, OfAMebibyteIsSplitWhole) {
    std::string query;
    for (int i = 0; i < 512 * 1024; ++i)
        query += "a&";
    const QueryPtr record(TARNO_rstr_uri_parse_query(query.c_str(), -1), &TARNO_rstr_uri_delete_query);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->count, 512 * 1024);
    EXPECT_STREQ(record->names[record->count - 1], "a");
    EXPECT_STREQ(record->values[record->count - 1], "");
    EXPECT_EQ(pairsOf(std::string(1024 * 1024, '&').c_str()), pairs({}));
    const Pairs one = pairsOf(std::string(1024 * 1024, '=').c_str());
    EXPECT_EQ(one, pairs({{"", std::string(1024 * 1024 - 1, '=')}}));
}

TEST(UriQuery, OfAnyBytesReadsBackWhatWasEncoded) {
    std::mt19937 random(11);
    const auto anyText = [&] {
        std::string text(random() % 12, ' ');
        for (char& byte : text)
            byte = static_cast<char>(random() % 255 + 1);
        return text;
    };
    const auto encoded = [&](const std::string& text) {
        std::string out;
        for (const char byte : text) {
            const auto value = static_cast<unsigned char>(byte);
            const bool plain = random() % 2 == 0 && std::string("%&=+").find(byte) == std::string::npos;
            if (plain) {
                out += byte;
            } else {
                const char digits[] = "0123456789abcdef";
                out += {'%', digits[value / 16], digits[value % 16]};
            }
        }
        return out;
    };
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::pair<std::string, std::string>> expected;
        std::string query;
        for (std::size_t i = random() % 4; i > 0; --i) {
            expected.emplace_back(anyText(), anyText());
            query += (query.empty() ? "" : "&") + encoded(expected.back().first) + "=" +
                     encoded(expected.back().second);
        }
        ASSERT_EQ(pairsOf(query.data(), static_cast<int>(query.size())), pairs(expected)) << query;
    }
}

}  // namespace
