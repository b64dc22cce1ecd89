// Finding channels and programmes in the guide cache.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const char* noChannelList = "======= No Cached channel or Channel Scan Failed!! ============";
constexpr const char* noDigitalChannel =
    "======= g_pAppTV->ExistChannel( pKey,  pChannel ) or pChannel->FlagDigital() Failed! ============";

/// The source types of all antennas, in the order in which they are walked.
const std::vector<int> allSourceTypes = {2, 4, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18, 19, 22, 23, 12, 13};

/// Keeps what channels are asked for.
class AskedTelevision : public ForwardingTelevision {
public:
    int ExistChannel(const TCChannelKey* pKey, TCChannel* pChannel, int reserved) override {
        channelsAsked.emplace_back(pKey->Major(), pKey->Minor());
        EXPECT_EQ(reserved, 0);
        EXPECT_EQ(pChannel->TvMode(), -1) << "a channel to fill is a new one";
        return ForwardingTelevision::ExistChannel(pKey, pChannel, reserved);
    }

    std::vector<std::pair<int, int>> channelsAsked;  ///< major and minor, in order
};

class Lookup : public AdapterTest {
protected:
    static std::string byNumber(int tvMode, int major, int minor) {
        return described(std::unique_ptr<TCChannel>(t_get_cached_channel_by_num(tvMode, major, minor)).get());
    }

    static std::string byId(const char* id) {
        return described(std::unique_ptr<TCChannel>(t_get_cached_channel_by_id(id)).get());
    }

    static void addAnalogue(TestGuide& guide, int major) {
        epgset::Channel channel = plainChannel();
        channel.id = "analogue" + std::to_string(major);
        channel.major = static_cast<std::int16_t>(major);
        channel.minor = 0;
        channel.digital = false;
        guide.add(channel);
    }
};

// Key lists -------------------------------------------------------------------------------------------

class KeyLookup : public Lookup {};

TEST_F(KeyLookup, ListsTheChannelsOfOneMode) {
    TestGuide guide;
    guide.channel(Air, 7, 2);
    guide.channel(Air, 3);
    guide.channel(Satellite, 5);
    guide.use();
    const AskedTelevision television;
    int count = -1;
    const ChannelKeyList list(t_get_cached_channel_key_list(Air, &count));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(list->Size(), 2);
    EXPECT_THAT(television.sourceTypesAsked, ElementsAre(2)) << "asked for by source type";
    ASSERT_NE(list->Data(), nullptr) << "positioned at its first entry";
    EXPECT_EQ(list->Data()->Major(), 3);
}

TEST_F(KeyLookup, ListsNothingForAModeWithoutChannels) {
    int count = -1;
    EXPECT_EQ(t_get_cached_channel_key_list(Air, &count), nullptr);
    EXPECT_EQ(count, 0);
}

TEST_F(KeyLookup, ListsNothingForAnUnknownMode) {
    TestGuide guide;
    guide.channel(Air, 7);
    guide.use();
    for (const int mode : {14, 21, -1, 1000}) {
        int count = -1;
        EXPECT_EQ(t_get_cached_channel_key_list(mode, &count), nullptr) << mode;
        EXPECT_EQ(count, 0) << mode;
    }
}

TEST_F(KeyLookup, AsksForEachModeByItsSourceType) {
    const AskedTelevision television;
    for (int row = 0; row < antennaRowCount; ++row) {
        int count = 0;
        const ChannelKeyList list(t_get_cached_channel_key_list(antennaTable[row].tvmode, &count));
    }
    EXPECT_EQ(television.sourceTypesAsked, allSourceTypes);
}

// By number -------------------------------------------------------------------------------------------

class ChannelByNumber : public Lookup {};

