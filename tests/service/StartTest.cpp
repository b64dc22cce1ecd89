// How epghost starts: its options, what it prints, and how it ends when it cannot start.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

using Arguments = EpghostProcess::Arguments;

/// A guide of two channels and one programme, which is read in no time.
/// Tests of starts that fail: a folder to work in, and what such a start has to look like.
class FailedStart : public ::testing::Test {
protected:
    /// Starts epghost with these options, and a state folder and a free port, and expects it to refuse.
    /// Answers what it printed on standard error.
    std::string refusal(const Arguments& options) {
        Arguments all = {"--state", state().string()};
        if (!contains(options, "--port")) all.insert(all.end(), {"--port", "0"});
        all.insert(all.end(), options.begin(), options.end());
        EpghostProcess process(all);
        EXPECT_EQ(2, process.wait());
        EXPECT_EQ("", process.output());
        const std::string errors = process.errors();
        EXPECT_EQ(errors.size(), errors.find('\n') + 1) << "not one line: " << errors;
        EXPECT_THAT(errors, StartsWith("epghost: "));
        EXPECT_FALSE(fs::exists(state())) << "the state folder was made";
        return errors;
    }

    static bool contains(const Arguments& options, const std::string& option) {
        return std::find(options.begin(), options.end(), option) != options.end();
    }

    fs::path state() const { return folder_.path() / "state"; }
    std::string file(const std::string& name, const std::string& content) const {
        return folder_.write(name, content).string();
    }

    TemporaryFolder folder_;
};

TEST_F(FailedStart, NamesAnUnknownOption) {
    EXPECT_THAT(refusal({"--guid=x"}), HasSubstr("--guid"));
}

TEST_F(FailedStart, NamesAnArgumentThatIsNoOption) {
    EXPECT_THAT(refusal({"guide.xml"}), HasSubstr("guide.xml"));
}

TEST_F(FailedStart, NamesAnOptionWithoutItsValue) {
    for (const char* option : {"--guide", "--lineup", "--recordings", "--pvr", "--web-root", "--listen",
                               "--now", "--zone", "--max-programmes", "--log-level", "--plugin"}) {
        EXPECT_THAT(refusal({option}), HasSubstr(option));
        EXPECT_THAT(refusal({option, ""}), HasSubstr(option));
    }
}

TEST_F(FailedStart, NamesAnOptionWithABadValue) {
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"--port", "65536"},
        {"--port", "-1"},
        {"--port", "80a"},
        {"--port", "99999999999999999999"},
        {"--pvr", "maybe"},
        {"--pvr", "ON"},
        {"--zone", "Europe/Paris"},
        {"--log-level", "info"},
        {"--max-connections", "0"},
        {"--max-connections-per-address", "0"},
        {"--idle-time", "0"},
        {"--head-time", "30s"},
        {"--body-time", "86401"},
        {"--answer-time", "0"},
        {"--max-head", "1000"},
        {"--max-body", "2097151"},
        {"--max-chunked-body", "2097151"},
        {"--body-memory", "1"},
        {"--answer-memory", "0"},
        {"--max-programmes", "-1"},
        {"--max-programmes", "many"},
        {"--max-programmes", "1e3"},
        {"--now", "yesterday"},
        {"--now", "2026-02-30T00:00:00Z"},
        {"--now", "2026-08-23"},
        {"--now", "2026-08-23T00:00:00X"},
        {"--now", "1969-12-31T23:59:59Z"},
    };
    for (const auto& [option, value] : bad) {
        EXPECT_THAT(refusal({option, value}), HasSubstr(option)) << value;
    }
}

