#include "set/guide/XmltvTime.h"

#include <gtest/gtest.h>

#include <string>

namespace epgset {
namespace {

constexpr std::uint32_t k20260822_060000 = 1787378400;

TEST(XmltvTime, ReadsATimeWithoutAZoneAsUtc) {
    EXPECT_EQ(readXmltvTime("20260822060000"), k20260822_060000);
}

TEST(XmltvTime, ReadsANumericOffset) {
    EXPECT_EQ(readXmltvTime("20260822060000 +0000"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("20260822180000 +1200"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("20260822023000 -0330"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("20260822080000+02:00"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("20260822080000+0200"), k20260822_060000);
}

TEST(XmltvTime, ReadsShorterForms) {
    EXPECT_EQ(readXmltvTime("202608220600"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("202608220600 +0000"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("2026082206"), k20260822_060000);
    EXPECT_EQ(readXmltvTime("20260822"), k20260822_060000 - 6 * 3600);
    EXPECT_EQ(readXmltvTime("202608"), k20260822_060000 - 6 * 3600 - 21 * 86400);
    EXPECT_EQ(readXmltvTime("2026"), 1767225600U);
}

TEST(XmltvTime, DropsBlanksAround) {
    EXPECT_EQ(readXmltvTime(" 20260822060000   UTC\n"), k20260822_060000);
}

struct NamedZone {
    const char* name;
    int minutesEast;
};

class XmltvTimeZone : public testing::TestWithParam<NamedZone> {};

TEST_P(XmltvTimeZone, IsKnownByName) {
    const auto time = readXmltvTime("20260822060000 " + std::string(GetParam().name));
    EXPECT_EQ(time, k20260822_060000 - 60 * GetParam().minutesEast);
}

INSTANTIATE_TEST_SUITE_P(
    Names, XmltvTimeZone,
    testing::Values(NamedZone{"UTC", 0}, NamedZone{"GMT", 0}, NamedZone{"BST", 60}, NamedZone{"WET", 0},
                    NamedZone{"WEST", 60}, NamedZone{"CET", 60}, NamedZone{"CEST", 120},
                    NamedZone{"EET", 120}, NamedZone{"EEST", 180}, NamedZone{"MSK", 180},
                    NamedZone{"EST", -300}, NamedZone{"EDT", -240}, NamedZone{"CST", -360},
                    NamedZone{"CDT", -300}, NamedZone{"MST", -420}, NamedZone{"MDT", -360},
                    NamedZone{"PST", -480}, NamedZone{"PDT", -420}, NamedZone{"JST", 540}),
    [](const auto& zone) { return std::string(zone.param.name); });

TEST(XmltvTime, RefusesTimesThatDoNotExist) {
    for (const char* text :
         {"20261301000000", "20260001000000", "20260230000000", "20250229000000", "20260800000000",
          "20260822250000", "20260822240000", "20260822066000", "20260822060060"}) {
        EXPECT_EQ(readXmltvTime(text), std::nullopt) << text;
    }
    EXPECT_NE(readXmltvTime("20240229000000"), std::nullopt);
}

TEST(XmltvTime, RefusesOtherForms) {
    for (const char* text :
         {"", " ", "202", "20260", "2026082206000", "202608220600000", "2026-08-22T06:00:00Z", "tomorrow",
          "+0000", "20260822060000 +200", "20260822060000 +2400", "20260822060000 +0060",
          "20260822060000 +0x00", "20260822060000 XYZ", "20260822060000 utc", "20260822060000 UTC UTC",
          "-20260822060000", "20260822060000 +", "20260822060000 \xff"}) {
        EXPECT_EQ(readXmltvTime(text), std::nullopt) << text;
    }
}

TEST(XmltvTime, HoldsTheRangeOf32UnsignedBits) {
    EXPECT_EQ(readXmltvTime("19700101000000"), 0U);
    EXPECT_EQ(readXmltvTime("19691231235959"), std::nullopt);
    EXPECT_EQ(readXmltvTime("19700101000000 +0100"), std::nullopt);
    EXPECT_EQ(readXmltvTime("21060207062815"), 4294967295U);
    EXPECT_EQ(readXmltvTime("21060207062816"), std::nullopt);
    EXPECT_EQ(readXmltvTime("99991231235959"), std::nullopt);
}

}  // namespace
}  // namespace epgset