TEST_F(ChannelByNumber, IsTheChannelOfThatModeAndNumber) {
    TestGuide guide;
    guide.channel(Air, 7, 1, "One");
    guide.channel(Air, 7, 2, "Two");
    guide.channel(Air, 8, 2, "Other");
    guide.channel(Satellite, 7, 2, "Far");
    guide.use();
    EXPECT_EQ(byNumber(Air, 7, 2), "0:7-2 Two");
    EXPECT_EQ(byNumber(Satellite, 7, 2), "3:7-2 Far");
    EXPECT_EQ(byNumber(Air, 7, 3), "(none)");
    EXPECT_EQ(byNumber(Air, 9, 0), "(none)");
    EXPECT_EQ(byNumber(Satellite, 8, 2), "(none)");
    EXPECT_THAT(logged(), IsEmpty()) << "a number without a channel is no failure";
}

TEST_F(ChannelByNumber, WithoutAMinorIsTheFirstOfThatMajor) {
    TestGuide guide;
    guide.channel(Air, 7, 3, "Three");
    guide.channel(Air, 7, 2, "Two");
    guide.channel(Air, 9, 0, "Nine");
    guide.channel(Air, 9, 1, "Nine-one");
    guide.use();
    EXPECT_EQ(byNumber(Air, 7, 0), "0:7-2 Two");
    EXPECT_EQ(byNumber(Air, 9, 0), "0:9-0 Nine");
    EXPECT_EQ(byNumber(Air, 9, 1), "0:9-1 Nine-one");
}

TEST_F(ChannelByNumber, WithANegativeMinorMustMatchIt) {
    TestGuide guide;
    guide.channel(Air, 7, 2, "Two");
    guide.channel(Air, 7, -1, "Minus one");
    guide.use();
    EXPECT_EQ(byNumber(Air, 7, -1), "0:7--1 Minus one");
    EXPECT_EQ(byNumber(Air, 7, -2), "(none)");
}

TEST_F(ChannelByNumber, EndsTheWalkWhenItIsFound) {
    TestGuide guide;
    for (const int major : {1, 2, 3, 4})
        guide.channel(Air, major);
    guide.use();
    const AskedTelevision television;
    EXPECT_EQ(byNumber(Air, 2, 0), "0:2-0 Channel");
    EXPECT_THAT(television.channelsAsked, ElementsAre(Pair(1, 0), Pair(2, 0)));
    EXPECT_THAT(television.sourceTypesAsked, ElementsAre(2));
}

TEST_F(ChannelByNumber, ComplainsWhenTheModeHasNoChannels) {
    TestGuide guide;
    guide.channel(Satellite, 7);
    guide.use();
    EXPECT_EQ(byNumber(Air, 7, 0), "(none)");
    EXPECT_EQ(byNumber(14, 7, 0), "(none)");
    EXPECT_THAT(logged(),
                ElementsAre(LogLine(Logger::Error, noChannelList), LogLine(Logger::Error, noChannelList)));
}

TEST_F(ChannelByNumber, PassesOverAnalogueChannels) {
    TestGuide guide;
    addAnalogue(guide, 7);
    guide.channel(Air, 7, 2, "Digital");
    addAnalogue(guide, 8);
    guide.use();
    EXPECT_EQ(byNumber(Air, 7, 0), "0:7-2 Digital");
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Error, noDigitalChannel)));
    EXPECT_EQ(byNumber(Air, 8, 0), "(none)");
    EXPECT_THAT(adapterLog(), ElementsAre(noDigitalChannel, noDigitalChannel, noDigitalChannel));
}

TEST_F(ChannelByNumber, PassesOverChannelsThatVanished) {
    TestGuide guide;
    guide.channel(Air, 6);
    guide.channel(Air, 7);
    guide.use();
    AskedTelevision television;
    television.vanishedMajor = 6;
    EXPECT_EQ(byNumber(Air, 7, 0), "0:7-0 Channel");
    EXPECT_EQ(byNumber(Air, 6, 0), "(none)");
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Error, noDigitalChannel),
                                      LogLine(Logger::Error, noDigitalChannel)));
}

