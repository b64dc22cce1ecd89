// When the schedule mirror is written again, and when the table shows the bookings already.
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "set/database/DatabaseFaults.h"
#include "set/log/LogControl.h"
#include "tests/plugin/ScheduleMirrorTest.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/StepAnswer.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const std::string wholeTable = "SELECT rowid, * FROM myView ORDER BY rowid";

class KeptMirrorTest : public ScheduleMirrorTest {
protected:
    KeptMirrorTest() {
        Container::LogControl::setLevel(Container::Logger::Debug);
        reminders.entries = {entry(5, 1, "Morning"), entry(6, 0, "")};
        request();
    }

    /// What a request does before it is answered, and the statements that it takes.
    std::vector<std::string> request() const {
        SqlTrace trace(*database);
        OpenPlugin::m_mirrorSchedules(database);
        return trace.statements;
    }

    /// A client's own statement.
    void command(const std::string& sql) const {
        std::string text = "sql=";
        for (const char letter : sql)
            text += letter == ' ' ? '+' : letter;
        const TestQuery query(text.c_str());
        const TestDocument document;
        OpenPlugin::m_SendSQLCmd(query, database, document);
    }
};

TEST_F(KeptMirrorTest, RunsNoStatementWhileNothingChanges) {
    const auto before = rows(wholeTable);
    EXPECT_THAT(schedules(),
                ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"},
                            Row{"pid-000-7-2-0", "scheduled_event", "sch_id_6", "RECORD", "ONCE"}));
    EXPECT_THAT(request(), IsEmpty());
    EXPECT_THAT(request(), IsEmpty());
    EXPECT_EQ(rows(wholeTable), before);
    EXPECT_THAT(reminders.kindsAsked, ElementsAre(2, 2, 2)) << "the store is asked all the same";
}

TEST_F(KeptMirrorTest, RunsNoStatementWithoutBookings) {
    reminders.entries.clear();
    request();
    EXPECT_THAT(request(), IsEmpty());
    EXPECT_THAT(schedules(), IsEmpty());
}

