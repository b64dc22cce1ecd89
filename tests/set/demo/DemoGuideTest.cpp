#include "set/demo/DemoGuide.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "set/middleware/ReceptionModes.h"
#include "set/text/Utf16.h"
#include "set/text/Utf8.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using ::testing::UnorderedElementsAre;

constexpr std::int64_t today = 1784073600;  // 2026-07-15T00:00:00Z
constexpr std::int64_t now = today + 20 * 3600 + 17 * 60;
constexpr std::int64_t day = 86400;

std::shared_ptr<const Guide> guide() {
    static const auto made = demoGuide(now);
    return made;
}

/// Everything about a programme in one line, its channel by name.
std::string lineOf(const Guide& of, const Programme& programme) {
    std::string line = of.channels()[programme.channel].id;
    for (const std::uint32_t number : {programme.start, programme.stop, std::uint32_t{programme.eventId},
                                       std::uint32_t{programme.scrambled}}) {
        line += "|" + std::to_string(number);
    }
    const std::string synopsis = programme.synopsis.text();
    for (const std::string_view text : {programme.title, std::string_view(synopsis), programme.series}) {
        line += "|" + std::string(text);
    }
    return line;
}

std::vector<std::string> linesFrom(const Guide& of, std::int64_t from, std::int64_t to) {
    std::vector<std::string> lines;
    for (const Programme& programme : of.programmes()) {
        if (programme.start >= from && programme.start < to) lines.push_back(lineOf(of, programme));
    }
    return lines;
}

/// Whether the text has a UTF-16 unit of that range.
bool hasUnit(std::string_view text, unsigned first, unsigned last) {
    std::vector<unsigned char> bytes(2 * utf16Length(text));
    utf16FromUtf8(text, std::endian::big, bytes);
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        const unsigned unit = static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]);
        if (unit >= first && unit <= last) return true;
    }
    return false;
}

bool anyTitle(bool (*holds)(std::string_view)) {
    return std::ranges::any_of(guide()->programmes(),
                               [holds](const auto& programme) { return holds(programme.title); });
}

TEST(DemoGuide, HasChannelsOnThreeAntennas) {
    EXPECT_GE(guide()->channels().size(), 24U);
    std::set<std::string_view> antennas;
    for (const Channel& channel : guide()->channels()) {
        const auto mode = static_cast<std::size_t>(receptionModeByTvMode(channel.tvMode));
        antennas.insert(receptionModes()[mode].name);
    }
    EXPECT_THAT(antennas, UnorderedElementsAre("AIR", "CABLE", "SATELLITE"));
}

TEST(DemoGuide, HasChannelsOfEveryKindAClientMeets) {
    const auto count = [](bool (*is)(const Channel&)) {
        return std::ranges::count_if(guide()->channels(), is);
    };
    EXPECT_EQ(count([](const Channel& channel) { return channel.minor > 0; }), 2);
    EXPECT_EQ(count([](const Channel& channel) { return channel.serviceType == 2; }), 1);
    EXPECT_EQ(count([](const Channel& channel) { return channel.scrambled; }), 1);
    EXPECT_EQ(count([](const Channel& channel) { return channel.programmeCount == 0; }), 1);
    EXPECT_EQ(count([](const Channel& channel) { return !channel.digital; }), 0);
}

TEST(DemoGuide, NamesEachChannelAndNumberOnce) {
    std::set<std::string> names;
    std::set<std::string> ids;
    for (const Channel& channel : guide()->channels()) {
        EXPECT_FALSE(channel.name.empty());
        names.insert(channel.name);
        ids.insert(channel.id);
        EXPECT_EQ(guide()->find(channel.tvMode, channel.major, channel.minor), &channel);
    }
    EXPECT_EQ(names.size(), guide()->channels().size());
    EXPECT_EQ(ids.size(), guide()->channels().size());
}

