// The service's words for what the middleware numbers: antennas, service types, kinds of entries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "tests/plugin/AdapterTest.h"

namespace epgtest {
namespace {

using testing::IsEmpty;

const AntennaRow antennas[] = {
    {0, 2, "AIR"},       {1, 4, "CABLE"},          {2, 6, "POD"},
    {3, 7, "SATELLITE"}, {4, 8, "FREESAT"},        {5, 9, "CANALDIGITALSAT"},
    {6, 10, "TIVUSAT"},  {7, 11, "CD_TVV"},        {8, 14, "ASTRA_HD_PLUS"},
    {9, 15, "TNTSAT"},   {10, 16, "DIGITAL_PLUS"}, {11, 17, "CYFRA_PLUS"},
    {12, 18, "DSMART"},  {13, 19, "DIGITURK"},     {19, 22, "CI_OP_1"},
    {20, 23, "CI_OP_2"}, {22, 12, "BS"},           {23, 13, "CS"},
};

class Antennas : public AdapterTest {};

TEST_F(Antennas, StandInTheOrderInWhichTheyAreWalked) {
    ASSERT_EQ(std::size(antennas), static_cast<std::size_t>(antennaRowCount));
    for (std::size_t i = 0; i < std::size(antennas); ++i) {
        EXPECT_EQ(antennaTable[i].tvmode, antennas[i].tvmode);
        EXPECT_EQ(antennaTable[i].sourceType, antennas[i].sourceType);
        EXPECT_STREQ(antennaTable[i].name, antennas[i].name);
    }
}

TEST_F(Antennas, AreFoundByModeAndByName) {
    for (const auto& row : antennas) {
        EXPECT_EQ(taken(t_get_name_from_tvmode(row.tvmode)), row.name);
        EXPECT_EQ(t_get_srctype_from_tvmode(row.tvmode), row.sourceType);
        EXPECT_EQ(t_get_tvmode_from_name(row.name), row.tvmode);
    }
}

TEST_F(Antennas, AreFoundByNameInAnyCase) {
    EXPECT_EQ(t_get_tvmode_from_name("satellite"), Satellite);
    for (const auto& row : antennas) {
        std::string name = row.name;
        for (std::size_t i = 0; i < name.size(); i += 2)
            name[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[i])));
        EXPECT_EQ(t_get_tvmode_from_name(name.c_str()), row.tvmode) << name;
    }
}

TEST_F(Antennas, OfAnUnknownModeAreNone) {
    for (const int mode : {14, 15, 16, 17, 18, 21, 24, -1, 1000}) {
        EXPECT_EQ(taken(t_get_name_from_tvmode(mode)), std::nullopt) << mode;
        EXPECT_EQ(t_get_srctype_from_tvmode(mode), -1) << mode;
    }
}

TEST_F(Antennas, OfAnUnknownNameAreNone) {
    EXPECT_EQ(t_get_tvmode_from_name(nullptr), -1);
    for (const char* name : {"", "AI", "AIRX", " AIR", "AIR ", "0", "SATELLIT\xC3\x89"})
        EXPECT_EQ(t_get_tvmode_from_name(name), -1) << name;
}

TEST_F(Antennas, AreNamedWithoutAWarningWhileTheModesAreAsKnown) {
    taken(t_get_name_from_tvmode(Air));
    taken(t_get_name_from_tvmode(14));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(Antennas, WithoutMemoryHaveNoName) {
    expectNoneWithoutMemory([] { return taken(t_get_name_from_tvmode(Air)); });
}

class ServiceType : public AdapterTest {
protected:
    static std::optional<std::string> nameOf(std::uint8_t type) {
        auto channel = plainChannel();
        channel.serviceType = type;
        TCChannel middlewareChannel = middleware(channel);
        return taken(t_get_channel_service_type(&middlewareChannel));
    }
};

TEST_F(ServiceType, HasAName) {
    const char* const names[] = {"ALL", "TV", "RADIO", "OTHER", "FREE", "SCRAMBLE", "SEARCHED", "ANALOG"};
    for (std::uint8_t type = 0; type < std::size(names); ++type)
        EXPECT_EQ(nameOf(type), names[type]);
    EXPECT_THAT(logged(), IsEmpty()) << "the types are as known";
}

TEST_F(ServiceType, IsUnknownBeyondTheTable) {
    EXPECT_EQ(nameOf(8), "UNKNOWN");
    EXPECT_EQ(nameOf(255), "UNKNOWN");
}

TEST_F(ServiceType, OfNoChannelIsNone) {
    EXPECT_EQ(taken(t_get_channel_service_type(nullptr)), std::nullopt);
}

TEST(ReserveType, HasAStatusWord) {
    const char* const words[] = {"VIEW", "RECORD", "RECORD", "RECORDING", "NONE", "NONE", "RECORD", "RECORD",
                                 "NONE", "RECORD", "RECORD", "NONE",      "NONE", "NONE", "NONE",   "NONE"};
    for (int type = 0; type < static_cast<int>(std::size(words)); ++type)
        EXPECT_EQ(taken(t_get_schedule_status_str(static_cast<CReminder::RESERVE_TYPE>(type))), words[type])
            << type;
}

}  // namespace
}  // namespace epgtest