TEST_F(FailedStart, NamesMoreConnectionsThanThereMayBeOpenFiles) {
    const rlimit few{500, 500};
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // The limit cannot be raised again, so that another process has it.
        setrlimit(RLIMIT_NOFILE, &few);
        const std::string text = refusal({"--max-connections", "1000"});
        _exit(text.find("--max-connections: 1570 files") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST_F(FailedStart, NamesAnOptionGivenTwice) {
    EXPECT_THAT(refusal({"--zone", "utc", "--zone", "local"}), HasSubstr("--zone"));
}

TEST_F(FailedStart, NamesAGuideThatCannotBeFetched) {
    for (const char* url : {"http://127.0.0.1:1/guide.xml", "HTTP://127.0.0.1:1/guide.xml"}) {
        EXPECT_THAT(refusal({"--guide", url}), AllOf(HasSubstr(url), HasSubstr("cannot be fetched")));
    }
}

TEST_F(FailedStart, NamesAGuideThatCannotBeRead) {
    const std::string missing = (folder_.path() / "missing.xml").string();
    EXPECT_THAT(refusal({"--guide", missing}), HasSubstr(missing));
    EXPECT_THAT(refusal({"--guide", folder_.path().string()}), HasSubstr(folder_.path().string()));
}

TEST_F(FailedStart, NamesTheLineOfAMalformedGuide) {
    const std::string guide = file("bad.xml", "<?xml version=\"1.0\"?>\n<tv>\n<channel id=\"a\">\n</tv>\n");
    EXPECT_THAT(refusal({"--guide", guide}), HasSubstr(guide + ":4:"));
}

TEST_F(FailedStart, NamesTheGuideThatIsNone) {
    const std::string text = file("text.xml", "not a guide\n");
    EXPECT_THAT(refusal({"--guide", smallGuide, "--guide", text}), HasSubstr(text));
    const std::string empty = file("empty.xml", "");
    EXPECT_THAT(refusal({"--guide", empty}), HasSubstr(empty));
}

TEST_F(FailedStart, NamesTheLineOfABadLineup) {
    const std::string lineup = file("lineup.toml", "[[channel]]\nid = \"one.example\"\ncolour = \"red\"\n");
    EXPECT_THAT(refusal({"--guide", smallGuide, "--lineup", lineup}), HasSubstr(lineup + ":3"));
}

TEST_F(FailedStart, NamesTheLineOfABadLineupForTheDemoGuideToo) {
    const std::string lineup = file("lineup.toml", "[[channel]]\nid = 1\n");
    EXPECT_THAT(refusal({"--lineup", lineup}), HasSubstr(lineup + ":2"));
}

TEST_F(FailedStart, PrintsOneReadableLineWhateverTheTextsHold) {
    EXPECT_THAT(refusal({"--guide", "a\nb\x1B[2J\xFF.xml"}), HasSubstr("a\\nb\\x1B[2J\\xFF.xml"));
    EXPECT_THAT(refusal({"--pvr", "o\nn\x1B"}), HasSubstr("o\\nn\\x1B"));
    EXPECT_THAT(refusal({"--now", "\x1B[31m"}), HasSubstr("\\x1B[31m"));
    const std::string lineup =
        file("lineup.toml", "[[channel]]\nid = \"a\"\nantenna = \"\\u001B[31m\\nred\"\n");
    EXPECT_THAT(refusal({"--lineup", lineup}), HasSubstr("\\x1B[31m\\nred"));
}

TEST_F(FailedStart, NamesAPlugInThatCannotBeLoaded) {
    EXPECT_THAT(refusal({"--plugin", "/nowhere/plug.so"}), HasSubstr("/nowhere/plug.so"));
    const std::string text = file("text.so", "no library");
    EXPECT_THAT(refusal({"--plugin", text}), HasSubstr(text));
}

TEST_F(FailedStart, NamesFoldersThatAreNone) {
    const std::string text = file("text", "no folder");
    EXPECT_THAT(refusal({"--recordings", text}), HasSubstr(text));
    EXPECT_THAT(refusal({"--web-root", text}), HasSubstr(text));
    EXPECT_THAT(refusal({"--web-root", "/nowhere"}), HasSubstr("/nowhere"));
}

TEST_F(FailedStart, NamesAStateFolderThatIsNone) {
    const std::string text = file("text", "no folder");
    for (const std::string& path : {text, text + "/below"}) {
        EpghostProcess process({"--port", "0", "--state", path});
        EXPECT_EQ(2, process.wait());
        EXPECT_THAT(process.errors(), HasSubstr(path));
        EXPECT_EQ("", process.output());
    }
}

TEST_F(FailedStart, NamesAnAddressThatIsNone) {
    EXPECT_THAT(refusal({"--listen", "300.1.2.3"}), HasSubstr("300.1.2.3"));
    EXPECT_THAT(refusal({"--listen", "192.0.2.1"}), HasSubstr("192.0.2.1"));
}

TEST_F(FailedStart, NamesAPortThatIsTaken) {
    RunningSet first({"--guide", smallGuide});
    const std::string url = first.url();
    const std::string port = url.substr(url.rfind(':') + 1, url.size() - url.rfind(':') - 2);
    EXPECT_THAT(refusal({"--port", port}), HasSubstr(port));
    EXPECT_EQ(200, HttpClient(url).get("/set/status").status);
}

TEST_F(FailedStart, NamesAStateFolderInUse) {
    fs::create_directory(state());
    EpghostProcess first({"--port", "0", "--guide", smallGuide, "--state", state().string()});
    first.waitUntilReady();
    EpghostProcess second({"--port", "0", "--state", state().string()});
    EXPECT_EQ(2, second.wait());
    EXPECT_EQ("", second.output());
    EXPECT_THAT(second.errors(), HasSubstr(state().string()));
    EXPECT_EQ(0, first.stop());
    EpghostProcess third({"--port", "0", "--guide", smallGuide, "--state", state().string()});
    third.waitUntilReady();
}

TEST(Start, PrintsHelpThatNamesEveryOption) {
    EpghostProcess process({"--help"});
    EXPECT_EQ(0, process.wait());
    EXPECT_EQ("", process.errors());
    for (const char* option :
         {"--guide", "--lineup", "--state", "--recordings", "--pvr", "--web-root", "--listen", "--port",
          "--now", "--zone", "--max-programmes", "--log-level", "--plugin", "--help", "--version"}) {
        EXPECT_THAT(process.output(), HasSubstr(option));
    }
}

TEST(Start, PrintsItsVersion) {
    EpghostProcess process({"--version"});
    EXPECT_EQ(0, process.wait());
    EXPECT_THAT(process.output(), MatchesRegex("epghost [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Start, PrintsOneLineWhenItIsReady) {
    RunningSet set;
    EXPECT_THAT(set.process().output(), MatchesRegex("listening on http://127\\.0\\.0\\.1:[0-9]+/\n"));
    EXPECT_EQ(200, HttpClient(set.url()).get("/set/status").status);
    EXPECT_EQ(0, set.process().stop());
    EXPECT_EQ("listening on " + set.url() + "\n", set.process().output());
}

TEST(Start, PutsAnIpv6AddressInBrackets) {
    RunningSet set({"--guide", smallGuide, "--listen", "::1"});
    EXPECT_THAT(set.url(), MatchesRegex("http://\\[::1\\]:[0-9]+/"));
    EXPECT_EQ(200, HttpClient(set.url()).get("/set/status").status);
}

TEST(Start, MakesTheStateFolderForItsOwnerOnly) {
    const TemporaryFolder folder;
    const fs::path state = folder.path() / "a" / "b";
    EpghostProcess process({"--port", "0", "--guide", smallGuide, "--state", state.string()});
    process.waitUntilReady();
    EXPECT_EQ(fs::perms::owner_all, fs::status(state).permissions());
}

TEST(Start, KeepsItsStateWhereTheEnvironmentSays) {
    const TemporaryFolder folder;
    const std::string path = folder.path().string();
    {
        EpghostProcess process({"--port", "0", "--guide", smallGuide},
                               {"XDG_STATE_HOME=" + path + "/xdg", "HOME=" + path + "/home"});
        process.waitUntilReady();
    }
    EXPECT_TRUE(fs::is_directory(folder.path() / "xdg" / "epghost"));
    EXPECT_FALSE(fs::exists(folder.path() / "home"));
    EpghostProcess process({"--port", "0", "--guide", smallGuide},
                           {"XDG_STATE_HOME=", "HOME=" + path + "/home"});
    process.waitUntilReady();
    EXPECT_TRUE(fs::is_directory(folder.path() / "home" / ".local" / "state" / "epghost"));
}

TEST(Start, ServesSeveralGuides) {
    const TemporaryFolder folder;
    const std::string two =
        folder.write("two.xml", "<tv><channel id=\"three\"><display-name>Three</display-name></channel></tv>")
            .string();
    RunningSet set({"--guide", smallGuide, "--guide", two, "--now", "2026-08-23T12:00:00Z"});
    const std::string status = HttpClient(set.url()).get("/set/status").body;
    EXPECT_THAT(status, HasSubstr("\"channels\":3,\"programs\":1,"));
}

TEST(Start, ShapesTheDemoGuideByALineupAndItsBound) {
    const TemporaryFolder folder;
    const std::string all = HttpClient(RunningSet().url()).get("/set/status").body;
    const std::string lineup =
        folder.write("lineup.toml", "[[channel]]\nid = \"AIR-1-0.demo\"\nhidden = true\n").string();
    RunningSet set({"--lineup", lineup, "--max-programmes", "100"});
    const std::string status = HttpClient(set.url()).get("/set/status").body;
    EXPECT_THAT(status, HasSubstr("\"channels\":27,\"programs\":100,\"programs_dropped\":"));
    EXPECT_THAT(status, Not(HasSubstr("\"programs_dropped\":0")));
}

TEST(Start, FillsTheTableWithAGuideOfGiantTexts) {
    const TemporaryFolder folder;
    const std::string giant(3'000'000, '\'');
    const std::string guide =
        folder
            .write("guide.xml",
                   "<tv><channel id=\"a\"><display-name>" + giant +
                       "</display-name></channel><channel id=\"b\"><display-name>B</display-name>"
                       "</channel><programme channel=\"b\" start=\"20260823120000\"><title>" +
                       giant + "</title><desc>" + giant + "</desc></programme></tv>")
            .string();
    for (const char* bound : {"90000", "0"}) {
        RunningSet set({"--guide", guide, "--now", "2026-08-23T12:00:00Z", "--max-programmes", bound});
        EXPECT_THAT(set.process().errors(), HasSubstr("cut 3 texts"));
        const HttpAnswer channels = HttpClient(set.url()).get("/ws/epg2/channels");
        EXPECT_EQ(200, channels.status);
        EXPECT_THAT(channels.body, HasSubstr("\"items_total\":2"));
    }
}

TEST(Start, SetsTheClock) {
    for (const auto& [option, clock] : std::vector<std::pair<std::string, std::string>>{
             {"2026-08-23T12:34:56Z", "2026-08-23T12:34:"},
             {"2026-08-23T12:34", "2026-08-23T12:34:"},
             {"2026-08-23T12:34:00+02:00", "2026-08-23T10:34:"},
             {"2026-08-23T23:34:00-0130", "2026-08-24T01:04:"},
         }) {
        RunningSet set({"--guide", smallGuide, "--now", option});
        const std::string status = HttpClient(set.url()).get("/set/status").body;
        EXPECT_THAT(status, StartsWith("{\"clock\":\"" + clock)) << option;
        EXPECT_THAT(status, HasSubstr("+00:00\"")) << option;
    }
}

TEST(Start, TellsTheZoneAndWhatItCanRecord) {
    RunningSet set(
        {"--guide", smallGuide, "--zone", "local", "--pvr", "unformatted", "--now", "2026-08-23T12:00:00Z"},
        {"TZ=Europe/Paris"});
    const std::string status = HttpClient(set.url()).get("/set/status").body;
    EXPECT_THAT(status, StartsWith("{\"clock\":\"2026-08-23T14:00:"));
    EXPECT_THAT(status, HasSubstr("+02:00\""));
    EXPECT_THAT(status, HasSubstr("\"pvr\":\"unformatted\",\"zone\":\"Europe/Paris\""));
}

TEST(Start, LogsAtTheLevelAsked) {
    RunningSet quiet({"--guide", smallGuide, "--log-level", "off"});
    RunningSet chatty({"--guide", smallGuide, "--log-level", "trace"});
    HttpClient(quiet.url()).get("/ws/other/path");
    HttpClient(chatty.url()).get("/ws/other/path");
    EXPECT_EQ(0, quiet.process().stop());
    EXPECT_EQ(0, chatty.process().stop());
    EXPECT_EQ("", quiet.process().errors());
    EXPECT_THAT(chatty.process().errors(),
                ::testing::ContainsRegex("\n[0-9-]+T[0-9:]+\\.[0-9]{3}Z trace EpgSQLPlugin: Method - GET\n"));
}

}  // namespace
}  // namespace epgset::test
