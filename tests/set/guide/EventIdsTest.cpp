#include "set/guide/EventIds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "set/guide/GuideError.h"
#include "tests/set/guide/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::ElementsAre;
using Starts = std::vector<std::uint32_t>;

constexpr std::uint32_t kNoon = 1787400000;   // a whole minute
constexpr std::uint32_t kRound = 65535 * 60;  // after which the minute's remainder is the same
constexpr std::uint32_t kDay = 24 * 3600;

std::uint16_t byMinute(std::uint32_t start) {
    return static_cast<std::uint16_t>(start / 60 % 65535 + 1);
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(EventIds, AreTheMinuteOfTheStart) {
    EventIds ids;
    EXPECT_THAT(ids.assign("a", Starts{kNoon, kNoon + 1800}),
                ElementsAre(byMinute(kNoon), byMinute(kNoon) + 30));
    EXPECT_THAT(ids.assign("b", Starts{0, 65534 * 60}), ElementsAre(1, 65535));
}

TEST(EventIds, DifferWithinAChannelWhenMinutesCollide) {
    EventIds ids;
    const auto given = ids.assign("a", Starts{kNoon, kNoon + 1, kNoon + 2, kNoon + 60, kNoon + kRound});
    EXPECT_EQ(std::set(given.begin(), given.end()).size(), given.size());
    EXPECT_EQ(given[0], byMinute(kNoon));
    EXPECT_EQ(given[3], byMinute(kNoon + 60));
}

TEST(EventIds, StayWhenColliderComesBeforeThem) {
    EventIds ids;
    EXPECT_THAT(ids.assign("a", Starts{kNoon + kRound}), ElementsAre(byMinute(kNoon)));
    ids.startGuide();
    const auto both = ids.assign("a", Starts{kNoon, kNoon + kRound});
    EXPECT_EQ(both[1], byMinute(kNoon));
    EXPECT_NE(both[0], both[1]);
    ids.startGuide();
    EXPECT_THAT(ids.assign("a", Starts{kNoon}), ElementsAre(both[0]));
}

TEST(EventIds, StayAcrossRestarts) {
    const test::TemporaryFolder folder;
    std::vector<std::uint16_t> both;
    {
        EventIds ids(folder.path());
        ids.assign("a \\ \n channel x", Starts{kNoon + kRound});
        both = ids.assign("a \\ \n channel x", Starts{kNoon, kNoon + kRound});
        ids.save(kNoon);
    }
    EventIds ids(folder.path());
    EXPECT_THAT(ids.assign("a \\ \n channel x", Starts{kNoon}), ElementsAre(both[0]));
    EXPECT_THAT(ids.assign("another", Starts{kNoon}), ElementsAre(byMinute(kNoon)));
}

TEST(EventIds, AreNotWrittenWhenNothingChanged) {
    const test::TemporaryFolder folder;
    const auto file = folder.path() / "event-ids";
    {
        EventIds ids(folder.path());
        ids.save(kNoon);
        EXPECT_FALSE(std::filesystem::exists(file));
        ids.assign("a", Starts{kNoon});
        EXPECT_FALSE(std::filesystem::exists(file)) << "before save()";
        ids.save(kNoon);
        EXPECT_TRUE(std::filesystem::exists(file));
        EXPECT_FALSE(std::filesystem::exists(folder.path() / "event-ids.new"));
    }
    std::filesystem::remove(file);
    std::filesystem::create_directory(folder.path() / "empty");
    {
        EventIds ids(folder.path());
        ids.assign("a", Starts{kNoon});
        ids.save(kNoon);
        std::filesystem::remove(file);
        ids.startGuide();
        ids.assign("a", Starts{kNoon});
        ids.save(kNoon + 100 * kDay);
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST(EventIds, ForgetWhatIsLongGone) {
    const test::TemporaryFolder folder;
    EventIds ids(folder.path());
    ids.assign("a", Starts{kNoon, kNoon + 1});
    ids.assign("b", Starts{kNoon});
    ids.save(kNoon);
    ids.startGuide();
    ids.assign("a", Starts{kNoon + 1});
    ids.save(kNoon + 30 * kDay);
    EXPECT_NE(contentOf(folder.path() / "event-ids").find("channel b"), std::string::npos)
        << "30 days are kept";
    ids.save(kNoon + 30 * kDay + 1);
    const std::string content = contentOf(folder.path() / "event-ids");
    EXPECT_EQ(content.find("channel b"), std::string::npos);
    EXPECT_EQ(content.find(std::to_string(kNoon) + " "), std::string::npos);
    EXPECT_NE(content.find(std::to_string(kNoon + 1) + " "), std::string::npos) << "it is in the guide";
}

TEST(EventIds, PassOverDamagedLines) {
    const test::TemporaryFolder folder;
    const std::string start = std::to_string(kNoon);
    folder.write("event-ids", "event-ids 1\n12 13\nchannel a\n" + start + " 77\nnonsense\n" + start + "\n" +
                                  start + " 78\n" + start +
                                  " 0\n99999999999 5\n1 65536\n2 77\n3 9 \n\xff\n1800 8");
    EventIds ids(folder.path());
    EXPECT_THAT(ids.assign("a", Starts{1, 2, 3, 1800, kNoon}), ElementsAre(1, 2, 3, 8, 77));
}

TEST(EventIds, ReportAFileThatCannotBeReadOrWritten) {
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "event-ids");
    EXPECT_THROW(EventIds(folder.path()), GuideError);
    EventIds ids(folder.path() / "missing");
    ids.assign("a", Starts{kNoon});
    EXPECT_THROW(ids.save(kNoon), GuideError);
}

TEST(EventIds, ServeAFullChannel) {
    Starts starts(EventIds::kIdsOfChannel);
    std::iota(starts.begin(), starts.end(), kNoon);  // a second each
    EventIds ids;
    const auto given = ids.assign("a", starts);
    EXPECT_EQ(std::set(given.begin(), given.end()).size(), starts.size());
    EXPECT_FALSE(std::set(given.begin(), given.end()).contains(0));

    // One programme is new: the one that is gone gives its id up, the others keep theirs.
    const std::uint16_t freed = given.front();
    starts.erase(starts.begin());
    starts.push_back(kNoon + 10 * kDay);
    ids.startGuide();
    const auto next = ids.assign("a", starts);
    EXPECT_EQ(next.back(), freed);
    EXPECT_TRUE(std::equal(given.begin() + 1, given.end(), next.begin()));
}

TEST(EventIds, RefuseWhatIsNotASchedule) {
    EventIds ids;
    EXPECT_THROW(ids.assign("a", Starts{2, 1}), std::invalid_argument);
    EXPECT_THROW(ids.assign("a", Starts{1, 1}), std::invalid_argument);
    Starts tooMany(EventIds::kIdsOfChannel + 1);
    std::iota(tooMany.begin(), tooMany.end(), 0U);
    EXPECT_THROW(ids.assign("a", tooMany), std::invalid_argument);
}

}  // namespace
}  // namespace epgset
