#include "set/guide/Lineup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "set/guide/GuideError.h"
#include "tests/set/guide/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::HasSubstr;

class LineupTest : public testing::Test {
protected:
    Lineup read(std::string_view content) { return Lineup(folder_.write("lineup.toml", content)); }

    /// Expects a refusal at a line, with a message that holds `message`.
    void expectRefusal(std::string_view content, int line, const std::string& message) {
        try {
            read(content);
            ADD_FAILURE() << "accepted: " << content;
        } catch (const GuideError& error) {
            EXPECT_EQ(error.line(), line) << error.what();
            EXPECT_THAT(error.message(), HasSubstr(message));
            EXPECT_EQ(error.file(), (folder_.path() / "lineup.toml").string());
        }
    }

    test::TemporaryFolder folder_;
};

TEST_F(LineupTest, ReadsEveryKey) {
    const Lineup lineup = read(R"(
[[channel]]
id = "one.example"
antenna = "SATELLITE"
number = "7-2"
name = " One  HD "
service_type = "RADIO"
scrambled = true
digital = false
hidden = true
source = "http://127.0.0.1:9000/one.ts"
)");
    ASSERT_EQ(lineup.entries().size(), 1U);
    const LineupEntry& entry = lineup.entries()[0];
    EXPECT_EQ(entry.id, "one.example");
    EXPECT_EQ(entry.tvMode, 3);
    EXPECT_EQ(entry.number, (ChannelNumber{7, 2}));
    EXPECT_EQ(entry.name, "One HD");
    EXPECT_EQ(entry.serviceType, 2);
    EXPECT_TRUE(entry.scrambled);
    EXPECT_FALSE(entry.digital);
    EXPECT_TRUE(entry.hidden);
    EXPECT_EQ(entry.source, "http://127.0.0.1:9000/one.ts");
    EXPECT_EQ(lineup.find("one.example"), &entry);
    EXPECT_EQ(lineup.find("two.example"), nullptr);
}

TEST_F(LineupTest, HasTheDefaultsOfTheGuide) {
    const LineupEntry entry = read("[[channel]]\nid = \"a\"\n").entries().at(0);
    EXPECT_EQ(entry.tvMode, 0);
    EXPECT_EQ(entry.number, std::nullopt);
    EXPECT_EQ(entry.name, std::nullopt);
    EXPECT_EQ(entry.serviceType, 1);
    EXPECT_FALSE(entry.scrambled);
    EXPECT_TRUE(entry.digital);
    EXPECT_FALSE(entry.hidden);
    EXPECT_EQ(entry.source, "");
}

TEST_F(LineupTest, MayBeEmpty) {
    EXPECT_TRUE(read("").entries().empty());
}

TEST_F(LineupTest, RefusesUnknownKeysWithTheirLine) {
    expectRefusal("[[channel]]\nid = \"a\"\ncolour = 1\n", 3, "\"colour\"");
    expectRefusal("[general]\nx = 1\n", 1, "\"general\"");
    expectRefusal("[[channel]]\nid = \"a\"\n[channel.more]\n", 3, "\"more\"");
}

TEST_F(LineupTest, RefusesValuesOfAnotherType) {
    expectRefusal("[[channel]]\nid = 1\n", 2, "id");
    expectRefusal("[[channel]]\nid = \"a\"\n\nscrambled = \"yes\"\n", 4, "scrambled");
    expectRefusal("[[channel]]\nid = \"a\"\ndigital = 1\n", 3, "digital");
    expectRefusal("[[channel]]\nid = \"a\"\nnumber = 7.5\n", 3, "number must be a text");
    expectRefusal("[[channel]]\nid = \"a\"\nnumber = 7\n", 3, "number must be a text: number = \"7\"");
    expectRefusal("[[channel]]\nid = \"a\"\nname = []\n", 3, "name");
    expectRefusal("channel = 1\n", 1, "[[channel]]");
    expectRefusal("channel = [1]\n", 1, "[[channel]]");
    expectRefusal("[channel]\nid = \"a\"\n", 1, "[[channel]]");
}

