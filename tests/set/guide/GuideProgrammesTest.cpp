#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/set/guide/GuideLoaderFixture.h"

namespace epgset {
namespace {

using test::programme;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A UNIX time as XMLTV writes it.
std::string xmltvTime(std::int64_t time) {
    const auto seconds = static_cast<std::time_t>(time);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[16];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S", &parts);
    return text;
}

class GuideProgrammes : public test::GuideLoaderTest {
protected:
    /// One channel "a" with these programmes.
    const Guide& loadChannel(const std::string& programmes) {
        guide("<channel id='a'/>" + programmes);
        return load();
    }
};

TEST_F(GuideProgrammes, StandInOrderOfTheirStartOverlapsKept) {
    EXPECT_THAT(
        schedule(loadChannel(programme("a", "start='20260823010000' stop='20260823020000'", "late") +
                             programme("a", "start='20260823000000' stop='20260823013000'", "early"))),
        ElementsAre("0-5400 early", "3600-7200 late"));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(GuideProgrammes, WithoutAStopEndWithTheNextStartOrAfterHalfAnHour) {
    EXPECT_THAT(schedule(loadChannel(programme("a", "start='20260823000000'", "one") +
                                     programme("a", "start='20260823020000' stop='soon'", "two"))),
                ElementsAre("0-7200 one", "7200-9000 two"));
}

TEST_F(GuideProgrammes, DoNotEndBehindTheLastTime) {
    const Guide& guide = loadChannel(programme("a", "start='21060207062800'", "last"));
    EXPECT_EQ(guide.programmes()[0].stop, 4294967295U);
}

TEST_F(GuideProgrammes, ThatCannotBeUsedAreCountedInOneWarning) {
    EXPECT_THAT(schedule(loadChannel(
                    programme("b", "start='20260823000000'", "unknown") +
                    programme("", "start='20260823000000'", "unknown") + programme("a", "", "no start") +
                    programme("a", "start='x'", "no start") + programme("a", "start='20261399'", "no start") +
                    programme("a", "start='20260823000001' stop='20260823000000'", "reversed") +
                    programme("a", "start='20260823000000' stop='20260823000000'", "empty"))),
                ElementsAre("0-0 empty"));
    EXPECT_EQ(loaded_.programmesSkipped, 6U);
    EXPECT_THAT(warnings(),
                ElementsAre(HasSubstr("guide0.xml: skipped 6 programmes: 2 of unknown channels, 3 without a "
                                      "readable start, 1 that end before they start")));
}

TEST_F(GuideProgrammes, AreCountedAGuide) {
    guide("<channel id='a'/>" + programme("b", "start='20260823000000'", "unknown"));
    guide(programme("a", "start='x'", "no start"));
    load();
    EXPECT_THAT(warnings(),
                ElementsAre(HasSubstr("guide0.xml: skipped 1 programmes: 1 of unknown channels"),
                            HasSubstr("guide1.xml: skipped 1 programmes: 0 of unknown channels, 1 ")));
}

TEST_F(GuideProgrammes, WithOneStartAreTheLastOfTheFile) {
    EXPECT_THAT(
        schedule(loadChannel(programme("a", "start='20260823000000' stop='20260823010000'", "one") +
                             programme("a", "start='20260823100000' stop='20260823110000'", "later") +
                             programme("a", "start='20260823020000 +0200' stop='20260823000500'", "two"))),
        ElementsAre("0-300 two", "36000-39600 later"));
    EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(GuideProgrammes, OfAClumpAreOne) {
    const std::string time = "start='20260823000000' ";
    const Guide& guide = loadChannel(
        programme("a", time + "clumpidx='1/3'", "B", "<desc>second</desc><episode-num>1</episode-num>") +
        programme("a", time + "clumpidx='0/3' stop='20260823010000'", "A", "<desc>first</desc>") +
        programme("a", time + "clumpidx='2/3'", "C"));
    EXPECT_THAT(schedule(guide), ElementsAre("0-3600 A / B / C"));
    EXPECT_EQ(guide.programmes()[0].synopsis.text(), "first");
    EXPECT_EQ(guide.programmes()[0].series, "A / B / C");
}

TEST_F(GuideProgrammes, OfAClumpThatIsRepeatedCountOnce) {
    const std::string time = "start='20260823000000' stop='20260823010000' ";
    EXPECT_THAT(schedule(loadChannel(programme("a", time + "clumpidx='0/2'", "old A") +
                                     programme("a", time + "clumpidx='1/2'", "old B") +
                                     programme("a", time + "clumpidx='0/2'", "A") +
                                     programme("a", time + "clumpidx='1/2'", "B"))),
                ElementsAre("0-3600 A / B"));
}

TEST_F(GuideProgrammes, ThatFormNoClumpAreTheLastOfTheFile) {
    const std::string time = "start='20260823000000' stop='20260823010000' ";
    EXPECT_THAT(
        schedule(loadChannel(programme("a", time + "clumpidx='0/2'", "A") + programme("a", time, "whole"))),
        ElementsAre("0-3600 whole"));
    EXPECT_THAT(schedule(loadChannel(programme("a", time + "clumpidx='0/1'", "A") +
                                     programme("a", time + "clumpidx='0/1'", "B"))),
                ElementsAre("0-3600 B"));
    EXPECT_THAT(schedule(loadChannel(programme("a", time + "clumpidx='2/2'", "A") +
                                     programme("a", time + "clumpidx='x'", "C"))),
                ElementsAre("0-3600 C"));
}

TEST_F(GuideProgrammes, AreInASeriesByEpisodeNumberOrRepetitionAlone) {
    const Guide& guide = loadChannel(programme("a", "start='20260823000000'", "News") +
                                     programme("a", "start='20260823010000'", "News") +
                                     programme("a", "start='20260823020000'", "Show", "<previously-shown/>") +
                                     programme("a", "start='20260823030000'", "Film", "<episode-num/>"));
    EXPECT_EQ(guide.programmes()[0].series, "");
    EXPECT_EQ(guide.programmes()[1].series, "");
    EXPECT_EQ(guide.programmes()[2].series, "Show");
    EXPECT_EQ(guide.programmes()[3].series, "Film");
}

TEST_F(GuideProgrammes, MayHaveNoTitle) {
    const Guide& guide = loadChannel("<programme channel='a' start='20260823000000'/>");
    EXPECT_EQ(guide.programmes()[0].title.size(), 0U);
}

TEST_F(GuideProgrammes, KeepTheirEventIdsWhenOthersComeAndGo) {
    loadChannel(programme("a", "start='20260823000030'", "x"));
    const auto id = loaded_.guide->programmes()[0].eventId;
    EXPECT_EQ(id, (kNow + 30) / 60 % 65535 + 1);
    loadChannel(programme("a", "start='20260823000000'", "w") +
                programme("a", "start='20260823000059'", "y"));
    const auto programmes = loaded_.guide->programmes();
    ASSERT_EQ(programmes.size(), 3U);
    EXPECT_EQ(programmes[1].eventId, id);
    EXPECT_EQ(std::set({programmes[0].eventId, programmes[1].eventId, programmes[2].eventId}).size(), 3U);
}

TEST_F(GuideProgrammes, LeaveTheEventIdsAloneWhenTheGuideIsBad) {
    sources_.guides = {folder_.write("bad.xml", "<tv>" + programme("a", "start='20260823000000'", "x"))};
    EXPECT_THROW(load(), GuideError);
    const std::vector<std::uint32_t> collider{static_cast<std::uint32_t>(kNow) + 1};
    EXPECT_EQ(ids_.assign("a", collider)[0], kNow / 60 % 65535 + 1);
}

TEST_F(GuideProgrammes, BeyondTheBoundAreDroppedEndedFirstThenTheLast) {
    sources_.maxProgrammes = 2;
    EXPECT_THAT(schedule(loadChannel(programme("a", "start='20260822220000' stop='20260822230000'", "ended") +
                                     programme("a", "start='20260822233000' stop='20260823003000'", "now") +
                                     programme("a", "start='20260823010000' stop='20260823020000'", "next") +
                                     programme("a", "start='20260825010000' stop='20260825020000'", "far"))),
                ElementsAre("-1800-1800 now", "3600-7200 next"));
    EXPECT_EQ(loaded_.guide->programmesDropped(), 2U);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("2 programmes are left out")));
    EXPECT_EQ(loaded_.guide->programmes()[0].title, "now");
}

TEST_F(GuideProgrammes, WithTextsThatAreTooLongKeepTheirBeginning) {
    const std::string giant(2'000'000, 't');
    const Guide& guide = loadChannel(
        programme("a", "start='20260823000000'", giant, "<desc>" + giant + "</desc><episode-num/>") +
        programme("a", "start='20260823010000'", std::string(4095, 'x') + "é") +
        programme("a", "start='20260823020000'", std::string(4096, 'y'),
                  "<desc>" + std::string(65536, 'y') + "</desc>"));
    EXPECT_EQ(guide.programmes()[0].title, std::string(4096, 't'));
    EXPECT_EQ(guide.programmes()[0].series, std::string(4096, 't'));
    EXPECT_EQ(guide.programmes()[0].synopsis.text(), std::string(65536, 't'));
    EXPECT_EQ(guide.programmes()[1].title, std::string(4095, 'x'));
    EXPECT_EQ(guide.programmes()[2].title.size(), 4096U);
    EXPECT_EQ(guide.programmes()[2].synopsis.text().size(), 65536U);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("guide0.xml: cut 3 texts that are too long")));
}

