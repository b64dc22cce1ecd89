// The commands of epghost and its configuration file, from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

using Arguments = EpghostProcess::Arguments;

const std::string fiveChannels = EPG_TEST_DATA "/five-channels.xml";

/// What a command printed, and its status.
struct Printed {
    explicit Printed(const Arguments& arguments) {
        EpghostProcess process(arguments);
        status = process.wait();
        output = process.output();
        errors = process.errors();
    }
    int status;
    std::string output;
    std::string errors;
};

/// What the program says of arguments that it refuses.
std::string refusal(const Arguments& arguments) {
    const Printed printed(arguments);
    EXPECT_EQ(2, printed.status);
    EXPECT_EQ("", printed.output);
    EXPECT_EQ(printed.errors.size(), printed.errors.find('\n') + 1) << "not one line: " << printed.errors;
    EXPECT_THAT(printed.errors, StartsWith("epghost: "));
    return printed.errors;
}

TEST(Commands, EachHasHelpOfItsOwn) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> commands = {
        {"lineup", {"--guide"}},
        {"check", {"--guide", "--lineup", "--max-programmes", "--json"}},
        {"demo-guide", {"--channels", "--days", "--programmes", "--seed", "--start"}},
    };
    const Printed all({"--help"});
    for (const auto& [command, options] : commands) {
        EXPECT_THAT(all.output, HasSubstr("\n  " + command + " "));
        const Printed help({command, "--help"});
        EXPECT_EQ(0, help.status);
        EXPECT_EQ("", help.errors);
        EXPECT_THAT(help.output, HasSubstr("epghost " + command));
        for (const std::string& option : options)
            EXPECT_THAT(help.output, HasSubstr("\n  " + option + " "));
    }
}

TEST(Commands, RefuseWhatTheyDoNotTake) {
    EXPECT_THAT(refusal({"chekc"}), HasSubstr("chekc"));
    EXPECT_THAT(refusal({"lineup", "guide.xml"}), HasSubstr("guide.xml"));
    EXPECT_THAT(refusal({"lineup", "--port", "1"}), HasSubstr("--port"));
    EXPECT_THAT(refusal({"--port", "1", "lineup"}), HasSubstr("lineup"));
    EXPECT_THAT(refusal({"lineup", "check", "--guide", smallGuide}), HasSubstr("check"));
    EXPECT_THAT(refusal({"check"}), HasSubstr("--guide"));
    EXPECT_THAT(refusal({"check", "--guide", "http://127.0.0.1/guide.xml"}), HasSubstr("URL"));
    EXPECT_THAT(refusal({"check", "--guide", ""}), HasSubstr("--guide"));
}

TEST(LineupCommand, PrintsWhatAServiceTakesWithoutAnotherAnswer) {
    const Printed printed({"lineup", "--guide", fiveChannels});
    EXPECT_EQ(0, printed.status);
    EXPECT_EQ("", printed.errors);
    const TemporaryFolder folder;
    const std::string lineup = folder.write("lineup.toml", printed.output).string();
    const std::string now = "2026-08-23T12:00:00Z";
    RunningSet without({"--guide", fiveChannels, "--now", now});
    RunningSet with({"--guide", fiveChannels, "--now", now, "--lineup", lineup});
    for (const char* resource : {"/ws/epg2/channels", "/ws/epg2/programs", "/ws/epg2/antennas"}) {
        const HttpAnswer answer = HttpClient(without.url()).get(resource);
        EXPECT_EQ(200, answer.status);
        EXPECT_EQ(answer.body, HttpClient(with.url()).get(resource).body);
    }
    EXPECT_EQ("", with.process().errors());
}

TEST(LineupCommand, PrintsTheDemoGuidesWithoutAGuide) {
    const Printed printed({"lineup"});
    EXPECT_EQ(0, printed.status);
    EXPECT_THAT(printed.output, HasSubstr("id = \"CABLE-1-0.demo\"\nnumber = \"1\"\n"));
    EXPECT_THAT(printed.output, HasSubstr("service_type = \"RADIO\""));
}

TEST(LineupCommand, RefusesAGuideThatCannotBeRead) {
    const TemporaryFolder folder;
    const std::string guide = folder.write("bad.xml", "<tv>\n<channel>\n</tv>\n").string();
    EXPECT_THAT(refusal({"lineup", "--guide", guide}), HasSubstr(guide + ":3: "));
}

