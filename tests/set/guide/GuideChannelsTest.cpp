#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/set/guide/GuideLoaderFixture.h"

namespace epgset {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using GuideChannels = test::GuideLoaderTest;

TEST_F(GuideChannels, TakeTheirNumberFromLcnThenADisplayNameThenTheLowestFree) {
    guide(R"(<channel id="free"><display-name>Free</display-name></channel>
<channel id="lcn"><display-name>9</display-name><display-name>Lcn</display-name><lcn>2</lcn></channel>
<channel id="name"><display-name>Name</display-name><display-name>1</display-name></channel>
<channel id="minor"><display-name>5.1</display-name><display-name>Minor</display-name></channel>
<channel id="later"><display-name>Later</display-name></channel>)");
    EXPECT_THAT(listed(load()), ElementsAre("1 Name", "2 Lcn", "3 Free", "4 Later", "5-1 Minor"));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(GuideChannels, WhoseNumberIsTakenCountAsWithoutOne) {
    guide(R"(<channel id="a"><display-name>A</display-name><lcn>7</lcn></channel>
<channel id="b"><display-name>B</display-name><lcn>7</lcn></channel>
<channel id="c"><display-name>C</display-name><display-name>7</display-name></channel>)");
    EXPECT_THAT(listed(load()), ElementsAre("1 B", "2 C", "7 A"));
}

TEST_F(GuideChannels, WhoseFirstNumberIsTakenHaveTheNextThatTheyState) {
    guide(R"(<channel id="a"><display-name>A</display-name><lcn>7</lcn></channel>
<channel id="b"><display-name>B</display-name><display-name>7</display-name>
<display-name>0</display-name><display-name>9</display-name><display-name>12</display-name><lcn>7</lcn></channel>
<channel id="c"><display-name>C</display-name><display-name>9</display-name><display-name>7</display-name></channel>)");
    EXPECT_THAT(listed(load()), ElementsAre("1 C", "7 A", "9 B"));
}

TEST_F(GuideChannels, WhoseNameIsTooLongAreNamedByItsBeginning) {
    const std::string giant(2'000'000, 'n');
    guide("<channel id='a'><display-name>" + giant + "</display-name></channel>" +
          "<channel id='b'><display-name>short</display-name><display-name>" + giant +
          "</display-name></channel>" + "<channel id='" + giant + "'/>");
    const Guide& guide = load();
    ASSERT_EQ(guide.channels().size(), 3U);
    EXPECT_EQ(guide.channels()[0].name, std::string(4096, 'n'));
    EXPECT_EQ(guide.channels()[1].name, "short");
    EXPECT_EQ(guide.channels()[2].name, std::string(4096, 'n'));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("guide0.xml: cut 2 texts that are too long")));
}

TEST_F(GuideChannels, WhoseNameInTheLineupIsTooLongAreNamedByItsBeginning) {
    guide("<channel id='a'/>");
    lineup("[[channel]]\nid = \"a\"\nname = \"" + std::string(2'000'000, 'n') + "\"\n");
    EXPECT_EQ(load().channels()[0].name, std::string(4096, 'n'));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("lineup.toml: cut 1 names that are too long")));
}

TEST_F(GuideChannels, WhoseNumberIsOutOfRangeCountAsWithoutOne) {
    guide(R"(<channel id="a"><display-name>A</display-name><lcn>0</lcn></channel>
<channel id="b"><display-name>B</display-name><lcn>32768</lcn></channel>
<channel id="c"><display-name>C</display-name><lcn>none</lcn></channel>)");
    EXPECT_THAT(listed(load()), ElementsAre("1 A", "2 B", "3 C"));
}

TEST_F(GuideChannels, AreDigitalTvOnAirWithoutALineup) {
    guide(R"(<channel id="a.example"><display-name>12</display-name></channel>)");
    const Channel& channel = load().channels()[0];
    EXPECT_EQ(channel.name, "a.example");
    EXPECT_EQ(channel.major, 12);
    EXPECT_EQ(channel.tvMode, 0);
    EXPECT_TRUE(channel.digital);
    EXPECT_FALSE(channel.scrambled);
    EXPECT_EQ(channel.serviceType, 1);
}