TEST_F(ChannelByNumber, WithoutMemoryIsNone) {
    TestGuide guide;
    guide.channel(Air, 7);
    guide.use();
    for (const int allocations : {0, 1}) {
        epgset::failChannelAllocationsAfter(allocations);
        const auto found = byNumber(Air, 8, 0);
        epgset::failChannelAllocationsAfter(-1);
        EXPECT_EQ(found, "(none)") << allocations;
    }
}

// By identifier ---------------------------------------------------------------------------------------

class ChannelById : public Lookup {};

TEST_F(ChannelById, IsFoundOnAnyAntenna) {
    TestGuide guide;
    guide.channel(Air, 7, 2, "Near");
    guide.channel(Satellite, 7, 2, "Far");
    guide.channel(Cs, 100, 0, "Last");
    guide.use();
    EXPECT_EQ(byId("cid-000-7-2"), "0:7-2 Near");
    EXPECT_EQ(byId("cid-003-7-2"), "3:7-2 Far");
    EXPECT_EQ(byId("cid-023-100"), "23:100-0 Last");
    EXPECT_THAT(logged(), IsEmpty()) << "antennas without channels are no failure";
}

TEST_F(ChannelById, MustMatchExactly) {
    TestGuide guide;
    guide.channel(Air, 7, 2);
    guide.use();
    for (const char* id :
         {"", "cid-000-7", "cid-000-7-2 ", "CID-000-7-2", "cid-0-7-2", "cid-000-07-2", "cid-000-7-22"})
        EXPECT_EQ(byId(id), "(none)") << id;
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ChannelById, IsTheFirstOfThoseThatShareIt) {
    TestGuide guide;
    guide.channel(Air, 7, 0, "Zero");
    guide.channel(Air, 7, -1, "Below");
    guide.use();
    EXPECT_EQ(byId("cid-000-7"), "0:7--1 Below");
}

TEST_F(ChannelById, IsLookedForOnAllAntennasInTurn) {
    const AskedTelevision television;
    EXPECT_EQ(byId("cid-000-7"), "(none)");
    EXPECT_EQ(television.sourceTypesAsked, allSourceTypes);
}

TEST_F(ChannelById, EndsTheWalkWhenItIsFound) {
    TestGuide guide;
    guide.channel(Cable, 1);
    guide.channel(Cable, 2);
    guide.channel(Satellite, 1);
    guide.use();
    const AskedTelevision television;
    EXPECT_EQ(byId("cid-001-1"), "1:1-0 Channel");
    EXPECT_THAT(television.sourceTypesAsked, ElementsAre(2, 4));
    EXPECT_THAT(television.channelsAsked, ElementsAre(Pair(1, 0)));
}

TEST_F(ChannelById, PassesOverAnalogueAndVanishedChannels) {
    TestGuide guide;
    addAnalogue(guide, 6);
    guide.channel(Air, 7);
    guide.channel(Air, 8);
    guide.use();
    AskedTelevision television;
    television.vanishedMajor = 7;
    EXPECT_EQ(byId("cid-000-6"), "(none)");
    EXPECT_EQ(byId("cid-000-7"), "(none)");
    EXPECT_EQ(byId("cid-000-8"), "0:8-0 Channel");
    EXPECT_EQ(logged(), std::vector<LogLine>(6, LogLine(Logger::Error, noDigitalChannel)));
}

TEST_F(ChannelById, WithoutMemoryIsNone) {
    TestGuide guide;
    guide.channel(Air, 7);
    guide.use();
    epgset::failChannelAllocationsAfter(0);
    const auto found = byId("cid-000-8");
    epgset::failChannelAllocationsAfter(-1);
    EXPECT_EQ(found, "(none)");
}

// Programmes ------------------------------------------------------------------------------------------