TEST(CheckCommand, PrintsFindingsAndCounts) {
    const TemporaryFolder folder;
    const std::string guide = folder
                                  .write("guide.xml",
                                         "<tv>\n<channel id='a'/>\n<programme channel='a' start='noon'/>\n"
                                         "<programme channel='a' start='2026'/></tv>")
                                  .string();
    const Printed printed({"check", "--guide", guide});
    EXPECT_EQ(0, printed.status);
    EXPECT_EQ("", printed.errors);
    EXPECT_THAT(printed.output, StartsWith(guide + ":3: warning: "));
    EXPECT_THAT(printed.output, HasSubstr(guide + ": 1 channels, 0 without an id; 2 programmes, 1 skipped"));
    EXPECT_THAT(printed.output, HasSubstr("the set has 1 channels and 1 programmes"));
}

TEST(CheckCommand, TellsByItsStatusWhetherTheFilesCanBeUsed) {
    const TemporaryFolder folder;
    const std::string lineup = folder.write("lineup.toml", "[[channel]]\nid = 7\nname = 8\n").string();
    const Printed printed({"check", "--guide", smallGuide, "--lineup", lineup});
    EXPECT_EQ(2, printed.status);
    EXPECT_THAT(printed.output, AllOf(HasSubstr(lineup + ":2: error: "), HasSubstr(lineup + ":3: error: ")));
    EXPECT_THAT(printed.output, HasSubstr("cannot use"));
    EXPECT_EQ(2, Printed({"check", "--guide", "/nowhere/guide.xml"}).status);
}

TEST(CheckCommand, PrintsJson) {
    const TemporaryFolder folder;
    const std::string guide =
        folder.write("g\"u\xFF.xml", "<tv>\n<channel id='a'/>\n<programme channel='b' start='2026'/></tv>")
            .string();
    const std::string lineup =
        folder.write("lineup.toml", "[[channel]]\nid = \"x\"\nantenna = \"ROOF\"\n").string();
    const Printed printed({"check", "--json", "--guide", guide, "--lineup", lineup});
    EXPECT_EQ(2, printed.status);
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(printed.output.c_str());
    ASSERT_FALSE(document.HasParseError()) << printed.output;
    EXPECT_FALSE(document["usable"].GetBool());
    EXPECT_EQ(1U, document["guides"][0]["programs"].GetUint64());
    EXPECT_EQ(1U, document["guides"][0]["skipped_unknown_channel"].GetUint64());
    EXPECT_EQ(1U, document["lineup"]["in_no_guide"].GetUint64());
    const auto& first = document["findings"][1];
    EXPECT_STREQ("error", first["severity"].GetString());
    EXPECT_EQ(lineup, first["file"].GetString());
    EXPECT_EQ(3, first["line"].GetInt());

    const Printed good({"check", "--json", "--guide", smallGuide});
    EXPECT_EQ(0, good.status);
    EXPECT_THAT(good.output,
                StartsWith("{\"usable\":true,\"channels\":2,\"programs\":1,\"programs_dropped\":0,"));
}

TEST(DemoGuideCommand, PrintsTheProgrammesThatAreAskedFor) {
    const Arguments sizes = {"--channels", "4", "--days", "2", "--start", "2026-08-23T00:00:00Z"};
    Arguments arguments = {"demo-guide"};
    arguments.insert(arguments.end(), sizes.begin(), sizes.end());
    const TemporaryFolder folder;
    const Printed standard(arguments);
    EXPECT_EQ(0, standard.status);
    EXPECT_EQ(standard.output, Printed(arguments).output);
    const std::string first = folder.write("first.xml", standard.output).string();
    EXPECT_THAT(Printed({"check", "--guide", first}).output, HasSubstr("4 channels and 256 programmes"));
    arguments.insert(arguments.end(), {"--programmes", "50", "--seed", "9"});
    const std::string second = folder.write("second.xml", Printed(arguments).output).string();
    EXPECT_THAT(Printed({"check", "--guide", second}).output, HasSubstr("4 channels and 50 programmes"));
}

TEST(DemoGuideCommand, RefusesSizesThatItCannotMake) {
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"--channels", "0"},    {"--channels", "1001"},
        {"--channels", "many"}, {"--days", "0"},
        {"--days", "367"},      {"--programmes", "504001"},
        {"--programmes", "-1"}, {"--seed", "-1"},
        {"--start", "noon"},    {"--start", "2106-02-07T00:00:00Z"},
    };
    for (const auto& [option, value] : bad)
        EXPECT_THAT(refusal({"demo-guide", option, value}), HasSubstr(option)) << value;
}

