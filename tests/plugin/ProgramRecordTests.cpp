// A programme's texts, and the record that the import is given.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/FreedBlock.h"

namespace epgtest {
namespace {

using testing::UnorderedElementsAre;

class ProgrammeText : public AdapterTest {
protected:
    static std::optional<std::string> title(const std::string& text) {
        auto programme = plainProgramme();
        programme.title = text;
        TCProgram middlewareProgramme = middleware(programme);
        return taken(t_get_program_name(&middlewareProgramme));
    }
    static std::optional<std::string> synopsis(const std::string& text) {
        auto programme = plainProgramme();
        programme.synopsis = epgset::Synopsis(text);
        TCProgram middlewareProgramme = middleware(programme);
        return taken(t_get_program_sysnopsis(&middlewareProgramme));
    }
};

TEST_F(ProgrammeText, IsUtf8) {
    EXPECT_EQ(title("\xC3\x89t\xC3\xA9 \xF0\x9F\x98\x80"), "\xC3\x89t\xC3\xA9 \xF0\x9F\x98\x80");
    EXPECT_EQ(synopsis("\xE5\xA4\xA9\xE6\xB0\x97"), "\xE5\xA4\xA9\xE6\xB0\x97");
}

TEST_F(ProgrammeText, IsItsFirstLine) {
    EXPECT_EQ(title("One\nTwo"), "One");
    EXPECT_EQ(synopsis("One\r\nTwo"), "One");
}

TEST_F(ProgrammeText, ThatIsEmptyIsNone) {
    EXPECT_EQ(title(""), std::nullopt);
    EXPECT_EQ(synopsis(""), std::nullopt);
}

TEST_F(ProgrammeText, OfAnyLengthIsWhole) {
    const std::string longText(20'000, 'x');
    EXPECT_EQ(synopsis(longText), longText);
}

/// A programme whose texts are one byte long: half a unit.
class HalfAUnit : public TCProgram {
public:
    int TitleLength() const override { return 1; }
    int GetTitle(void* buffer, int bytes) const override { return oneByte(buffer, bytes); }
    int ExtendedTextLength() const override { return 1; }
    int GetExtendedText(void* buffer, int bytes) const override { return oneByte(buffer, bytes); }

private:
    static int oneByte(void* buffer, int bytes) {
        if (bytes < 1) return 0;
        *static_cast<char*>(buffer) = 'x';
        return 1;
    }
};

TEST_F(ProgrammeText, OfHalfAUnitIsNone) {
    HalfAUnit programme;
    EXPECT_EQ(taken(t_get_program_name(&programme)), std::nullopt);
    EXPECT_EQ(taken(t_get_program_sysnopsis(&programme)), std::nullopt);
}

TEST_F(ProgrammeText, SaysWhetherChannelOrProgrammeIsScrambled) {
    for (const bool channelIs : {false, true}) {
        for (const bool programmeIs : {false, true}) {
            auto channel = plainChannel();
            channel.scrambled = channelIs;
            auto programme = plainProgramme();
            programme.scrambled = programmeIs;
            TCChannel middlewareChannel = middleware(channel);
            TCProgram middlewareProgramme = middleware(programme);
            EXPECT_EQ(taken(t_get_program_scrambled(&middlewareChannel, &middlewareProgramme)),
                      channelIs || programmeIs ? "true" : "false");
        }
    }
}

TEST_F(ProgrammeText, HasNoCategoryAndNoAttributes) {
    TCProgram programme = middleware(plainProgramme());
    EXPECT_EQ(t_get_program_category(&programme), nullptr);
    EXPECT_EQ(t_get_program_attributes(&programme), nullptr);
}

/// The one text of a series array; nothing for no array.
std::optional<std::string> takenSeries(char** series) {
    const HeapBlock array(series);
    if (series == nullptr) return std::nullopt;
    return taken(series[0]).value_or("(an array without a text)");
}

/// A programme that answers for its series what a test says.
class OfSeries : public TCProgram {
public:
    OfSeries(int answer, std::vector<unsigned char> title) : answer_(answer), title_(std::move(title)) {}

    int GetSeriesInfo(TTSeriesItem& item, int reserved) const override {
        EXPECT_EQ(reserved, 0);
        item.title = title_;
        return answer_;
    }

private:
    int answer_;
    std::vector<unsigned char> title_;
};

TEST(ProgrammeSeries, IsTheFirstLineOfItsTitle) {
    OfSeries programme(1, {0, 'O', 0, 'n', 0, 'e', 0, '\n', 0, 'T'});
    EXPECT_EQ(takenSeries(t_get_program_series(&programme)), "One");
}

TEST(ProgrammeSeries, IsNoneUnlessTheAnswerIsOne) {
    for (const int answer : {0, 2, -1}) {
        OfSeries programme(answer, {0, 'O'});
        EXPECT_EQ(takenSeries(t_get_program_series(&programme)), std::nullopt) << answer;
    }
}

TEST(ProgrammeSeries, MayLackATitle) {
    OfSeries programme(1, {});
    EXPECT_EQ(takenSeries(t_get_program_series(&programme)), "(an array without a text)");
}

class ProgrammeRecord : public AdapterTest {
protected:
    ProgramRecord record() const {
        TCChannel middlewareChannel = middleware(channel);
        TCProgram middlewareProgramme = middleware(programme);
        return ProgramRecord(t_create_program(&middlewareChannel, &middlewareProgramme));
    }

    epgset::Channel channel = plainChannel();
    epgset::Programme programme = plainProgramme();
};

TEST_F(ProgrammeRecord, HoldsAllThatIsKnown) {
    programme.start = 1'367'835'072;
    programme.stop = 1'367'838'672;
    programme.series = "Series of shows";
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->program_id), "pid-000-7-2-1234");
    EXPECT_EQ(shown(made->name), "Show");
    EXPECT_EQ(shown(made->source_path), "/ws/epg2/channels/cid-000-7-2");
    EXPECT_EQ(shown(made->channel_name), "News 24");
    EXPECT_EQ(shown(made->channel_num), "7-2");
    EXPECT_EQ(shown(made->antenna), "AIR");
    EXPECT_EQ(shown(made->start), "2013-05-06T10:11:12+00:00");
    EXPECT_EQ(shown(made->end), "2013-05-06T11:11:12+00:00");
    EXPECT_EQ(shown(made->scrambled), "false");
    EXPECT_EQ(made->category, nullptr);
    EXPECT_EQ(made->attributes, nullptr);
    ASSERT_NE(made->series, nullptr);
    EXPECT_EQ(shown(made->series[0]), "Series of shows");
    EXPECT_EQ(made->start_time, 1'367'835'072);
    EXPECT_EQ(made->sort_key, 7002);
}

TEST_F(ProgrammeRecord, HoldsNothingForWhatIsMissing) {
    channel.name = "";
    channel.tvMode = 14;
    programme.title = "";
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->channel_name, nullptr);
    EXPECT_EQ(made->antenna, nullptr);
    EXPECT_EQ(made->name, nullptr);
    EXPECT_EQ(made->series, nullptr);
    EXPECT_EQ(shown(made->program_id), "pid-014-7-2-1234");
}

TEST_F(ProgrammeRecord, TakesTimesAsUnsigned) {
    programme.start = 4'000'000'000;
    programme.stop = 4'294'967'295;
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->start_time, 4'000'000'000);
    EXPECT_EQ(shown(made->start), "2096-10-02T07:06:40+00:00");
    EXPECT_EQ(shown(made->end), "2106-02-07T06:28:15+00:00");
}

TEST_F(ProgrammeRecord, ShowsTimesInTheSetsZone) {
    clock.setZone(540, true);
    const auto made = record();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(shown(made->start), "1970-01-01T10:00:00+09:00");
    EXPECT_EQ(shown(made->end), "1970-01-01T11:00:00+09:00");
    EXPECT_EQ(made->start_time, 0) << "no zone in the number";
}

TEST_F(ProgrammeRecord, IsSortedByMajorThenByMinorWithoutItsSign) {
    const struct {
        std::int16_t major;
        std::int16_t minor;
        int key;
    } examples[] = {{7, 0, 7000},   {7, 2, 7002},      {7, -3, 7003}, {32767, 32767, 32799767},
                    {-5, 2, -4998}, {0, -32768, 32768}};
    for (const auto& [major, minor, key] : examples) {
        channel.major = major;
        channel.minor = minor;
        const auto made = record();
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->sort_key, key);
    }
}

