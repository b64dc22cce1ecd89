#include "set/epghost/LineupCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "set/demo/DemoGuide.h"
#include "set/guide/GuideLoader.h"
#include "set/log/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::HasSubstr;
using testing::Not;

class LineupCommandTest : public testing::Test {
protected:
    std::shared_ptr<const Guide> load() { return loadGuide(sources_, ids_).guide; }

    static std::string lineupOf(const Guide& guide) {
        std::ostringstream out;
        writeLineup(guide, out);
        return out.str();
    }

    static auto channelsOf(const Guide& guide) {
        std::vector<std::tuple<std::string, std::string, int, int, int, bool, bool, int, int, std::string>>
            all;
        for (const Channel& c : guide.channels()) {
            all.emplace_back(c.id, c.name, c.tvMode, c.major, c.minor, c.digital, c.scrambled, c.serviceType,
                             c.programNumber, c.source);
        }
        return all;
    }

    test::TemporaryFolder folder_;
    GuideSources sources_;
    EventIds ids_;
    LogCapture log_;
};

TEST_F(LineupCommandTest, WritesEachChannelWithItsNumberNameAndAntenna) {
    sources_.guides = {folder_.write("guide.xml",
                                     "<tv><channel id='one.example'><display-name>One</display-name>"
                                     "<lcn>7-2</lcn></channel></tv>")};
    EXPECT_THAT(lineupOf(*load()), HasSubstr("\n[[channel]]\n"
                                             "id = \"one.example\"\n"
                                             "number = \"7-2\"\n"
                                             "name = \"One\"\n"
                                             "antenna = \"AIR\"\n"
                                             "# source = \"http://127.0.0.1:9000/7-2.ts\"\n"));
}

TEST_F(LineupCommandTest, ChangesNothingWhereItIsReadBack) {
    sources_.guides = {folder_.write(
        "guide.xml",
        "<tv>"
        "<channel id='no number'/>"
        "<channel id='quote&quot;back\\slash'><display-name>\"A\" \\u0041 \\</display-name></channel>"
        "<channel id='tab&#9;and&#10;line&#127;'><display-name>Name&#x85;&#x2028;end</display-name></channel>"
        "<channel id='Ünï &lt;id&gt;'><display-name>日本 ☀️ "
        "&#x1FFFE;</display-name><lcn>7.3</lcn></channel>"
        "<channel id='taken'><display-name>9</display-name><display-name>''' # = []</display-name></channel>"
        "<channel id='twice'><display-name>9</display-name><display-name>Name</display-name></channel>"
        "<channel id='long'><display-name>" +
            std::string(5000, 'x') +
            "</display-name></channel>"
            "<programme channel='taken' start='2026'/></tv>")};
    const auto before = load();
    ASSERT_EQ(7U, before->channels().size());
    sources_.lineup = folder_.write("lineup.toml", lineupOf(*before));
    const auto after = load();
    EXPECT_EQ(channelsOf(*before), channelsOf(*after));
    EXPECT_EQ(before->programmes().size(), after->programmes().size());
}

TEST_F(LineupCommandTest, ChangesNothingOfTheDemoGuide) {
    sources_.now = 1787443200;
    const auto before = loadDemoGuide(sources_).guide;
    sources_.lineup = folder_.write("lineup.toml", lineupOf(*before));
    const auto after = loadDemoGuide(sources_).guide;
    EXPECT_EQ(channelsOf(*before), channelsOf(*after));
    EXPECT_EQ(before->programmes().size(), after->programmes().size());
}

TEST_F(LineupCommandTest, HasNoEntryForProgrammesOfAnUnknownChannel) {
    sources_.guides = {folder_.write("guide.xml", "<tv><programme channel='x' start='2026'/></tv>")};
    EXPECT_THAT(lineupOf(*load()), Not(HasSubstr("[[channel]]")));
}

}  // namespace
}  // namespace epgset