TEST(DemoGuide, IsAsBigAsARealOne) {
    EXPECT_GE(guide()->programmes().size(), 5000U);
    EXPECT_LE(guide()->programmes().size(), 8000U);
}

TEST(DemoGuide, RunsWithoutGapsFromYesterdayToTheSixthDayFromNow) {
    for (const Channel& channel : guide()->channels()) {
        const auto programmes = guide()->programmesOf(channel);
        if (programmes.empty()) continue;
        EXPECT_EQ(programmes.front().start, today - day);
        EXPECT_EQ(programmes.back().stop, today + 7 * day);
        for (std::size_t next = 1; next < programmes.size(); ++next) {
            ASSERT_EQ(programmes[next].start, programmes[next - 1].stop) << channel.name;
        }
    }
}

TEST(DemoGuide, VariesItsDurations) {
    std::set<std::uint32_t> minutes;
    for (const Programme& programme : guide()->programmes())
        minutes.insert((programme.stop - programme.start) / 60);
    EXPECT_GE(minutes.size(), 6U);
    EXPECT_EQ(*minutes.begin(), 15U);
    EXPECT_EQ(*minutes.rbegin(), 180U);
}

TEST(DemoGuide, NeverShowsTheSameTwiceInARow) {
    for (const Channel& channel : guide()->channels()) {
        const auto programmes = guide()->programmesOf(channel);
        for (std::size_t next = 1; next < programmes.size(); ++next) {
            EXPECT_NE(programmes[next].title, programmes[next - 1].title)
                << channel.name << " at " << (programmes[next].start - today) / 60;
        }
    }
}

TEST(DemoGuide, ShowsNothingLongOnTwoChannelsAtOnce) {
    std::set<std::pair<std::uint32_t, std::string_view>> shown;
    for (const Programme& programme : guide()->programmes()) {
        if (programme.stop - programme.start < 5400 || !programme.series.empty()) continue;
        EXPECT_TRUE(shown.emplace(programme.start, programme.title).second)
            << programme.title << " at " << (programme.start - today) / 60;
    }
}

TEST(DemoGuide, IsTheSameAllDay) {
    const auto early = demoGuide(today);
    const auto late = demoGuide(today + day - 1);
    const auto always = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(linesFrom(*early, 0, always), linesFrom(*late, 0, always));
    EXPECT_NE(linesFrom(*early, 0, always), linesFrom(*demoGuide(today + day), 0, always));
}

TEST(DemoGuide, KeepsWhatTwoDaysGuidesHaveInCommon) {
    const auto tomorrow = demoGuide(now + day);
    const auto lines = linesFrom(*guide(), today, today + 7 * day);
    EXPECT_EQ(lines, linesFrom(*tomorrow, today, today + 7 * day));
    EXPECT_GT(lines.size(), 4000U);
}

TEST(DemoGuide, NumbersEventsByTheMinuteOfTheirStart) {
    for (const Channel& channel : guide()->channels()) {
        std::set<std::uint16_t> ids;
        for (const Programme& programme : guide()->programmesOf(channel)) {
            EXPECT_EQ(programme.eventId, programme.start / 60 % 65535 + 1);
            EXPECT_TRUE(ids.insert(programme.eventId).second);
        }
    }
}

TEST(DemoGuide, ScramblesTheProgrammesOfTheScrambledChannel) {
    for (const Programme& programme : guide()->programmes()) {
        EXPECT_EQ(programme.scrambled, guide()->channels()[programme.channel].scrambled);
    }
}

TEST(DemoGuide, HasTitlesInManyScripts) {
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x00C0, 0x017F); })) << "accents";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x0370, 0x03FF); })) << "Greek";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x0400, 0x04FF); }))
        << "Cyrillic";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x0590, 0x05FF); })) << "Hebrew";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x0600, 0x06FF); })) << "Arabic";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x0900, 0x097F); }))
        << "Devanagari";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x3040, 0x30FF); })) << "kana";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0x4E00, 0x9FFF); })) << "Han";
    EXPECT_TRUE(anyTitle([](std::string_view title) { return hasUnit(title, 0xAC00, 0xD7A3); })) << "Hangul";
}