class ProgrammeLookup : public Lookup {
protected:
    static std::vector<int> eventsOf(const ProgramList& list) {
        std::vector<int> events;
        if (list == nullptr) return events;
        for (bool found = list->Seek(CCSortedList::First, 0); found;
             found = list->Seek(CCSortedList::Current, 1))
            events.push_back(list->Data()->EventId());
        return events;
    }

    static ProgramList between(TCChannel& channel, long long start, long long end) {
        return ProgramList(t_get_cached_program_list(&channel, start, end));
    }
};

TEST_F(ProgrammeLookup, NeedsAChannel) {
    EXPECT_EQ(t_get_cached_program_list(nullptr, 0, 0), nullptr);
}

TEST_F(ProgrammeLookup, ListsWhatIsOnBetweenTwoTimes) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7), 6, 10'000);
    guide.use();
    TCChannel channel = numbered(Air, 7, 0);
    EXPECT_THAT(eventsOf(between(channel, 11'800, 15'400)), ElementsAre(2, 3));
    EXPECT_THAT(eventsOf(between(channel, 15'400, 0)), ElementsAre(4, 5, 6)) << "no end";
    EXPECT_THAT(eventsOf(between(channel, 0, 11'800)), ElementsAre(1));
    EXPECT_THAT(eventsOf(between(channel, 0, 0)), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(eventsOf(between(channel, -1, -1)), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(eventsOf(between(channel, 11'800, 11'000)), ElementsAre(2, 3, 4, 5, 6)) << "four hours";
    EXPECT_EQ(between(channel, 30'000, 40'000), nullptr);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ProgrammeLookup, AsksForAStartAndADuration) {
    constexpr long long noEnd = 4'294'967'295;
    const struct {
        long long start, end, startAsked, duration;
    } examples[] = {
        {0, 0, 0, noEnd},
        {-5, -5, 0, noEnd},
        {100, 0, 100, noEnd - 100},
        {100, -1, 100, noEnd - 100},
        {0, 100, 0, 100},
        {-5, 100, 0, 100},
        {100, 250, 100, 150},
        {100, 100, 100, 0},
        {1000, 999, 1000, 14'400},
        {1000, 1, 1000, 14'400},
        {noEnd + 1, 0, noEnd + 1, 14'400},
        {0, 2 * noEnd, 0, 2 * noEnd},
    };
    TCChannel channel = numbered(Air, 7, 0);
    AskedTelevision television;
    for (const auto& [start, end, startAsked, duration] : examples) {
        television.programmesAsked.clear();
        between(channel, start, end);
        EXPECT_THAT(television.programmesAsked, ElementsAre(Pair(startAsked, duration)))
            << start << " " << end;
    }
}

TEST_F(ProgrammeLookup, IsAListOnlyWhenTheAnswerIsOne) {
    AskedTelevision television;
    TCChannel channel = numbered(Air, 7, 0);
    int answer = 0;
    television.programmeList = [&answer](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(
            std::vector<std::optional<TCProgram>>{middleware(plainProgramme())}));
        return answer;
    };
    for (const int refused : {0, 2, -1}) {
        answer = refused;
        EXPECT_EQ(between(channel, 0, 0), nullptr) << refused;
    }
    answer = 1;
    EXPECT_THAT(eventsOf(between(channel, 0, 0)), ElementsAre(1234));
}

class ProgrammeById : public Lookup {
protected:
    /// The programme's title and its channel.
    static std::string found(const char* id) {
        TCChannel* channel = nullptr;
        const std::unique_ptr<TCProgram> programme(t_get_cached_program_by_id(id, &channel));
        const std::unique_ptr<TCChannel> owned(programme == nullptr ? nullptr : channel);
        if (programme == nullptr) return "(none)";
        return taken(t_get_program_name(programme.get())).value_or("") + " on " + described(owned.get());
    }
};

TEST_F(ProgrammeById, IsFoundWithItsChannel) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7, 2, "Near"), 3);
    guide.programmes(guide.channel(Satellite, 7, 2, "Far"), 3);
    guide.programmes(guide.channel(Satellite, 8, 0, "Zero"), 3);
    guide.use();
    EXPECT_EQ(found("pid-000-7-2-3"), "Programme 3 on 0:7-2 Near");
    EXPECT_EQ(found("pid-003-7-2-1"), "Programme 1 on 3:7-2 Far");
    EXPECT_EQ(found("pid-003-8-0-2"), "Programme 2 on 3:8-0 Zero");
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ProgrammeById, MustMatchExactly) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7), 3);
    guide.use();
    for (const char* id :
         {"", "pid-000-7-1", "pid-000-7-0-4", "PID-000-7-0-1", "pid-000-7-0-1 ", "pid-000-7-0-01"})
        EXPECT_EQ(found(id), "(none)") << id;
}

TEST_F(ProgrammeById, WithoutInterestInTheChannelIsFoundToo) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7), 3);
    guide.use();
    const std::unique_ptr<TCProgram> programme(t_get_cached_program_by_id("pid-000-7-0-2", nullptr));
    ASSERT_NE(programme, nullptr);
    EXPECT_EQ(programme->EventId(), 2);
    EXPECT_EQ(t_get_cached_program_by_id("pid-000-7-0-9", nullptr), nullptr);
}

