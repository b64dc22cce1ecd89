#include <gmock/gmock.h>

#include <cstdlib>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/plugin/TableTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/TestReminders.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A channel and a programme that a test changes before its row is written.
class ImportRow : public TableTest {
protected:
    ImportRow() {
        channel.name = "News 24";
        channel.tvMode = Air;
        channel.major = 7;
        channel.minor = 2;
        programme.start = 1'000;
        programme.stop = 2'000;
        programme.eventId = 17;
        programme.title = "Morning";
    }

    /// Makes the table and writes the row into it.
    void write() {
        fill();
        write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    }

    void write(std::vector<int> codes, std::string table) {
        TCChannel middlewareChannel(std::make_shared<const epgset::Channel>(channel));
        TCProgram middlewareProgramme(std::make_shared<const epgset::Programme>(programme));
        const ProgramRecord record(t_create_program(&middlewareChannel, &middlewareProgramme));
        ASSERT_TRUE(record);
        if (!withTimes) {
            std::free(std::exchange(record->start, nullptr));
            std::free(std::exchange(record->end, nullptr));
        }
        OpenPlugin::m_getDataFromEpgCacheFAST(&codes, table, &middlewareChannel, record.get(),
                                              &middlewareProgramme, database);
    }

    /// The columns of the one row.
    Row columns(const std::string& names) const {
        const auto all = rows("SELECT " + names + " FROM myView");
        return all.size() == 1 ? all[0] : Row{std::to_string(all.size()) + " rows"};
    }

    epgset::Channel channel;
    epgset::Programme programme;
    bool withTimes = true;
};

TEST_F(ImportRow, IsWrittenByOneInsertOfQuotedValues) {
    fill();
    SqlTrace trace(*database);
    write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    EXPECT_THAT(trace.statements, ElementsAre("INSERT INTO myView values('cid-000-7-2', 'News 24', "
                                              "'/ws/epg2/channels/cid-000-7-2', '7-2', 'AIR', 'false', 'TV', "
                                              "'pid-000-7-2-17', 'Morning', '1000', '2000', '', '', '');"));
}

TEST_F(ImportRow, FollowsItsCodeList) {
    rows("CREATE TABLE narrow (a, b, c)");
    write({9, 3, 1}, "narrow");
    EXPECT_THAT(rows("SELECT * FROM narrow"), ElementsAre(Row{"Morning", "7-2", "cid-000-7-2"}));
}

TEST_F(ImportRow, StoresAQuotedTitleAsItIs) {
    programme.title = "O'Neil";
    channel.name = "Kid's";
    write();
    EXPECT_THAT(columns("ChannelName, ProgramName"), ElementsAre("Kid's", "O'Neil"));
}

TEST_F(ImportRow, TellsWhetherTheChannelIsScrambled) {
    channel.scrambled = true;
    write();
    EXPECT_THAT(columns("ScrambledFlag"), ElementsAre("true"));
}

TEST_F(ImportRow, DoesNotTellWhetherTheProgrammeIsScrambled) {
    programme.scrambled = true;
    write();
    EXPECT_THAT(columns("ScrambledFlag"), ElementsAre("false"));
}

TEST_F(ImportRow, HasMinusOneForTimesThatCannotBeRead) {
    withTimes = false;
    write();
    EXPECT_THAT(columns("ProgramStartTime, ProgramEndTime"), ElementsAre("-1", "-1"));
}

// Missing texts ---------------------------------------------------------------------------------------

TEST_F(ImportRow, RepeatsTheIdentifierForAMissingChannelName) {
    channel.name.clear();
    write();
    EXPECT_THAT(columns("ChannelId, ChannelName, ChannelPath"),
                ElementsAre("cid-000-7-2", "cid-000-7-2", "/ws/epg2/channels/cid-000-7-2"));
}

TEST_F(ImportRow, RepeatsTheProgrammesIdentifierForAMissingTitle) {
    programme.title = "";
    write();
    EXPECT_THAT(columns("EventId, ProgramName, ProgramStartTime"),
                ElementsAre("pid-000-7-2-17", "pid-000-7-2-17", "1000"));
}

TEST_F(ImportRow, RepeatsTheNumberForAnUnknownAntenna) {
    channel.tvMode = 14;
    write();
    EXPECT_THAT(columns("ChannelNumber, AntennaType, ScrambledFlag"), ElementsAre("7-2", "7-2", "false"));
}

TEST_F(ImportRow, BeginsWithAnEmptyTextForAMissingIdentifierAndRepeatsTheNameForItsPath) {
    fill();
    const FailingAllocations noIdentifier(20);
    write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    EXPECT_THAT(columns("ChannelId, ChannelName, ChannelPath, ChannelNumber"),
                ElementsAre("", "News 24", "News 24", "7-2"));
}

TEST_F(ImportRow, RepeatsThePathForAMissingNumber) {
    fill();
    const FailingAllocations noNumber(12);
    write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    EXPECT_THAT(columns("ChannelPath, ChannelNumber, AntennaType"),
                ElementsAre("/ws/epg2/channels/cid-000-7-2", "/ws/epg2/channels/cid-000-7-2", "AIR"));
}

TEST_F(ImportRow, RepeatsTheServiceTypeForAMissingProgrammeIdentifier) {
    fill();
    const FailingAllocations noIdentifierAndTimes(26);
    write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    EXPECT_THAT(columns("ServiceType, EventId, ProgramName, ProgramStartTime, ProgramEndTime"),
                ElementsAre("TV", "TV", "Morning", "-1", "-1"));
}