TEST_F(ProgrammeRecord, SaysThatItIsScrambledWhenOnlyTheProgrammeIs) {
    programme.scrambled = true;
    EXPECT_EQ(shown(record()->scrambled), "true");
}

TEST_F(ProgrammeRecord, NeedsAChannelAndAProgramme) {
    TCChannel middlewareChannel = middleware(channel);
    TCProgram middlewareProgramme = middleware(programme);
    EXPECT_EQ(t_create_program(nullptr, &middlewareProgramme), nullptr);
    EXPECT_EQ(t_create_program(&middlewareChannel, nullptr), nullptr);
    EXPECT_EQ(t_create_program(nullptr, nullptr), nullptr);
}

/// Which texts a record lacks, the two that it never has aside.
std::vector<std::string> missingIn(const ws_epg_program& record) {
    const std::pair<const char*, const void*> parts[] = {
        {"program_id", record.program_id},
        {"name", record.name},
        {"source_path", record.source_path},
        {"channel_name", record.channel_name},
        {"channel_num", record.channel_num},
        {"antenna", record.antenna},
        {"start", record.start},
        {"end", record.end},
        {"scrambled", record.scrambled},
        {"series", record.series == nullptr ? nullptr : record.series[0]},
    };
    std::vector<std::string> missing;
    for (const auto& [name, part] : parts)
        if (part == nullptr) missing.emplace_back(name);
    return missing;
}