class ConfigurationFile : public ::testing::Test {
protected:
    std::string write(const std::string& content) { return folder_.write("epghost.toml", content).string(); }
    std::string state() const { return (folder_.path() / "state").string(); }

    TemporaryFolder folder_;
};

TEST_F(ConfigurationFile, GivesTheOptions) {
    const std::string file =
        write("guide = [\"" + smallGuide + "\", \"" + fiveChannels + "\"]\nport = 0\nstate = \"" + state() +
              "\"\nnow = \"2026-08-23T12:00:00Z\"\npvr = \"no-device\"\n");
    EpghostProcess process({"--config", file});
    const std::string status = HttpClient(process.waitUntilReady()).get("/set/status").body;
    EXPECT_THAT(status, StartsWith("{\"clock\":\"2026-08-23T12:00:"));
    EXPECT_THAT(status, AllOf(HasSubstr("\"pvr\":\"no-device\""), HasSubstr("\"channels\":7,")));
}

TEST_F(ConfigurationFile, GivesWayToTheCommandLine) {
    const std::string file = write("guide = [\"" + fiveChannels + "\"]\nport = 1\npvr = \"no such word\"\n" +
                                   "web-root = \"/nowhere\"\n");
    EpghostProcess process({"--pvr", "off", "--config", file, "--port", "0", "--state", state(), "--guide",
                            smallGuide, "--web-root", folder_.path().string()});
    const std::string status = HttpClient(process.waitUntilReady()).get("/set/status").body;
    EXPECT_THAT(status, AllOf(HasSubstr("\"pvr\":\"off\""), HasSubstr("\"channels\":2,")));
}

TEST_F(ConfigurationFile, IsRefusedWithTheLineOfABadValue) {
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"pvr = \"maybe\"", "pvr: \"maybe\""},
        {"port = 65536", "port: \"65536\""},
        {"port = -1", "port: \"-1\""},
        {"now = \"yesterday\"", "now: \"yesterday\""},
        {"lineup = \"\"", "lineup: "},
        {"web-root = \"/nowhere\"", "web-root: /nowhere is no folder"},
        {"guide = [\"g.xml\", \"\"]", "guide: a text is missing"},
        {"colour = \"red\"", "unknown option: \"colour\""},
        {"zone = 1", "zone must be a text"},
    };
    for (const auto& [line, message] : bad) {
        const std::string file = write("# first line\n" + line + "\n");
        EXPECT_THAT(refusal({"--config", file}), HasSubstr(file + ":2: " + message)) << line;
    }
}

TEST_F(ConfigurationFile, IsRefusedWhereThereIsNone) {
    EXPECT_THAT(refusal({"--config", "/nowhere/epghost.toml"}), HasSubstr("/nowhere/epghost.toml: "));
    EXPECT_THAT(refusal({"--config", ""}), HasSubstr("--config"));
    EXPECT_THAT(refusal({"--config", "a", "--config", "b"}), HasSubstr("--config"));
}

TEST(Manual, ListsEveryOptionAndCommandOfTheHelp) {
    const Printed manual({"man"});
    EXPECT_EQ(0, manual.status);
    for (const Arguments& command :
         {Arguments{}, Arguments{"lineup"}, Arguments{"check"}, Arguments{"demo-guide"}}) {
        Arguments arguments = command;
        arguments.emplace_back("--help");
        const std::string help = Printed(arguments).output;
        std::size_t options = 0;
        for (std::size_t at = help.find("\n  --"); at != std::string::npos;
             at = help.find("\n  --", at + 1)) {
            std::string name;
            for (const char c : help.substr(at + 3, help.find_first_of(" \n", at + 3) - at - 3))
                name += c == '-' ? "\\-" : std::string(1, c);
            EXPECT_THAT(manual.output, HasSubstr("\\fB" + name + "\\fR"));
            ++options;
        }
        EXPECT_GT(options, 1U);
    }
    for (const char* command : {"lineup", "check", "demo\\-guide"})
        EXPECT_THAT(manual.output, HasSubstr(std::string("\n.SS epghost ") + command + "\n"));
    EXPECT_THAT(manual.output, Not(HasSubstr("epghost man")));
}

}  // namespace
}  // namespace epgset::test
