#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host/DomainException.h"
#include "set/database/DatabaseFaults.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/ForwardingTelevision.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using epgset::DatabaseFault;
using testing::ElementsAre;
using testing::IsEmpty;

const LogLine noChannelLine{
    Container::Logger::Error,
    "======= g_pAppTV->ExistChannel( pKey,  pChannel ) or pChannel->FlagDigital() Failed! ============"};

class Import : public TableTest {
protected:
    std::vector<Row> channelIds() const { return rows("SELECT ChannelId FROM myView ORDER BY rowid"); }
    std::vector<Row> titles() const { return rows("SELECT ProgramName FROM myView ORDER BY rowid"); }

    /// Fills the table, which must fail.
    void expectFailedFill() const {
        try {
            fill();
            ADD_FAILURE() << "the fill did not fail";
        } catch (const Container::DomainException& exception) {
            EXPECT_STREQ(exception.what(), "Failed to create DB entry");
        }
    }

    /// An analogue channel with programmes between two digital ones without any.
    static void useAnalogueChannelBetweenTwo() {
        TestGuide guide;
        guide.channel(Air, 1);
        epgset::Channel analogue;
        analogue.tvMode = Air;
        analogue.major = 2;
        analogue.digital = false;
        guide.programmes(guide.add(analogue), 3);
        guide.channel(Air, 3);
        guide.use();
    }
};

// What is created -------------------------------------------------------------------------------------

TEST_F(Import, DoesNothingForAnotherSource) {
    EXPECT_EQ(OpenPlugin::m_CreateDBTable("otherEPG", GuideTable::schemaTemplate, nullptr, database), -1);
    EXPECT_EQ(OpenPlugin::m_CreateDBTable("", GuideTable::schemaTemplate, nullptr, database), -1);
    EXPECT_EQ(OpenPlugin::m_CreateDBTable("MASTEREPG", GuideTable::schemaTemplate, nullptr, database), -1);
    EXPECT_THAT(rows("SELECT name FROM sqlite_master"), IsEmpty());
    EXPECT_THAT(OpenPlugin::epgTableList, IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(Import, MakesAnEmptyTableOfAnEmptyGuide) {
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT * FROM myView"), IsEmpty());
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, countLine(0)));
}

TEST_F(Import, LogsOneEndForEachAntennaWithChannels) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 2);
    guide.programmes(guide.channel(Air, 2), 3);
    guide.channel(Cs, 1);
    guide.use();
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, antennaLine, antennaLine, countLine(5)));
}

TEST_F(Import, RunsOneInsertForEachRow) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 3);
    guide.channel(Air, 2);
    guide.use();
    SqlTrace trace(*database);
    fill();
    const auto inserts = std::count_if(trace.statements.begin(), trace.statements.end(),
                                       [](const auto& sql) { return sql.starts_with("INSERT INTO myView"); });
    EXPECT_EQ(inserts, 4);
    EXPECT_THAT(trace.statements, testing::Contains(createTableSql).Times(1));
}

TEST_F(Import, FailsWhenTheTableIsThereAlready) {
    fill();
    expectFailedFill();
}

TEST_F(Import, FailsWithTheCreateStatement) {
    const DatabaseFault fault(DatabaseFault::Step, "CREATE TABLE");
    expectFailedFill();
}

TEST_F(Import, FailsWithAnInsertAndKeepsTheRowsBeforeIt) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 5);
    guide.use();
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView", 3);
    expectFailedFill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Programme 1"}, Row{"Programme 2"}));
    EXPECT_NE(sqlite3_get_autocommit(database->handle()), 0) << "no transaction stays open";
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine));
}

TEST_F(Import, FailsWithAnInsertThatDoesNotCompile) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 5);
    guide.use();
    const DatabaseFault fault(DatabaseFault::Compile, "INSERT INTO myView", 2);
    expectFailedFill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Programme 1"}));
}

TEST_F(Import, FailsWithAStubsInsertAndKeepsTheRowsBeforeIt) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.channel(Air, 2);
    guide.use();
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView", 2);
    expectFailedFill();
    EXPECT_THAT(channelIds(), ElementsAre(Row{"cid-000-1"}));
}