TEST_F(GuideProgrammes, ThatAreJoinedHaveATitleWithinTheLimitToo) {
    const std::string time = "start='20260823000000' stop='20260823010000' ";
    const Guide& guide = loadChannel(programme("a", time + "clumpidx='0/2'", std::string(4000, 'p')) +
                                     programme("a", time + "clumpidx='1/2'", std::string(4000, 'q')));
    EXPECT_EQ(guide.programmes()[0].title, std::string(4000, 'p') + " / " + std::string(93, 'q'));
}

TEST_F(GuideProgrammes, AreCutWithoutABoundToo) {
    sources_.maxProgrammes = 0;
    loadChannel(programme("a", "start='20260823000000'", std::string(2'000'000, 't')));
    EXPECT_EQ(loaded_.guide->programmes()[0].title.size(), 4096U);
}

TEST_F(GuideProgrammes, BeyondTheTableAreToldOfAndKeptWithoutABound) {
    sources_.maxProgrammes = 0;
    std::string programmes;
    for (int second = 0; second < 5000; ++second) {
        programmes += programme("a",
                                "start='" +
                                    std::to_string(20260823000000 + second / 3600 * 10000 +
                                                   second / 60 % 60 * 100 + second % 60) +
                                    "'",
                                std::string(4096, 't'));
    }
    EXPECT_EQ(loadChannel(programmes).programmes().size(), 5000U);
    EXPECT_EQ(loaded_.guide->programmesDropped(), 0U);
    EXPECT_THAT(warnings(), ElementsAre(HasSubstr("larger than the plug-in's table")));
}