TEST_F(ProgrammeRecord, LacksOnlyTheFieldForWhichThereIsNoMemory) {
    programme.series = "Series";
    int recordsFailed = 0;
    std::set<std::string> everMissing;
    withEachAllocationFailing([&](int n, const FailingAllocation& fault) {
        const auto made = record();
        if (made == nullptr) {
            ++recordsFailed;
            return;
        }
        const auto missing = missingIn(*made);
        EXPECT_EQ(missing.size(), fault.happened() ? 1U : 0U) << "allocation " << n;
        everMissing.insert(missing.begin(), missing.end());
    });
    EXPECT_EQ(recordsFailed, 1) << "only without memory for the record itself is there none";
    EXPECT_THAT(everMissing,
                UnorderedElementsAre("program_id", "name", "source_path", "channel_name", "channel_num",
                                     "antenna", "start", "end", "scrambled", "series"));
}

TEST_F(ProgrammeRecord, IsDeletedWithAllThatItHolds) {
    programme.series = "Series";
    const std::function<const void*(const ws_epg_program&)> parts[] = {
        [](const auto& made) { return made.program_id; },  [](const auto& made) { return made.name; },
        [](const auto& made) { return made.source_path; }, [](const auto& made) { return made.channel_name; },
        [](const auto& made) { return made.channel_num; }, [](const auto& made) { return made.antenna; },
        [](const auto& made) { return made.start; },       [](const auto& made) { return made.end; },
        [](const auto& made) { return made.scrambled; },   [](const auto& made) { return made.series[0]; },
        [](const auto& made) { return made.series; },      [](const auto& made) { return &made; },
    };
    for (const auto& part : parts) {
        auto made = record();
        ASSERT_NE(made, nullptr);
        const FreedBlock freed(part(*made));
        made.reset();
        EXPECT_EQ(freed.times(), 1) << "part " << &part - parts;
        t_delete_program(nullptr);
        EXPECT_EQ(freed.times(), 1) << "nothing is deleted for no record";
    }
}

}  // namespace
}  // namespace epgtest
