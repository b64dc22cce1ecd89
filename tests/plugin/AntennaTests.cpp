// The list of antennas that have channels.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/plugin/ServiceTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Antennas : public AdapterTest {
protected:
    ServiceAnswer ask(const char* method = "GET") {
        log.clear();
        const TestDocument document;
        const int status = t_antennas(document, method);
        return {status, document.json(), std::nullopt};
    }

    static ServiceAnswer listed(const std::string& members) { return {200, members, std::nullopt}; }
};

/// A television that lists one made-up number of keys whatever it is asked for.
class OddTelevision : public ForwardingTelevision {
public:
    OddTelevision(int entries, int stated) : entries_(entries), stated_(stated) {}

    int GetChannelKeyList(TCObjectSortedList* list, const TCChannel* pattern, int* count) override {
        sourceTypesAsked.push_back(pattern->Type());
        const auto size = static_cast<std::size_t>(entries_);
        list->Fill(
            std::make_shared<FixedEntries<TCChannelKey>>(std::vector<std::optional<TCChannelKey>>(size)));
        *count = stated_;
        return 1;
    }

private:
    int entries_;
    int stated_;
};

TEST_F(Antennas, AreListedInTheirOwnOrder) {
    TestGuide guide;
    guide.channel(Cs, 1);
    guide.channel(Satellite, 7, 2);
    guide.channel(Satellite, 8);
    guide.channel(Air, 7);
    guide.channel(Bs, 3);
    guide.use();
    EXPECT_EQ(ask(), listed(R"({"items":["AIR","SATELLITE","BS","CS"],"items_total":4})"));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "t_antennas"),
                                      LogLine(Logger::Trace, "Total number of antennas: 4\n")));
}

TEST_F(Antennas, AreTwoOnASetWithTerrestrialAndSatelliteChannels) {
    TestGuide guide;
    guide.channel(Air, 7);
    guide.channel(Satellite, 7);
    guide.use();
    EXPECT_EQ(ask(), listed(R"({"items":["AIR","SATELLITE"],"items_total":2})"));
}

TEST_F(Antennas, HaveNoTotalWithoutChannels) {
    EXPECT_EQ(ask(), listed(R"({"items":[]})"));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "t_antennas")));
}

TEST_F(Antennas, CountAnalogueChannels) {
    epgset::Channel analogue = plainChannel();
    analogue.digital = false;
    analogue.tvMode = Cable;
    TestGuide guide;
    guide.add(analogue);
    guide.use();
    EXPECT_EQ(ask(), listed(R"({"items":["CABLE"],"items_total":1})"));
}

TEST_F(Antennas, AreAskedForOneByOne) {
    const ForwardingTelevision television;
    ask();
    EXPECT_THAT(television.sourceTypesAsked,
                ElementsAre(2, 4, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18, 19, 22, 23, 12, 13));
}

TEST_F(Antennas, NeedANumberAndAnEntry) {
    {
        const OddTelevision countless(3, 0);
        EXPECT_EQ(ask(), listed(R"({"items":[]})"));
    }
    {
        const OddTelevision entryless(0, 3);
        EXPECT_EQ(ask(), listed(R"({"items":[]})"));
    }
}

TEST_F(Antennas, AreReadOnly) {
    TestGuide guide;
    guide.channel(Air, 7);
    guide.use();
    for (const char* method : {"POST", "DELETE", "get", ""}) {
        EXPECT_EQ(ask(method), (ServiceAnswer{404, "{}", std::nullopt}));
        EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "t_antennas"),
                                          LogLine(Logger::Warning, "t_channels does not support " +
                                                                       std::string(method) + " method")));
    }
    EXPECT_EQ(ask(nullptr).status, 404);
    EXPECT_EQ(logged().back(), LogLine(Logger::Warning, "t_channels does not support (null) method"));
}

TEST_F(Antennas, AreNotListedWithoutAnObject) {
    const ForwardingTelevision television;
    const TestDocument document;
    epgset::failDocumentObjectsAfter(0);
    EXPECT_EQ(t_antennas(document, "GET"), 404);
    epgset::failDocumentObjectsAfter(-1);
    EXPECT_EQ(document.json(), "{}");
    EXPECT_THAT(television.sourceTypesAsked, IsEmpty());
}

}  // namespace
}  // namespace epgtest