TEST_F(ProgrammeById, OutlivesTheGuideThatItCameFrom) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7), 3);
    guide.use();
    TCChannel* channel = nullptr;
    const std::unique_ptr<TCProgram> programme(t_get_cached_program_by_id("pid-000-7-0-2", &channel));
    const std::unique_ptr<TCChannel> owned(channel);
    TestGuide().use();
    ASSERT_NE(programme, nullptr);
    EXPECT_EQ(taken(t_get_program_name(programme.get())), "Programme 2");
}

TEST_F(ProgrammeById, AsksForAllProgrammesOfEachChannelOnTheWay) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.programmes(guide.channel(Air, 2), 1);
    guide.programmes(guide.channel(Cable, 3), 1);
    guide.programmes(guide.channel(Cable, 4), 1);
    guide.use();
    const AskedTelevision television;
    EXPECT_EQ(found("pid-001-3-0-1"), "Programme 1 on 1:3-0 Channel");
    EXPECT_THAT(television.sourceTypesAsked, ElementsAre(2, 4));
    EXPECT_THAT(television.channelsAsked, ElementsAre(Pair(1, 0), Pair(2, 0), Pair(3, 0)));
    EXPECT_EQ(television.programmesAsked,
              (std::vector<std::pair<long long, long long>>(3, {0, 4'294'967'295})));
}

TEST_F(ProgrammeById, IsLookedForOnAllAntennasInTurn) {
    const AskedTelevision television;
    EXPECT_EQ(found("pid-000-7-0-1"), "(none)");
    EXPECT_EQ(television.sourceTypesAsked, allSourceTypes);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ProgrammeById, PassesOverAnalogueAndVanishedChannels) {
    TestGuide guide;
    addAnalogue(guide, 6);
    guide.programmes(guide.channel(Air, 7), 1);
    guide.programmes(guide.channel(Air, 8), 1);
    guide.use();
    AskedTelevision television;
    television.vanishedMajor = 7;
    EXPECT_EQ(found("pid-000-7-0-1"), "(none)");
    EXPECT_EQ(found("pid-000-8-0-1"), "Programme 1 on 0:8-0 Channel");
    EXPECT_EQ(logged(), std::vector<LogLine>(4, LogLine(Logger::Error, noDigitalChannel)));
}

TEST_F(ProgrammeById, WithoutMemoryIsNone) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7), 1);
    guide.use();
    for (const int allocations : {0, 1}) {
        epgset::failChannelAllocationsAfter(allocations);
        const auto answer = found("pid-000-7-0-9");
        epgset::failChannelAllocationsAfter(-1);
        EXPECT_EQ(answer, "(none)") << allocations;
    }
}

}  // namespace
}  // namespace epgtest
