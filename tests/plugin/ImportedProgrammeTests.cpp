#include <gmock/gmock.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
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

class ImportedProgrammes : public TableTest {
protected:
    std::vector<Row> titles() const { return rows("SELECT ProgramName FROM myView ORDER BY rowid"); }

    /// A guide of one channel with one programme that starts then and lasts half an hour.
    static void useProgrammeAt(std::uint32_t start) {
        TestGuide guide;
        guide.programme(guide.channel(Air, 7), start, start + 1'800, "Programme", 1);
        guide.use();
    }
};

std::optional<TCProgram> programmeNumber(int eventId) {
    auto programme = std::make_shared<epgset::Programme>();
    programme->start = static_cast<std::uint32_t>(eventId) * 1'000;
    programme->stop = programme->start + 1'000;
    programme->eventId = static_cast<std::uint16_t>(eventId);
    programme->title = "From a list";
    return TCProgram(programme);
}

TEST_F(ImportedProgrammes, WritesEachProgrammeOfAChannel) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 7, 2), 1'000);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT count(*), count(DISTINCT EventId), min(ProgramStartTime) FROM myView"),
                ElementsAre(Row{"1000", "1000", "1000000"}));
}

TEST_F(ImportedProgrammes, StopsAtAnEmptyEntryOfAChannelsList) {
    TestGuide guide;
    guide.channel(Air, 1);
    guide.use();
    ForwardingTelevision television;
    television.programmeList = [](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(std::vector<std::optional<TCProgram>>{
            programmeNumber(1), programmeNumber(2), {}, programmeNumber(4)}));
        return 1;
    };
    fill();
    EXPECT_THAT(rows("SELECT EventId FROM myView ORDER BY rowid"),
                ElementsAre(Row{"pid-000-1-0-1"}, Row{"pid-000-1-0-2"}));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, antennaLine, countLine(2)));
}

TEST_F(ImportedProgrammes, WritesAProgrammeThatStartsSevenDaysFromNowButNoneLater) {
    constexpr std::uint32_t horizon = startTime + 604'800;
    TestGuide guide;
    const auto channel = guide.channel(Air, 7);
    guide.programme(channel, horizon, horizon + 60, "Last", 1);
    guide.programme(channel, horizon + 1, horizon + 60, "Too late", 2);
    guide.use();
    fill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Last"}));
}

TEST_F(ImportedProgrammes, CountsProgrammesBeyondTheSevenDays) {
    constexpr std::uint32_t horizon = startTime + 604'800;
    TestGuide guide;
    const auto channel = guide.channel(Air, 7);
    guide.programme(channel, startTime, startTime + 60, "Now", 1);
    guide.programme(channel, horizon + 1, horizon + 60, "Too late", 2);
    guide.use();
    fill();
    EXPECT_THAT(logged().back(), countLine(2));
}

TEST_F(ImportedProgrammes, WritesNoStubForAChannelWhoseProgrammesAreAllTooLate) {
    useProgrammeAt(startTime + 604'801);
    fill();
    EXPECT_THAT(titles(), IsEmpty());
}

TEST_F(ImportedProgrammes, WritesProgrammesThatHaveEnded) {
    useProgrammeAt(startTime - 8 * 86'400);
    fill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Programme"}));
}

TEST_F(ImportedProgrammes, CountsTheSevenDaysFromTheMiddlewaresLocalSeconds) {
    clock.setZone(540, false);
    constexpr std::uint32_t horizon = startTime + 9 * 3600 + 604'800;
    TestGuide guide;
    const auto channel = guide.channel(Air, 7);
    guide.programme(channel, horizon, horizon + 60, "Last", 1);
    guide.programme(channel, horizon + 1, horizon + 60, "Too late", 2);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT ProgramName, ProgramStartTime FROM myView"),
                ElementsAre(Row{"Last", std::to_string(horizon)}));
}

TEST_F(ImportedProgrammes, StoresTimesAnHourLaterUnderDaylightSaving) {
    clock.setZone(540, true);
    TestGuide guide;
    guide.programme(guide.channel(Air, 7), 0, 1'800, "Programme", 1);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT ProgramStartTime, ProgramEndTime FROM myView"),
                ElementsAre(Row{"3600", "5400"}));
}

TEST_F(ImportedProgrammes, ComparesTheShiftedTimesUnderDaylightSaving) {
    clock.setZone(0, true);
    constexpr std::uint32_t horizon = startTime + 604'800;  // both sides of the comparison gain an hour
    TestGuide guide;
    const auto channel = guide.channel(Air, 7);
    guide.programme(channel, horizon, horizon + 60, "Last", 1);
    guide.programme(channel, horizon + 1, horizon + 60, "Too late", 2);
    guide.use();
    fill();
    EXPECT_THAT(titles(), ElementsAre(Row{"Last"}));
}

TEST_F(ImportedProgrammes, TakesTimesBeyond2038ForNegativeOnes) {
    TestGuide guide;
    guide.programme(guide.channel(Air, 7), 4'000'000'000U, 4'000'001'800U, "Programme", 1);
    guide.use();
    fill();
    EXPECT_THAT(rows("SELECT ProgramStartTime, ProgramEndTime FROM myView"),
                ElementsAre(Row{"-294967296", "-294965496"}));
}

// Channels without programmes -------------------------------------------------------------------------

const Row stubRow = {"cid-000-7-2",
                     "News 24",
                     "/ws/epg2/channels/cid-000-7-2",
                     "7-2",
                     "AIR",
                     "false",
                     "TV",
                     "",
                     "No information",
                     "",
                     "",
                     "",
                     "",
                     ""};

class Stub : public TableTest {
protected:
    Stub() {
        TestGuide guide;
        guide.channel(Air, 7, 2, "News 24");
        guide.use();
    }

    ForwardingTelevision television;
};

TEST_F(Stub, IsTheOneRowOfAChannelWithoutProgrammes) {
    EXPECT_EQ(fill(), 0);
    EXPECT_THAT(rows("SELECT * FROM myView"), ElementsAre(stubRow));
    EXPECT_THAT(logged(), ElementsAre(createLine, startLine, antennaLine, countLine(0)));
}

TEST_F(Stub, StandsForAListThatCannotBePositioned) {
    television.programmeList = [](CCSortedList& list) {
        list.Create();
        return 1;
    };
    fill();
    EXPECT_THAT(rows("SELECT * FROM myView"), ElementsAre(stubRow));
}

TEST_F(Stub, StandsForAListWhoseFirstEntryIsEmpty) {
    television.programmeList = [](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(
            std::vector<std::optional<TCProgram>>{{}, programmeNumber(2)}));
        return 1;
    };
    fill();
    EXPECT_THAT(rows("SELECT * FROM myView"), ElementsAre(stubRow));
}