TEST(DemoGuide, HasTextsThatNeedCare) {
    EXPECT_TRUE(anyTitle([](std::string_view title) { return title.find('\'') != title.npos; }));
    EXPECT_TRUE(anyTitle([](std::string_view title) { return title.find('&') != title.npos; }));
    EXPECT_TRUE(std::ranges::any_of(guide()->programmes(), [](const Programme& programme) {
        return hasUnit(programme.synopsis.text(), 0xD800, 0xDBFF);  // a pair of surrogates
    }));
}

TEST(DemoGuide, HasATitleAndASynopsisForEverything) {
    for (const Programme& programme : guide()->programmes()) {
        ASSERT_FALSE(programme.title.empty());
        ASSERT_FALSE(programme.synopsis.empty());
        ASSERT_TRUE(isCleanUtf8(programme.title, Utf8Repertoire::Xml));
        ASSERT_TRUE(isCleanUtf8(programme.synopsis.text(), Utf8Repertoire::Xml));
    }
}

TEST(DemoGuide, HasSeriesThatComeAtTheSameTimeEachDay) {
    std::set<std::string> episodes;
    std::size_t series = 0;
    for (const Programme& programme : guide()->programmes()) {
        if (programme.series.empty()) continue;
        ++series;
        EXPECT_EQ(programme.series, programme.title);
        episodes.insert(guide()->channels()[programme.channel].id + "|" +
                        std::to_string(programme.start % day) + "|" + std::string(programme.series));
    }
    EXPECT_GT(series, 0U);
    EXPECT_EQ(series, episodes.size() * 8);
}

TEST(DemoGuide, StaysWithin32BitTimeWhateverTheClock) {
    for (const std::int64_t clock :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{4294967295},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        const auto made = demoGuide(clock);
        EXPECT_EQ(made->programmes().size(), guide()->programmes().size());
        for (const Programme& programme : made->programmes()) {
            ASSERT_LT(programme.start, programme.stop) << clock;
        }
    }
    EXPECT_EQ(demoGuide(-1)->programmes().front().start, 0U);
}

TEST(DemoGuide, IsBoundedAsAnyOther) {
    GuideSources sources;
    sources.now = now;
    sources.maxProgrammes = 100;
    const LoadedGuide bounded = loadDemoGuide(sources);
    EXPECT_EQ(bounded.guide->programmes().size(), 100U);
    EXPECT_EQ(bounded.guide->programmesDropped(), guide()->programmes().size() - 100);
    for (const Programme& programme : bounded.guide->programmes())
        EXPECT_GT(programme.stop, now) << "what has ended goes first";
}

TEST(DemoGuide, FollowsALineup) {
    const test::TemporaryFolder folder;
    GuideSources sources;
    sources.now = now;
    sources.lineup = folder.write("lineup.toml", R"([[channel]]
id = "AIR-1-0.demo"
name = "First"
number = "21"
source = "http://127.0.0.1/one"
[[channel]]
id = "CABLE-1-0.demo"
hidden = true
)");
    const auto shaped = loadDemoGuide(sources).guide;
    EXPECT_EQ(shaped->channels().size(), guide()->channels().size() - 1);
    EXPECT_EQ(shaped->find(0, 1, 0), nullptr);
    const Channel* const first = shaped->find(0, 21, 0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->name, "First");
    EXPECT_EQ(first->source, "http://127.0.0.1/one");
    EXPECT_EQ(first->programmeCount, guide()->find(0, 1, 0)->programmeCount);
    EXPECT_EQ(shaped->find(1, 1, 0), nullptr);
    EXPECT_NE(shaped->find(1, 2, 0), nullptr);
}

}  // namespace
}  // namespace epgset