TEST_F(LineupTest, RefusesUnknownWords) {
    expectRefusal("[[channel]]\nid = \"a\"\nantenna = \"ROOF\"\n", 3, "\"ROOF\"");
    expectRefusal("[[channel]]\nid = \"a\"\nservice_type = \"RADAR\"\n", 3, "\"RADAR\"");
}

TEST_F(LineupTest, RefusesNumbersThatNoChannelCanHave) {
    for (const char* number :
         {"\"0\"", "\"32768\"", "\"7-\"", "\"7.2\"", "\"seven\"", "\"-3\"", "\"7-32768\""}) {
        expectRefusal("[[channel]]\nid = \"a\"\nnumber = " + std::string(number) + "\n", 3,
                      "no channel number");
    }
}

TEST_F(LineupTest, RefusesAnEntryWithoutAnId) {
    expectRefusal("\n[[channel]]\nname = \"a\"\n", 2, "without an id");
    expectRefusal("[[channel]]\nid = \"\"\n", 2, "id is empty");
}

TEST_F(LineupTest, RefusesWhatStandsTwice) {
    expectRefusal("[[channel]]\nid = \"a\"\n\n[[channel]]\nid = \"a\"\n", 4,
                  "\"a\" stands in line 1 already");
    expectRefusal("[[channel]]\nid = \"a\"\nnumber = \"7\"\n[[channel]]\nid = \"b\"\nnumber = \"7\"\n", 4,
                  "the number of the channel in line 1");
    expectRefusal("[[channel]]\nid = \"a\"\nid = \"b\"\n", 3, "");
}

TEST_F(LineupTest, MayHaveANumberOnSeveralAntennasAndOnHiddenChannels) {
    const Lineup lineup = read(R"([[channel]]
id = "a"
number = "7"
[[channel]]
id = "b"
number = "7"
antenna = "CABLE"
[[channel]]
id = "c"
number = "7"
hidden = true
)");
    EXPECT_EQ(lineup.entries().size(), 3U);
}

TEST_F(LineupTest, RefusesWhatIsNoToml) {
    expectRefusal("[[channel]]\nid = \n", 2, "");
    expectRefusal("[[channel]]\nid = \"\xff\"\n", 2, "");
    expectRefusal("\x01\x02", 1, "");
}

TEST_F(LineupTest, RefusesAFolderAndAMissingFile) {
    EXPECT_THROW(Lineup(folder_.path()), GuideError);
    EXPECT_THROW(Lineup(folder_.path() / "missing"), GuideError);
}

TEST_F(LineupTest, TellsEverythingThatIsWrongAndKeepsTheRest) {
    std::vector<GuideError> faults;
    const auto path = folder_.write("lineup.toml",
                                    "other = 1\n"         // 1
                                    "[[channel]]\n"       // 2
                                    "number = \"x\"\n"    // 3
                                    "id = \"a\"\n"        // 4
                                    "digital = \"no\"\n"  // 5
                                    "[[channel]]\n"       // 6
                                    "id = 5\n"            // 7
                                    "[[channel]]\n"       // 8
                                    "id = \"a\"\n"        // 9
                                    "[[channel]]\n"       // 10
                                    "id = \"b\"\n"
                                    "name = \"B\"\n");
    const Lineup lineup(path, faults);
    std::vector<int> lines;
    for (const GuideError& fault : faults)
        lines.push_back(fault.line());
    EXPECT_THAT(lines, testing::ElementsAre(1, 3, 5, 7, 8));
    ASSERT_NE(lineup.find("a"), nullptr);
    EXPECT_EQ(lineup.find("a")->line, 2);
    ASSERT_NE(lineup.find("b"), nullptr);
    EXPECT_EQ(lineup.find("b")->name, "B");
}

TEST_F(LineupTest, RefusesTheFirstLineThatIsWrong) {
    expectRefusal("[[channel]]\nid = \"a\"\nscrambled = 1\nantenna = 2\n", 3, "scrambled");
    expectRefusal("[[channel]]\nid = \"a\"\nantenna = 2\nscrambled = 1\n", 3, "antenna");
}

}  // namespace
}  // namespace epgset
