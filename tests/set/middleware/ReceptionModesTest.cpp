#include "set/middleware/ReceptionModes.h"

#include <gtest/gtest.h>

#include <string>

#include "host/TCChannel.h"

namespace epgset {
namespace {

TEST(ReceptionModes, AreTheEighteenInTheirOrder) {
    std::string table;
    for (const ReceptionMode& mode : receptionModes()) {
        table += std::to_string(mode.tvMode) + " " + std::to_string(mode.sourceType) + " " +
                 std::string(mode.name) + "\n";
    }
    EXPECT_EQ(table,
              "0 2 AIR\n1 4 CABLE\n2 6 POD\n3 7 SATELLITE\n4 8 FREESAT\n5 9 CANALDIGITALSAT\n6 10 TIVUSAT\n"
              "7 11 CD_TVV\n8 14 ASTRA_HD_PLUS\n9 15 TNTSAT\n10 16 DIGITAL_PLUS\n11 17 CYFRA_PLUS\n"
              "12 18 DSMART\n13 19 DIGITURK\n19 22 CI_OP_1\n20 23 CI_OP_2\n22 12 BS\n23 13 CS\n");
}

TEST(ReceptionModes, AreFoundByNumberSourceTypeAndName) {
    for (int position = 0; position < static_cast<int>(receptionModes().size()); ++position) {
        const ReceptionMode& mode = receptionModes()[static_cast<std::size_t>(position)];
        EXPECT_EQ(receptionModeByTvMode(mode.tvMode), position);
        EXPECT_EQ(receptionModeBySourceType(mode.sourceType), position);
        EXPECT_EQ(receptionModeByName(mode.name), position);
    }
}

TEST(ReceptionModes, HaveNoOthers) {
    for (const int tvMode : {-1, 14, 18, 21, 24})
        EXPECT_EQ(receptionModeByTvMode(tvMode), -1);
    for (const int sourceType : {-1, 0, 1, 3, 5, 20, 21, 24}) {
        EXPECT_EQ(receptionModeBySourceType(sourceType), -1);
    }
    for (const char* name : {"", "air", "AIR ", "SAT"})
        EXPECT_EQ(receptionModeByName(name), -1);
}

TEST(ReceptionModes, AreTheChannelTypesToo) {
    for (const ReceptionMode& mode : receptionModes()) {
        EXPECT_EQ(TCChannel::GetDigitalChType(mode.tvMode), mode.sourceType);
        EXPECT_EQ(TCChannel::GetTVMode(mode.sourceType), mode.tvMode);
    }
    EXPECT_EQ(TCChannel::GetDigitalChType(14), -1);
    EXPECT_EQ(TCChannel::GetTVMode(3), -1);
}

}  // namespace
}  // namespace epgset
