#include "set/demo/SampleGuide.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "set/guide/EventIds.h"
#include "set/guide/GuideLoader.h"
#include "set/guide/XmltvReader.h"
#include "set/log/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::int64_t start = 1787443200;  // 2026-08-23T00:00:00Z

std::string written(const SampleGuideSize& size) {
    std::ostringstream out;
    writeSampleGuide(size, out);
    return out.str();
}

SampleGuideSize sized(int channels, int days, std::uint64_t programmes, std::uint64_t seed = 1) {
    return {channels, days, programmes, seed, start};
}

/// The guide as a set reads it.
std::shared_ptr<const Guide> loaded(const SampleGuideSize& size) {
    const test::TemporaryFolder folder;
    GuideSources sources;
    sources.guides = {folder.write("guide.xml", written(size))};
    sources.maxProgrammes = 0;
    sources.now = start;
    EventIds ids;
    const LoadedGuide result = loadGuide(sources, ids);
    EXPECT_EQ(0U, result.programmesSkipped);
    return result.guide;
}

TEST(SampleGuide, IsTheSameForTheSameSeedAndAnotherForAnother) {
    EXPECT_EQ(written(sized(5, 2, 320)), written(sized(5, 2, 320)));
    EXPECT_NE(written(sized(5, 2, 320)), written(sized(5, 2, 320, 2)));
}

TEST(SampleGuide, SpreadsTheProgrammesOverTheChannels) {
    const auto guide = loaded(sized(7, 1, 100));
    ASSERT_EQ(7U, guide->channels().size());
    EXPECT_EQ(100U, guide->programmes().size());
    for (const Channel& channel : guide->channels())
        EXPECT_EQ(channel.major <= 2 ? 15U : 14U, channel.programmeCount) << channel.major;
}

TEST(SampleGuide, FillsItsDaysWithoutGaps) {
    for (const std::uint64_t programmes : {3U, 97U, 3U * 1440U, 3U * 2880U}) {
        const auto guide = loaded(sized(3, 2, programmes));
        ASSERT_EQ(programmes, guide->programmes().size());
        for (const Channel& channel : guide->channels()) {
            std::int64_t end = start;
            for (const Programme& programme : guide->programmesOf(channel)) {
                EXPECT_EQ(end, programme.start);
                EXPECT_LT(programme.start, programme.stop);
                end = programme.stop;
            }
            EXPECT_EQ(start + 2 * 86400, end);
        }
    }
}

TEST(SampleGuide, HasProgrammesOfUnlikeLengthsThatStartAtAnyFiveMinutes) {
    const auto guide = loaded(sized(10, 7, 2240));
    std::set<std::uint32_t> lengths;
    std::set<std::uint32_t> minutes;
    for (const Programme& programme : guide->programmes()) {
        lengths.insert(programme.stop - programme.start);
        minutes.insert(programme.start / 60 % 60);
        EXPECT_EQ(0U, programme.start % 300);
    }
    EXPECT_GT(lengths.size(), 10U);
    EXPECT_EQ(12U, minutes.size());
}

TEST(SampleGuide, HasTextsAsLongAsRealOnes) {
    const auto guide = loaded(sized(40, 7, 8960));
    std::size_t titles = 0;
    std::size_t synopses = 0;
    std::size_t without = 0;
    std::size_t episodes = 0;
    std::size_t notAscii = 0;
    for (const Programme& programme : guide->programmes()) {
        EXPECT_FALSE(programme.title.empty());
        titles += programme.title.size();
        synopses += programme.synopsis.text().size();
        without += programme.synopsis.empty() ? 1 : 0;
        episodes += programme.series.empty() ? 0 : 1;
        notAscii +=
            std::ranges::any_of(programme.title, [](char c) { return static_cast<unsigned char>(c) > 127; })
                ? 1
                : 0;
    }
    const std::size_t count = guide->programmes().size();
    EXPECT_GT(titles / count, 12U);
    EXPECT_LT(titles / count, 60U);
    EXPECT_GT(synopses / count, 300U);
    EXPECT_LT(synopses / count, 600U);
    EXPECT_GT(without, count / 40);
    EXPECT_LT(without, count / 10);
    EXPECT_GT(episodes, count / 5);
    EXPECT_GT(notAscii, count / 10);
}

TEST(SampleGuide, GivesEachOfItsChannelsANumberAndANameOfItsOwn) {
    const auto guide = loaded(sized(1000, 1, 1000));
    std::set<std::string> names;
    std::int16_t number = 0;
    for (const Channel& channel : guide->channels()) {
        names.insert(channel.name);
        EXPECT_EQ(++number, channel.major);
    }
    EXPECT_EQ(1000U, names.size());
}

TEST(SampleGuide, EscapesWhatXmlTakesForMarkup) {
    const std::string text = written(sized(400, 1, 12800));
    EXPECT_THAT(text, HasSubstr("Kids &amp; Co"));
    EXPECT_THAT(text, Not(HasSubstr("& ")));
}

TEST(SampleGuide, KeepsAChannelAsItIsWhateverTheNumberOfChannels) {
    const std::string few = written(sized(2, 1, 20));
    const std::string many = written(sized(4, 1, 40));
    const auto ofSecond = [](const std::string& text) {
        const std::string begin = "channel=\"channel-0002.example\"";
        return text.substr(text.find(begin), text.rfind(begin) - text.find(begin));
    };
    EXPECT_EQ(ofSecond(few), ofSecond(many));
}

}  // namespace
}  // namespace epgset