TEST_F(KeptMirrorTest, IsWrittenAgainForEachChangeOfABooking) {
    const std::vector<std::function<void(CRemindInfo&)>> changes{
        [](CRemindInfo& info) { info.SetUid(9); },
        [](CRemindInfo& info) { info.SetReserveType(CReminder::RESERVE_VIEW); },
        [](CRemindInfo& info) { info.SetRepeat(CReminder::REPEAT_MANUAL, 3); },
        [](CRemindInfo& info) { info.SetEventId(2); },
        [](CRemindInfo& info) { info.Set(10, 0, 0, TCChannel::GetDigitalChType(Satellite), 0); },
        [](CRemindInfo& info) { info.SetTitle({}); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        changes[i](reminders.entries[0]);
        EXPECT_THAT(request(), Not(IsEmpty())) << i;
        const auto kept = rows(wholeTable);
        mirror();
        EXPECT_EQ(rows(wholeTable), kept) << i;
    }
}

TEST_F(KeptMirrorTest, IsWrittenAgainForTheTimesOfAManualBooking) {
    reminders.entries[1].SetDuration(60);
    request();
    EXPECT_THAT(rows("SELECT ProgramStartTime, ProgramEndTime FROM myView WHERE ScheduleId='sch_id_6'"),
                ElementsAre(Row{std::to_string(midnight), std::to_string(midnight + 60)}));
}

TEST_F(KeptMirrorTest, IsWrittenAgainAfterEveryWriteToTheTable) {
    const auto good = schedules();
    for (const char* sql : {
             "UPDATE myView SET ScheduleId=NULL WHERE ScheduleId='sch_id_5'",
             "UPDATE myView SET Repeat='' WHERE ScheduleId='sch_id_6'",
             "UPDATE myView SET ScheduleId='sch_id_7' WHERE EventId='pid-003-10-0-2'",
             "DELETE FROM myView WHERE ProgramName='scheduled_event'",
         }) {
        rows(sql);
        EXPECT_THAT(request(), Not(IsEmpty())) << sql;
        EXPECT_EQ(schedules(), good) << sql;
    }
    OpenPlugin::m_deleteDBTable("myView", database);
    fill();
    EXPECT_THAT(request(), Not(IsEmpty())) << "a table made anew";
    EXPECT_EQ(schedules(), good);
}

TEST_F(KeptMirrorTest, DoesNotOutliveATransactionThatIsUndone) {
    rows("BEGIN");
    rows("DELETE FROM myView WHERE ScheduleId='sch_id_6'");
    rows("UPDATE myView SET ScheduleId=NULL");
    reminders.entries.clear();
    request();  // which has nothing to write
    rows("ROLLBACK");
    EXPECT_THAT(schedules(), testing::SizeIs(2)) << "as before the transaction";
    request();
    EXPECT_THAT(schedules(), IsEmpty());
}

TEST_F(KeptMirrorTest, DoesNotTrustWhatAnotherStatementHasHalfWritten) {
    sqlite3_stmt* half = nullptr;
    sqlite3_prepare_v2(database->handle(), "UPDATE myView SET ScheduleId=NULL RETURNING EventId", -1, &half,
                       nullptr);
    ASSERT_EQ(sqlite3_step(half), SQLITE_ROW);
    EXPECT_THAT(schedules(), IsEmpty());
    request();
    EXPECT_THAT(schedules(), testing::SizeIs(2));
    sqlite3_finalize(half);
}

TEST_F(KeptMirrorTest, IsWrittenEachTimeInATransaction) {
    rows("BEGIN");
    EXPECT_THAT(request(), Not(IsEmpty()));
    EXPECT_THAT(request(), Not(IsEmpty()));
    rows("COMMIT");
}

TEST_F(KeptMirrorTest, IsWrittenEachTimeWhereAClientsTriggerCountsOnIt) {
    sqlite3_set_authorizer(database->handle(), nullptr, nullptr);  // a host's own may allow triggers
    rows("CREATE TABLE seen(times)");
    for (const std::string kind : {"TRIGGER", "TEMP TRIGGER"}) {
        rows("DELETE FROM seen");
        request();
        EXPECT_THAT(request(), IsEmpty()) << kind;
        command("CREATE " + kind + " see AFTER UPDATE ON myView BEGIN INSERT INTO seen VALUES(1); END");
        for (const char* times : {"2", "4"}) {  // cleared and marked, each time
            request();
            EXPECT_THAT(rows("SELECT count(*) FROM seen"), ElementsAre(Row{times})) << kind;
        }
        command("DROP TRIGGER see");
    }
}

TEST_F(KeptMirrorTest, IsWrittenEachTimeIntoATableOfAClientsOwn) {
    command("DROP TABLE myView");
    command(
        "CREATE TABLE myView(id INTEGER PRIMARY KEY AUTOINCREMENT, ChannelId, ChannelName, ChannelPath, "
        "ChannelNumber, ServiceType, AntennaType, ScrambledFlag, EventId, ProgramName, ProgramStartTime, "
        "ProgramEndTime, ScheduleId, ScheduleType, Repeat)");
    for (const char* id : {"1", "2", "3"}) {
        request();
        EXPECT_THAT(rows("SELECT id FROM myView"), ElementsAre(Row{id}));
    }
}

TEST_F(KeptMirrorTest, OpensNoDatabaseThatAClientWouldSee) {
    reminders.entries.clear();
    request();
    request();
    EXPECT_THAT(rows("SELECT name FROM pragma_database_list"), ElementsAre(Row{"main"}));
}

TEST_F(KeptMirrorTest, IsKeptThoughAClientLookedForTemporaryTables) {
    rows("SELECT * FROM sqlite_temp_master");
    request();
    EXPECT_THAT(request(), Not(testing::Contains(testing::HasSubstr("myView"))));
}

TEST_F(KeptMirrorTest, IsForgottenWithANewDatabase) {
    OpenPlugin::m_createSqlDB("");
    EXPECT_THAT(request(), Not(IsEmpty()));
}

TEST_F(KeptMirrorTest, IsOfOneDatabaseAlone) {
    const auto other = OpenPlugin::m_createSqlDB("");
    fill(other);
    const auto version = [](const Container::SharedPtr<Connection>& connection) {
        unsigned number = 0;
        sqlite3_file_control(connection->handle(), "main", SQLITE_FCNTL_DATA_VERSION, &number);
        return number;
    };
    request();
    while (version(other) < version(database))
        rowsOf(*other, "DELETE FROM myView WHERE 0");
    ASSERT_EQ(version(other), version(database));
    OpenPlugin::m_mirrorSchedules(other);
    EXPECT_THAT(rowsOf(*other, "SELECT * FROM myView WHERE NOT ScheduleId=''"), testing::SizeIs(2));
    OpenPlugin::m_mirrorSchedules({});
    EXPECT_THAT(request(), Not(IsEmpty()));
}

TEST_F(KeptMirrorTest, IsWrittenAgainAfterAMarkThatFailed) {
    reminders.entries = {entry(9, 1, "Morning")};
    {
        const StepAnswer failure("UPDATE myView SET ScheduleId='sch_id_9'", SQLITE_ERROR);
        request();
        EXPECT_THAT(schedules(), IsEmpty());
    }
    request();
    EXPECT_THAT(schedules(), testing::SizeIs(1));
}

TEST_F(KeptMirrorTest, IsWrittenAgainAfterAClearingThatFailed) {
    reminders.entries = {entry(5, 2, "Football"), entry(6, 0, "")};
    {
        const epgset::DatabaseFault fault(epgset::DatabaseFault::Compile, scheduledRowsSql);
        request();
        EXPECT_THAT(schedules(), testing::SizeIs(3)) << "nothing was cleared";
    }
    request();
    EXPECT_THAT(schedules(), testing::SizeIs(2));
}

TEST_F(KeptMirrorTest, IsWrittenAgainAfterAnInsertThatFoundNoRoomAtFirst) {
    addPrunable(5);
    reminders.entries = {entry(6, 0, "")};
    {
        const epgset::DatabaseFault full(epgset::DatabaseFault::Compile, "INSERT into myView");
        request();
        EXPECT_THAT(schedules(), testing::SizeIs(1));
    }
    EXPECT_THAT(request(), Not(IsEmpty()));
    EXPECT_THAT(request(), IsEmpty());
}

TEST_F(KeptMirrorTest, TracesEveryStepToThoseWhoReadTheTrace) {
    Container::LogControl::setLevel(Container::Logger::Trace);
    EXPECT_THAT(request(), Not(IsEmpty()));
    log.clear();
    EXPECT_THAT(request(), Not(IsEmpty()));
    EXPECT_THAT(pluginLog(), testing::Contains("A schedule has been found:sch_id_5, Morning\n"));
    EXPECT_THAT(pluginLog(), testing::Contains("Schedule data updated!\n"));
}

TEST_F(KeptMirrorTest, ReportsABookingWithoutAChannelEachTime) {
    reminders.entries = {entry(5, 1, "Morning"), lostEntry(7, 1, "Lost"), entry(8, 2, "Football")};
    for (int times = 0; times < 3; ++times) {
        log.clear();
        request();
        EXPECT_THAT(pluginLog(), ElementsAre("ERROR! get remind item failed!\n"));
        EXPECT_THAT(schedules(), testing::SizeIs(1));
    }
}

TEST_F(KeptMirrorTest, IsRightAgainAfterSomeThatWereWrittenAtOnce) {
    TestReminders store;  // may be read by several threads
    store.book(1, 0, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE) = entry(5, 1, "Morning");
    store.book(0, 0, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE) = entry(6, 0, "");
    const auto good = schedules();
    {
        const auto mirrorOften = [this] {
            for (int times = 0; times < 100; ++times) {
                OpenPlugin::m_mirrorSchedules(database);
                if (times % 10 == 0)
                    sqlite3_exec(database->handle(), "UPDATE myView SET ScheduleType='VIEW'", nullptr,
                                 nullptr, nullptr);
            }
        };
        const std::jthread one(mirrorOften);
        const std::jthread other(mirrorOften);
    }
    request();
    EXPECT_EQ(schedules(), good);
    EXPECT_THAT(request(), IsEmpty());
}

/// Two databases that the same things happen to: the mirror of one is kept where it can be, that of the other
/// is cleared and written each time.
class MirroredTwins : public KeptMirrorTest {
protected:
    static constexpr unsigned steps = 3000;

    MirroredTwins() {
        fill(twin);
        request();
        mirror(twin);
    }

    void both(const std::string& sql) const {
        for (const auto& connection : {database, twin})
            sqlite3_exec(connection->handle(), sql.c_str(), nullptr, nullptr, nullptr);
    }

    void change() {
        static const std::array statements{
            "UPDATE myView SET ScheduleId='sch_id_99' WHERE EventId LIKE '%-2'",
            "UPDATE myView SET ScheduleId='it''s' WHERE EventId LIKE '%-1'",
            "UPDATE myView SET ScheduleId='' WHERE ScheduleId IS NULL",
            "UPDATE myView SET ProgramName='scheduled_event' WHERE EventId='pid-000-7-2-2'",
            "UPDATE myView SET ProgramName='Football' WHERE EventId='pid-000-7-2-2'",
            "DELETE FROM myView WHERE EventId='pid-003-10-0-1'",
            "INSERT INTO myView SELECT * FROM myView LIMIT 1",
            "BEGIN",
            "COMMIT",
            "ROLLBACK",
            "VACUUM",
        };
        if (pick(3) == 0) {
            both(statements[pick(statements.size())]);
        } else if (pick(40) == 0) {
            for (const auto& connection : {database, twin}) {
                OpenPlugin::m_deleteDBTable("myView", connection);
                fill(connection);
            }
        } else if (pick(2) == 0 && reminders.entries.size() < 5) {
            const unsigned long uid = pick(8);
            const int event = static_cast<int>(pick(4));
            const std::string title = pick(3) == 0 ? "" : "Title";
            reminders.entries.push_back(pick(8) == 0   ? lostEntry(uid, event, title)
                                        : pick(2) == 0 ? entry(uid, event, title)
                                                       : sportEntry(uid, event, title));
        } else if (!reminders.entries.empty()) {
            reminders.entries.erase(reminders.entries.begin() +
                                    static_cast<std::ptrdiff_t>(pick(reminders.entries.size())));
        }
    }

    unsigned pick(std::size_t count) { return static_cast<unsigned>(random_() % count); }

    const Container::SharedPtr<Connection> twin = OpenPlugin::m_createSqlDB("");
    std::mt19937 random_{1};
};

TEST_F(MirroredTwins, StayTheSameWhateverHappens) {
    unsigned kept = 0;
    for (unsigned step = 0; step < steps; ++step) {
        if (pick(3) == 0) change();
        if (request().empty()) ++kept;
        mirror(twin);
        ASSERT_EQ(rows(wholeTable), rowsOf(*twin, wholeTable)) << "step " << step;
    }
    EXPECT_GT(kept, steps / 10);
    EXPECT_LT(kept, steps - steps / 10);
}

}  // namespace
}  // namespace epgtest
