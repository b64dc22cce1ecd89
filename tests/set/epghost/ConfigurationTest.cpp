#include "set/epghost/Configuration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ConfigurationTest : public testing::Test {
protected:
    std::string file(const std::string& content) { return folder_.write("epghost.toml", content).string(); }
    std::vector<ConfiguredOption> read(const std::string& content) {
        return readConfiguration(file(content));
    }

    /// Expects a refusal at a line, with a message that holds `message`.
    void expectRefusal(const std::string& content, int line, const std::string& message) {
        const std::string path = file(content);
        try {
            readConfiguration(path);
            ADD_FAILURE() << "accepted: " << content;
        } catch (const StartError& error) {
            EXPECT_THAT(error.what(),
                        AllOf(StartsWith(path + ":" + std::to_string(line) + ": "), HasSubstr(message)));
        }
    }

    test::TemporaryFolder folder_;
};

TEST_F(ConfigurationTest, ReadsOptionsByTheirNames) {
    const auto options = read("lineup = \"my.toml\"\n\nport = 80\nlog-level = \"off\"\n");
    ASSERT_EQ(3U, options.size());
    EXPECT_EQ("lineup", options[0].option->name);
    EXPECT_THAT(options[0].values, ElementsAre("my.toml"));
    EXPECT_EQ(1, options[0].line);
    EXPECT_EQ("port", options[1].option->name);
    EXPECT_THAT(options[1].values, ElementsAre("80"));
    EXPECT_EQ(3, options[1].line);
    EXPECT_EQ("log-level", options[2].option->name);
}

TEST_F(ConfigurationTest, TakesOneGuideOrAListOfThem) {
    EXPECT_THAT(read("guide = \"one.xml\"").at(0).values, ElementsAre("one.xml"));
    EXPECT_THAT(read("guide = [\n\"one.xml\",\n\"two.xml\",\n]").at(0).values,
                ElementsAre("one.xml", "two.xml"));
    EXPECT_THAT(read("guide = []").at(0).values, ElementsAre());
}

TEST_F(ConfigurationTest, KnowsEveryOption) {
    for (const OptionEntry& option : optionTable()) {
        const bool number = option.form == OptionEntry::Form::Number;
        const auto options = read(std::string(option.name) + (number ? " = 5" : " = \"text\""));
        ASSERT_EQ(1U, options.size()) << option.name;
        EXPECT_EQ(&option, options[0].option);
        EXPECT_THAT(options[0].values, ElementsAre(number ? "5" : "text"));
    }
}

TEST_F(ConfigurationTest, ComesWithThePackageWithEveryOptionInIt) {
    std::ifstream shipped(EPG_SHIPPED_CONFIGURATION);
    const std::string text{std::istreambuf_iterator<char>(shipped), {}};
    EXPECT_THAT(read(text), testing::SizeIs(4));  // those that the package has its own mind of
    // "# OPTION = VALUE" states a default; other comments begin with more than one word.
    std::string all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t sign = line.find(" = ");
        const bool isDefault =
            sign != std::string::npos && line.starts_with("# ") && sign == line.find(' ', 2);
        all += (isDefault ? line.substr(2) : line) + '\n';
    }
    std::vector<std::string_view> named;
    for (const ConfiguredOption& configured : read(all))
        named.push_back(configured.option->name);
    std::vector<std::string_view> known;
    for (const OptionEntry& option : optionTable())
        known.push_back(option.name);
    EXPECT_THAT(named, testing::UnorderedElementsAreArray(known));
}

TEST_F(ConfigurationTest, MayBeEmpty) {
    EXPECT_TRUE(read("# nothing\n").empty());
}

TEST_F(ConfigurationTest, RefusesAnUnknownOptionWithItsLine) {
    expectRefusal("port = 80\nprot = 80\n", 2, "\"prot\"");
    expectRefusal("[server]\nport = 80\n", 1, "\"server\"");
    expectRefusal("config = \"other.toml\"\n", 1, "\"config\"");
    expectRefusal("max_programmes = 5\n", 1, "\"max_programmes\"");
}

TEST_F(ConfigurationTest, RefusesAValueOfAnotherTypeWithItsLine) {
    expectRefusal("\nport = \"80\"\n", 2, "port must be a number");
    expectRefusal("port = 80.0\n", 1, "port must be a number");
    expectRefusal("state = 5\n", 1, "state must be a text");
    expectRefusal("state = [\"a\"]\n", 1, "state must be a text");
    expectRefusal("now = 2026-08-23T00:00:00Z\n", 1, "now must be a text");
    expectRefusal("guide = [\n\"one.xml\",\n7]\n", 3, "guide must be a text or a list of texts");
    expectRefusal("guide = true\n", 1, "guide must be a text or a list of texts");
    expectRefusal("lineup = \"a\\u0000b\"\n", 1, "NUL");
}

TEST_F(ConfigurationTest, RefusesWhatIsNoTomlWithItsLine) {
    expectRefusal("port = 80\nlineup = my.toml\n", 2, "");
    expectRefusal("port = 80\nport = 81\n", 2, "port");
}

TEST_F(ConfigurationTest, RefusesAFileThatCannotBeRead) {
    const std::string missing = (folder_.path() / "missing.toml").string();
    for (const std::string& path : {missing, folder_.path().string()}) {
        try {
            readConfiguration(path);
            ADD_FAILURE() << "accepted: " << path;
        } catch (const StartError& error) {
            EXPECT_THAT(error.what(), StartsWith(path + ": "));
        }
    }
}

}  // namespace
}  // namespace epgset