TEST_F(GuideChannels, FollowTheLineup) {
    guide(R"(<channel id="a"><display-name>A</display-name><lcn>7</lcn></channel>
<channel id="b"><display-name>B</display-name><lcn>1</lcn></channel>
<channel id="c"><display-name>C</display-name><lcn>3</lcn></channel>)");
    lineup(R"([[channel]]
id = "b"
number = "7"
[[channel]]
id = "c"
antenna = "SATELLITE"
name = "Sea"
service_type = "RADIO"
digital = false
source = "http://127.0.0.1/c"
)");
    const Guide& guide = load();
    EXPECT_THAT(listed(guide), ElementsAre("1 A", "7 B", "3 Sea"));
    const Channel* const sea = guide.find(3, 3, 0);
    ASSERT_NE(sea, nullptr);
    EXPECT_EQ(sea->serviceType, 2);
    EXPECT_FALSE(sea->digital);
    EXPECT_EQ(sea->source, "http://127.0.0.1/c");
}

TEST_F(GuideChannels, ThatAreHiddenGoWithTheirProgrammesAndLeaveTheirNumberFree) {
    guide(R"(<channel id="a"><display-name>A</display-name><lcn>1</lcn></channel>
<channel id="b"><display-name>B</display-name></channel>)" +
          test::programme("a", "start='20260823000000'", "x") +
          test::programme("b", "start='20260823000000'", "y"));
    lineup("[[channel]]\nid = \"a\"\nhidden = true\n");
    const Guide& guide = load();
    EXPECT_THAT(listed(guide), ElementsAre("1 B"));
    EXPECT_THAT(schedule(guide), ElementsAre("0-1800 y"));
    EXPECT_EQ(loaded_.programmesSkipped, 0U);
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(GuideChannels, ThatOnlyTheLineupHasStandWithAWarning) {
    guide("<channel id='a'/>" + test::programme("later", "start='20260823000000'", "x"));
    lineup("[[channel]]\nid = \"later\"\n[[channel]]\nid = \"never\"\nname = \"Never\"\nnumber = \"9\"\n");
    const Guide& guide = load();
    EXPECT_THAT(listed(guide), ElementsAre("1 a", "2 later", "9 Never"));
    EXPECT_THAT(schedule(guide), ElementsAre("0-1800 x"));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("no guide has the channel \"later\""),
                                        HasSubstr("no guide has the channel \"never\"")));
}

TEST_F(GuideChannels, OfSeveralGuidesAreDescribedByTheFirst) {
    guide("<channel id='a'><display-name>First</display-name></channel>" +
          test::programme("a", "start='20260823000000' stop='20260823000100'", "one") +
          test::programme("b", "start='20260823000000' stop='20260823000100'", "three"));
    guide("<channel id='a'><display-name>Second</display-name><lcn>5</lcn></channel><channel id='b'/>" +
          test::programme("a", "start='20260823000100' stop='20260823000200'", "two"));
    const Guide& guide = load();
    EXPECT_THAT(listed(guide), ElementsAre("1 First", "2 b"));
    EXPECT_THAT(schedule(guide), ElementsAre("0-60 one", "60-120 two", "0-60 three"));
}

TEST_F(GuideChannels, WithoutAnIdAreCountedAndLeftOut) {
    guide("<channel><display-name>A</display-name></channel><channel id='b'/>");
    EXPECT_THAT(listed(load()), ElementsAre("1 b"));
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("guide0.xml: skipped 1 channels without an id")));
}

TEST_F(GuideChannels, MayBeNone) {
    guide("");
    EXPECT_TRUE(load().channels().empty());
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("guide0.xml: the guide has no channel and no programme")));
}

TEST_F(GuideChannels, OfAFileThatCannotBeUsedAreAnErrorOfThatFile) {
    guide("<channel id='a'/>");
    sources_.guides.push_back(folder_.write("bad.xml", "<tv>\n<channel"));
    try {
        load();
        FAIL() << "accepted";
    } catch (const GuideError& error) {
        EXPECT_EQ(error.file(), (folder_.path() / "bad.xml").string());
        EXPECT_EQ(error.line(), 2);
    }
}

}  // namespace
}  // namespace epgset