TEST_F(Import, WorksInsideATransactionLeftOpen) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 3);
    guide.use();
    rows("BEGIN");
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT count(*) FROM myView"), ElementsAre(Row{"3"}));
}

TEST_F(Import, KeepsTheRowsBeforeAFailureInsideATransactionLeftOpen) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 3);
    guide.use();
    rows("BEGIN");
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView", 3);
    expectFailedFill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Programme 1"}, Row{"Programme 2"}));
}

// Which channels --------------------------------------------------------------------------------------

TEST_F(Import, WalksTheAntennasInTheirOrder) {
    const std::vector<std::pair<int, std::string>> antennas = {
        {0, "AIR"},       {1, "CABLE"},         {2, "POD"},
        {3, "SATELLITE"}, {4, "FREESAT"},       {5, "CANALDIGITALSAT"},
        {6, "TIVUSAT"},   {7, "CD_TVV"},        {8, "ASTRA_HD_PLUS"},
        {9, "TNTSAT"},    {10, "DIGITAL_PLUS"}, {11, "CYFRA_PLUS"},
        {12, "DSMART"},   {13, "DIGITURK"},     {19, "CI_OP_1"},
        {20, "CI_OP_2"},  {22, "BS"},           {23, "CS"}};
    TestGuide guide;
    std::vector<Row> expected;
    for (const auto& [tvMode, name] : antennas) {
        guide.channel(tvMode, 1);
        expected.push_back({name});
    }
    guide.use();
    const ForwardingTelevision television;
    fill();
    EXPECT_EQ(rows("SELECT AntennaType FROM myView ORDER BY rowid"), expected);
    EXPECT_THAT(television.sourceTypesAsked,
                ElementsAre(2, 4, 6, 7, 8, 9, 10, 11, 14, 15, 16, 17, 18, 19, 22, 23, 12, 13));
}

TEST_F(Import, TakesTheChannelsOfAnAntennaInTheListsOrder) {
    TestGuide guide;
    guide.channel(Air, 7, 2);
    guide.channel(Air, 3);
    guide.channel(Air, 7, 1);
    guide.use();
    fill();
    EXPECT_THAT(channelIds(), ElementsAre(Row{"cid-000-3"}, Row{"cid-000-7-1"}, Row{"cid-000-7-2"}));
}

TEST_F(Import, LeavesAnalogueChannelsOut) {
    useAnalogueChannelBetweenTwo();
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(channelIds(), ElementsAre(Row{"cid-000-1"}, Row{"cid-000-3"}));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, noChannelLine, antennaLine, countLine(0)));
}

TEST_F(Import, LeavesVanishedChannelsOut) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 1), 2);
    guide.programmes(guide.channel(Air, 2), 3);
    guide.use();
    ForwardingTelevision television;
    television.vanishedMajor = 1;
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT ChannelId, count(*) FROM myView"), ElementsAre(Row{"cid-000-2", "3"}));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, noChannelLine, antennaLine, countLine(3)));
}

TEST_F(Import, AsksForAllProgrammesOfAChannel) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.use();
    const ForwardingTelevision television;
    fill();
    EXPECT_THAT(television.programmesAsked, ElementsAre(testing::Pair(0, 4'294'967'295)));
}

TEST_F(Import, EndsQuietlyWithoutMemoryForAChannel) {
    TestGuide guide;
    for (int major = 1; major <= 3; ++major)
        guide.channel(Air, major);
    guide.channel(Satellite, 4);
    guide.use();
    epgset::failChannelAllocationsAfter(2);
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(channelIds(), ElementsAre(Row{"cid-000-1"}, Row{"cid-000-2"}));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine));
}

TEST_F(Import, EndsQuietlyWithoutMemoryForAProgramme) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.programmes(guide.channel(Air, 2), 3);
    guide.channel(Satellite, 4);
    guide.use();
    const FailingAllocations fault(sizeof(ws_epg_program));
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(channelIds(), ElementsAre(Row{"cid-000-1"}));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine));
}

}  // namespace
}  // namespace epgtest