TEST_F(ImportRow, RepeatsAQuoteEscapedOnceMore) {
    channel.name = "O'Neil";
    fill();
    const FailingAllocations noIdentifier(20);
    write({1, 2, 4, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, "myView");
    EXPECT_THAT(columns("ChannelName, ChannelPath"), ElementsAre("O'Neil", "O''Neil"));
}

TEST_F(ImportRow, RepeatsAcrossSeveralMissingTexts) {
    rows("CREATE TABLE narrow (a, b, c, d)");
    channel.name.clear();
    channel.tvMode = 14;
    programme.title = "";
    write({3, 2, 5, 9}, "narrow");
    EXPECT_THAT(rows("SELECT * FROM narrow"), ElementsAre(Row{"7-2", "7-2", "7-2", "7-2"}));
}

// Schedules -------------------------------------------------------------------------------------------

TEST_F(ImportRow, HasTheScheduleOfABookedProgramme) {
    TestReminders reminders;
    reminders.book(17, 42, CReminder::RESERVE_RECORD, CReminder::REPEAT_EVERYDAY);
    write();
    EXPECT_THAT(columns("ScheduleId, ScheduleType, Repeat"), ElementsAre("sch_id_42", "RECORD", "EVERYDAY"));
}

TEST_F(ImportRow, TakesItsStatusFromTheReserveType) {
    TestReminders reminders;
    reminders.book(17, 42, CReminder::RESERVE_SERIES, CReminder::REPEAT_ONCE);
    write();
    EXPECT_THAT(columns("ScheduleType, Repeat"), ElementsAre("RECORD", "SERIES"));
}

TEST_F(ImportRow, HasEmptyTextsForAProgrammeThatIsNotBooked) {
    TestReminders reminders;
    reminders.book(18, 42, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE);
    write();
    EXPECT_THAT(columns("ScheduleId, ScheduleType, Repeat"), ElementsAre("", "", ""));
}

TEST_F(ImportRow, HasAnEmptyTextForARepeatThatHasNoWord) {
    TestReminders reminders;
    reminders.book(17, 42, CReminder::RESERVE_VIEW, CReminder::REPEAT_INVALID);
    write();
    EXPECT_THAT(columns("ScheduleId, ScheduleType, Repeat"), ElementsAre("sch_id_42", "VIEW", ""));
}

TEST_F(ImportRow, IsWrittenWithoutAReminderStore) {
    epgset::useReminder(nullptr);
    write();
    EXPECT_THAT(columns("EventId, ScheduleId"), ElementsAre("pid-000-7-2-17", ""));
}

TEST_F(ImportRow, AddsOneTextForAScheduleColumnAndNoneForOthers) {
    CRemindInfo info;
    info.SetUid(5);
    const auto valuesOf = [&info](int code, bool found) {
        std::list<std::string> values;
        OpenPlugin::m_getSchedDataFromEpgCache(code, &values, found, &info);
        return values;
    };
    EXPECT_THAT(valuesOf(12, true), ElementsAre("sch_id_5"));
    EXPECT_THAT(valuesOf(13, true), ElementsAre("VIEW"));
    EXPECT_THAT(valuesOf(14, true), ElementsAre("ONCE"));
    for (const int code : {12, 13, 14})
        EXPECT_THAT(valuesOf(code, false), ElementsAre("")) << code;
    for (const int code : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 16})
        EXPECT_THAT(valuesOf(code, true), IsEmpty()) << code;
}

// Content references ----------------------------------------------------------------------------------

/// A programme with content references; keeps the type that it was asked for.
class ReferencedProgramme : public TCProgram {
public:
    explicit ReferencedProgramme(std::vector<std::string> references) : references_(std::move(references)) {}

    void GetCRIDs(std::vector<std::string>& list, int type) const override {
        askedType = type;
        list = references_;
    }

    mutable int askedType = -1;

private:
    std::vector<std::string> references_;
};

TEST(ContentReferences, AreSortedByBytesAndJoined) {
    struct {
        std::vector<std::string> references;
        std::string text;
    } const table[] = {
        {{}, ""},
        {{"crid://one"}, "crid://one"},
        {{"crid://b", "crid://a", "crid://B", "crid://\xC3\xA9"},
         "crid://B, crid://a, crid://b, crid://\xC3\xA9"},
    };
    for (const auto& row : table) {
        ReferencedProgramme programme(row.references);
        std::string text;
        EXPECT_EQ(OpenPlugin::m_getCRIDsForPrgm(&programme, text), 0);
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(programme.askedType, 0);
    }
}

TEST_F(ImportRow, HasTheContentReferencesWhereTheTableHasTheirColumn) {
    rows("CREATE TABLE wide (a, b)");
    TCChannel middlewareChannel(std::make_shared<const epgset::Channel>(channel));
    ReferencedProgramme referenced({"crid://two", "crid://o'ne"});
    const ProgramRecord record(t_create_program(&middlewareChannel, &referenced));
    std::vector<int> codes = {1, 15};
    std::string table = "wide";
    OpenPlugin::m_getDataFromEpgCacheFAST(&codes, table, &middlewareChannel, record.get(), &referenced,
                                          database);
    EXPECT_THAT(rows("SELECT * FROM wide"), ElementsAre(Row{"cid-000-7-2", "crid://o'ne, crid://two"}));
}

}  // namespace
}  // namespace epgtest
