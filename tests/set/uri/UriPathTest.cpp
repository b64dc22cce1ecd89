#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "host/Uri.h"

namespace {

using Parts = std::optional<std::vector<std::string>>;
using PathPtr = std::unique_ptr<TARNO_rstr_uri_path_st, decltype(&TARNO_rstr_uri_delete_path)>;

Parts partsOf(const char* path, int length = -1) {
    const PathPtr record(TARNO_rstr_uri_parse_path(path, length), &TARNO_rstr_uri_delete_path);
    if (record == nullptr) return std::nullopt;
    return std::vector<std::string>(record->parts, record->parts + record->count);
}

Parts parts(std::vector<std::string> expected) {
    return expected;
}

TEST(UriPath, SplitsAtSlashes) {
    EXPECT_EQ(partsOf("epg2/channels/7/programs"), parts({"epg2", "channels", "7", "programs"}));
    EXPECT_EQ(partsOf("epg2"), parts({"epg2"}));
}

TEST(UriPath, DoesNotCountEmptySegments) {
    EXPECT_EQ(partsOf("//epg2///channels/"), parts({"epg2", "channels"}));
}

TEST(UriPath, OfNothingButSlashesIsARecordWithoutParts) {
    EXPECT_EQ(partsOf(""), parts({}));
    EXPECT_EQ(partsOf("///"), parts({}));
    const PathPtr record(TARNO_rstr_uri_parse_path("", -1), &TARNO_rstr_uri_delete_path);
    EXPECT_NE(record->parts, nullptr);
}

TEST(UriPath, DecodesEachSegmentAfterSplitting) {
    EXPECT_EQ(partsOf("a%2Fb/c%20d/%c3%A9"), parts({"a/b", "c d", "\xC3\xA9"}));
    EXPECT_EQ(partsOf("100%25/%2525"), parts({"100%", "%25"}));
}

TEST(UriPath, LeavesAPlusSignAlone) {
    EXPECT_EQ(partsOf("a+b/c%2Bd"), parts({"a+b", "c+d"}));
}

TEST(UriPath, KeepsMalformedEscapesAsTheyStand) {
    EXPECT_EQ(partsOf("%zz/%4/%/a%/%4g/%%41"), parts({"%zz", "%4", "%", "a%", "%4g", "%A"}));
    EXPECT_EQ(partsOf("%4/1"), parts({"%4", "1"}));
}

TEST(UriPath, WithANulGivesNoRecord) {
    EXPECT_EQ(partsOf("epg2/a%00b"), std::nullopt);
    EXPECT_EQ(partsOf("%00"), std::nullopt);
    EXPECT_EQ(partsOf("epg2/a\0b", 8), std::nullopt);
    EXPECT_EQ(partsOf("epg2/%2500"), parts({"epg2", "%00"}));
}

TEST(UriPath, ReadsAsFarAsTheLengthSays) {
    EXPECT_EQ(partsOf("epg2/channels", 7), parts({"epg2", "ch"}));
    EXPECT_EQ(partsOf("epg2/%41", 7), parts({"epg2", "%4"}));
    EXPECT_EQ(partsOf("epg2", 0), parts({}));
    EXPECT_EQ(partsOf("epg2/a", -7), parts({"epg2", "a"}));
}

TEST(UriPath, OfNullGivesNoRecord) {
    EXPECT_EQ(TARNO_rstr_uri_parse_path(nullptr, -1), nullptr);
    EXPECT_EQ(TARNO_rstr_uri_parse_path(nullptr, 4), nullptr);
}

TEST(UriPath, DeletingNullIsHarmless) {
    TARNO_rstr_uri_delete_path(nullptr);
}

TEST(UriPath, OfAMebibyteOfSegmentsIsSplitWhole) {
    std::string path;
    for (int i = 0; i < 512 * 1024; ++i)
        path += "a/";
    const PathPtr record(TARNO_rstr_uri_parse_path(path.c_str(), -1), &TARNO_rstr_uri_delete_path);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->count, 512 * 1024);
    EXPECT_STREQ(record->parts[record->count - 1], "a");
}

TEST(UriPath, OfAnyBytesNeverGivesAnEmptyPart) {
    const std::string alphabet = "/%%%0123aAfFzZ+&=\x80\xFF\n";
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        // A vector of the exact size, so that a sanitizer sees a read past the end.
        std::vector<char> path(random() % 20 + 1);
        for (char& byte : path)
            byte = alphabet[random() % alphabet.size()];
        const Parts found = partsOf(path.data(), static_cast<int>(path.size()));
        const std::string text(path.begin(), path.end());
        ASSERT_EQ(found.has_value(), text.find("%00") == std::string::npos) << text;
        for (const std::string& part : found.value_or(std::vector<std::string>())) {
            ASSERT_FALSE(part.empty()) << text;
        }
    }
}

}  // namespace