TEST_F(Stub, StandsForAListThatTheTelevisionDoesNotVouchFor) {
    television.programmeList = [](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(
            std::vector<std::optional<TCProgram>>{programmeNumber(1)}));
        return 0;
    };
    fill();
    EXPECT_THAT(rows("SELECT * FROM myView"), ElementsAre(stubRow));
}

TEST_F(Stub, IsWrittenByAStatementThatNamesItsColumns) {
    fill();
    rows("DELETE FROM myView");
    epgset::Channel channel;
    channel.name = "Kid's";
    channel.tvMode = Satellite;
    channel.major = 11;
    channel.minor = 1;
    channel.scrambled = true;
    channel.serviceType = 2;
    TCChannel middlewareChannel(std::make_shared<const epgset::Channel>(channel));
    SqlTrace trace(*database);
    OpenPlugin::m_insertFakeProgram(&middlewareChannel, database);
    EXPECT_THAT(trace.statements,
                ElementsAre("INSERT INTO myView (ChannelId, ChannelNumber, ChannelName, ChannelPath, "
                            "ServiceType, AntennaType, ScrambledFlag, EventId, ProgramName, "
                            "ProgramStartTime, ProgramEndTime,ScheduleId, ScheduleType, Repeat) VALUES "
                            "('cid-003-11-1','11-1','Kid''s','/ws/epg2/channels/cid-003-11-1','RADIO',"
                            "'SATELLITE','true','','No information','','','','','');"));
    EXPECT_THAT(rows("SELECT ChannelName, ScrambledFlag FROM myView"), ElementsAre(Row{"Kid's", "true"}));
}

TEST_F(Stub, HasEmptyTextsForWhatTheChannelDoesNotHave) {
    fill();
    rows("DELETE FROM myView");
    epgset::Channel channel;
    channel.tvMode = 14;
    channel.major = 7;
    channel.serviceType = 200;
    TCChannel withoutNameAndAntenna(std::make_shared<const epgset::Channel>(channel));
    OpenPlugin::m_insertFakeProgram(&withoutNameAndAntenna, database);
    EXPECT_THAT(rows("SELECT ChannelId, ChannelName, AntennaType, ServiceType FROM myView"),
                ElementsAre(Row{"cid-014-7", "", "", "UNKNOWN"}));
}

TEST_F(Stub, HasEmptyTextsForWhatThereWasNoMemoryFor) {
    const FailingAllocations noIdentifier(20);
    fill();
    EXPECT_THAT(rows("SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber FROM myView"),
                ElementsAre(Row{"", "News 24", "", "7-2"}));
}

TEST_F(Stub, FailsWithItsInsert) {
    fill();
    TCChannel channel;
    const DatabaseFault fault(DatabaseFault::Step, "INSERT INTO myView");
    EXPECT_THROW(OpenPlugin::m_insertFakeProgram(&channel, database), Container::DomainException);
}

}  // namespace
}  // namespace epgtest
