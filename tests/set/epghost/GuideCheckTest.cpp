#include "set/epghost/GuideCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "set/log/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class GuideCheckTest : public testing::Test {
protected:
    std::string file(const std::string& name, const std::string& content) {
        return folder_.write(name, content).string();
    }
    std::string guide(const std::string& content) {
        return file("guide.xml", "<tv>\n" + content + "</tv>\n");
    }

    static std::string channel(const std::string& id, const std::string& more = "") {
        return "<channel id=\"" + id + "\"><display-name>Name</display-name>" + more + "</channel>\n";
    }
    static std::string programme(const std::string& channel, const std::string& start,
                                 const std::string& stop = "") {
        return "<programme channel=\"" + channel + "\" start=\"" + start + "\" stop=\"" + stop +
               "\"><title>Title</title></programme>\n";
    }

    /// "LINE error: MESSAGE" of each finding, in order.
    static std::vector<std::string> findings(const CheckReport& report) {
        std::vector<std::string> lines;
        for (const CheckFinding& finding : report.findings) {
            lines.push_back(std::to_string(finding.line) + (finding.isError ? " error: " : " warning: ") +
                            finding.message);
        }
        return lines;
    }

    CheckReport check(const std::vector<std::string>& guides, const std::string& lineup = "",
                      std::size_t maxProgrammes = 90000) {
        return checkGuides(guides, lineup, maxProgrammes);
    }

    test::TemporaryFolder folder_;
    LogCapture log_;
};

TEST_F(GuideCheckTest, FindsNothingInGoodFiles) {
    const std::string good = guide(channel("a") + channel("b") + programme("a", "20260823120000"));
    const std::string lineup = file("lineup.toml", "[[channel]]\nid = \"b\"\nhidden = true\n");
    const CheckReport report = check({good}, lineup);
    EXPECT_THAT(findings(report), IsEmpty());
    EXPECT_FALSE(report.hasErrors());
    ASSERT_EQ(1U, report.guides.size());
    EXPECT_EQ(good, report.guides[0].file);
    EXPECT_EQ(2U, report.guides[0].counts.channels);
    EXPECT_EQ(1U, report.guides[0].counts.programmes);
    ASSERT_TRUE(report.lineup);
    EXPECT_EQ(1U, report.lineup->entries);
    EXPECT_EQ(1U, report.lineup->hidden);
    ASSERT_TRUE(report.shown);
    EXPECT_EQ(1U, report.shown->channels);
    EXPECT_EQ(1U, report.shown->programmes);
}

TEST_F(GuideCheckTest, TellsEveryProgrammeThatIsSkippedAndWhere) {
    const CheckReport report = check({guide(channel("a") +                                        // line 2
                                            programme("a", "noon") +                              // line 3
                                            programme("a", "20260823120000", "20260823110000") +  // line 4
                                            programme("x", "20260823120000") +                    // line 5
                                            programme("x", "20260823130000") + channel("") +      // line 7
                                            programme("a", "20260823120000"))});
    EXPECT_THAT(
        findings(report),
        ElementsAre("3 warning: a programme without a readable start is skipped: \"noon\"",
                    "4 warning: a programme that ends before it starts is skipped: from "
                    "\"20260823120000\" to \"20260823110000\"",
                    "5 warning: no guide has the channel \"x\": its 2 programmes here are skipped, this "
                    "is the first",
                    "7 warning: a channel without an id is skipped"));
    const GuideCounts& counts = report.guides.at(0).counts;
    EXPECT_EQ(1U, counts.withoutStart);
    EXPECT_EQ(1U, counts.endingBeforeStart);
    EXPECT_EQ(2U, counts.ofUnknownChannel);
    EXPECT_EQ(1U, counts.channelsWithoutId);
    EXPECT_EQ(1U, report.shown->programmes);
}

TEST_F(GuideCheckTest, KnowsAChannelThatComesAfterItsProgrammesOrInAnotherGuideOrInTheLineup) {
    const std::string first =
        file("first.xml", "<tv>" + programme("late", "2026") + programme("other", "2026") +
                              programme("own", "2026") + channel("late") + "</tv>");
    const std::string second = file("second.xml", "<tv>" + channel("other") + "</tv>");
    const std::string lineup = file("lineup.toml", "[[channel]]\nid = \"own\"\n");
    const CheckReport report = check({first, second}, lineup);
    EXPECT_THAT(findings(report), ElementsAre("1 warning: no guide has the channel \"own\""));
    EXPECT_EQ(1U, report.lineup->inNoGuide);
    EXPECT_EQ(3U, report.shown->programmes);
}

TEST_F(GuideCheckTest, TellsWhatIsReplacedByWhatStandsLater) {
    const CheckReport report = check({guide(channel("a") + programme("a", "20260823120000") +
                                            programme("a", "20260823120000 +0000") + channel("a"))});
    EXPECT_THAT(
        findings(report),
        ElementsAre("3 warning: the programme in line 4 starts with it on the channel and takes its place",
                    "5 warning: the channel \"a\" stands in line 2 already, which counts"));
    EXPECT_EQ(1U, report.guides[0].sameStart);
    EXPECT_EQ(1U, report.shown->programmes);
}

