// When maintenance is asked for after a failure of the plug-in.
#include "set/epghost/FillRepair.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace epgset {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FillRepairTest : public ::testing::Test {
protected:
    void failAfter(seconds time) { repair_.failed(FillRepair::Clock::time_point() + time); }

    std::vector<seconds> asked_;

private:
    FillRepair repair_{[this](seconds delay) { asked_.push_back(delay); }, seconds(601)};
};

TEST_F(FillRepairTest, AsksForNothingWithoutAFailure) {
    EXPECT_THAT(asked_, IsEmpty());
}

TEST_F(FillRepairTest, AsksSoonAndWhenATableThatIsFreshNowCanBeFilledAgain) {
    failAfter(seconds(1000));
    EXPECT_THAT(asked_, ElementsAre(seconds(60), seconds(661)));
}

TEST_F(FillRepairTest, AsksOnceForManyFailuresOfAMinute) {
    for (const int time : {1000, 1001, 1030, 1059})
        failAfter(seconds(time));
    EXPECT_EQ(2U, asked_.size());
    failAfter(seconds(1060));
    EXPECT_EQ(4U, asked_.size());
}

}  // namespace
}  // namespace epgset