TEST_F(GuideProgrammes, KeepTheirTextsHoweverManyOthersTheBoundLeavesOut) {
    constexpr int channels = 10;
    constexpr int programmesEach = 100;
    constexpr std::size_t bound = 60;
    constexpr std::int64_t hour = 3600;
    std::string text;
    for (int channel = 0; channel < channels; ++channel)
        text += "<channel id=\"c" + std::to_string(channel) + "\"/>";
    // Half of them have ended; each third states no stop; the order is none.
    std::vector<std::pair<int, int>> order;
    for (int channel = 0; channel < channels; ++channel) {
        for (int number = 0; number < programmesEach; ++number)
            order.emplace_back(channel, number);
    }
    std::mt19937 random(1);
    std::ranges::shuffle(order, random);
    for (const auto& [channel, number] : order) {
        const std::int64_t start = kNow + (number - programmesEach / 2) * hour;
        const std::string stop = number % 3 == 0 ? "" : " stop=\"" + xmltvTime(start + hour) + "\"";
        const std::string name = std::to_string(channel) + "/" + std::to_string(start);
        text += "<programme start=\"" + xmltvTime(start) + "\"" + stop + " channel=\"c" +
                std::to_string(channel) + "\"><title>" + name + "</title><desc>of " + name +
                "</desc></programme>";
    }
    guide(text);
    sources_.maxProgrammes = bound;
    const Guide& loaded = load();
    ASSERT_EQ(loaded.programmes().size(), bound);
    EXPECT_EQ(loaded.programmesDropped(), channels * programmesEach - bound);
    for (const Programme& programme : loaded.programmes()) {
        const std::string name =
            loaded.channels()[programme.channel].id.substr(1) + "/" + std::to_string(programme.start);
        EXPECT_EQ(programme.title, name);
        EXPECT_EQ(programme.synopsis.text(), "of " + name);
        EXPECT_EQ(programme.stop, programme.start + hour);
        EXPECT_GE(programme.start, kNow);
        EXPECT_LT(programme.start, kNow + std::int64_t{bound / channels} * hour);
    }
}

}  // namespace
}  // namespace epgset