TEST_F(GuideCheckTest, TakesThePartsOfAClumpForOneProgramme) {
    const std::string part = "<programme channel=\"a\" start=\"2026\" clumpidx=\"";
    EXPECT_THAT(findings(check({guide(channel("a") + part + "0/2\"/>\n" + part + "1/2\"/>\n")})), IsEmpty());
}

TEST_F(GuideCheckTest, TellsWhoseNumberIsTaken) {
    const CheckReport report =
        check({guide(channel("a", "<lcn>7</lcn>") + channel("b", "<lcn>7</lcn>") + channel("c"))});
    EXPECT_THAT(findings(report),
                ElementsAre("3 warning: the number 7 of the channel \"b\" is taken, it has 1"));
}

TEST_F(GuideCheckTest, TellsWhatIsTooLong) {
    const std::string name(5000, 'x');
    const std::string lineup = file("lineup.toml", "[[channel]]\nid = \"a\"\nname = \"" + name + "\"\n");
    const CheckReport report =
        check({guide("<channel id=\"a\"><display-name>" + name + "</display-name></channel>\n" +
                     "<programme channel=\"a\" start=\"2026\"><title>" + name + "</title></programme>\n")},
              lineup);
    EXPECT_THAT(findings(report), ElementsAre("1 warning: the name is too long, it is cut",
                                              "2 warning: the name of the channel is too long, it is cut",
                                              "3 warning: a text of the programme is too long, it is cut"));
}

TEST_F(GuideCheckTest, ReadsOnBehindAGuideThatCannotBeUsed) {
    const std::string broken = file("broken.xml", "<tv>\n<channel id=\"a\">\n</tv>\n");
    const std::string missing = (folder_.path() / "missing.xml").string();
    const CheckReport report = check({broken, missing, guide(channel("a") + programme("a", "noon"))});
    ASSERT_EQ(3U, report.findings.size());
    EXPECT_EQ(broken, report.findings[0].file);
    EXPECT_EQ(3, report.findings[0].line);
    EXPECT_TRUE(report.findings[0].isError);
    EXPECT_EQ(missing, report.findings[1].file);
    EXPECT_EQ(0, report.findings[1].line);
    EXPECT_TRUE(report.findings[1].isError);
    EXPECT_FALSE(report.findings[2].isError);
    EXPECT_TRUE(report.hasErrors());
    EXPECT_FALSE(report.shown);
    EXPECT_EQ(1U, report.guides.at(2).counts.programmes);
}

TEST_F(GuideCheckTest, TellsAllThatIsWrongWithALineup) {
    const std::string lineup = file("lineup.toml",
                                    "[[channel]]\n"         // 1
                                    "id = \"a\"\n"          // 2
                                    "number = 7\n"          // 3
                                    "antenna = \"ROOF\"\n"  // 4
                                    "[[channel]]\n"         // 5
                                    "name = \"No id\"\n"    // 6
                                    "[[channel]]\n"         // 7
                                    "id = \"a\"\n"          // 8
                                    "[[channel]]\n"         // 9
                                    "id = \"b\"\n"          // 10
                                    "colour = \"red\"\n"    // 11
                                    "[other]\n"             // 12
                                    "number = \"1\"\n");
    const CheckReport report = check({guide(channel("a") + programme("a", "noon"))}, lineup);
    std::vector<int> errors;
    for (const CheckFinding& finding : report.findings) {
        if (finding.isError) errors.push_back(finding.line);
    }
    EXPECT_THAT(errors, ElementsAre(3, 4, 5, 7, 11, 12));
    EXPECT_THAT(findings(report), testing::Contains("10 warning: no guide has the channel \"b\"").Times(0));
    EXPECT_THAT(findings(report), testing::Contains("9 warning: no guide has the channel \"b\""));
    EXPECT_THAT(findings(report).back(), HasSubstr("\"noon\""));
    EXPECT_TRUE(report.hasErrors());
}

TEST_F(GuideCheckTest, TellsALineupThatIsNoToml) {
    const CheckReport report = check({guide(channel("a"))}, file("lineup.toml", "[[channel]]\nid = \n"));
    ASSERT_EQ(1U, report.findings.size());
    EXPECT_EQ(2, report.findings[0].line);
    EXPECT_TRUE(report.findings[0].isError);
}

TEST_F(GuideCheckTest, TellsAGuideThatHoldsNothing) {
    EXPECT_THAT(findings(check({guide("")})),
                ElementsAre("0 warning: the guide has no channel and no programme"));
}

TEST_F(GuideCheckTest, CountsWhatIsLeftOutForWantOfRoom) {
    const CheckReport report =
        check({guide(channel("a") + programme("a", "2026") + programme("a", "2027"))}, "", 1);
    EXPECT_EQ(1U, report.shown->programmes);
    EXPECT_EQ(1U, report.shown->programmesDropped);
}

}  // namespace
}  // namespace epgset
