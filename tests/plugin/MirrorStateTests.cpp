// When the mirror's statements need not run, because they would change nothing.
#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

#include "set/log/LogControl.h"
#include "tests/plugin/ScheduleMirrorTest.h"
#include "tests/support/SqlTrace.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// A programme's booking and one made by hand, mirrored once, with a log level as on a set.
class MirrorState : public ScheduleMirrorTest {
protected:
    MirrorState() {
        epgset::LogControl::setLevel(Container::Logger::Warning);
        reminders.entries = {entry(5, 1, "Morning"), sportEntry(6, 9, "")};
        mirrorOnce();
    }

    /// The statements that a request's mirror runs.
    std::vector<std::string> mirrorOnce() const {
        const SqlTrace trace(*database);
        OpenPlugin::m_mirrorSchedules(database);
        return trace.statements;
    }

    /// The whole table, in its order.
    std::vector<Row> all() const { return rows("SELECT rowid, * FROM myView ORDER BY rowid"); }
};

TEST_F(MirrorState, RunsNoStatementWhileNothingHasChanged) {
    const auto before = all();
    EXPECT_THAT(mirrorOnce(), IsEmpty());
    EXPECT_THAT(mirrorOnce(), IsEmpty());
    EXPECT_THAT(schedules(), testing::SizeIs(2));
    EXPECT_EQ(all(), before);
}

TEST_F(MirrorState, LeavesTheTableAsRunningTheStatementsWould) {
    mirrorOnce();
    const auto skipped = all();
    mirror();
    EXPECT_EQ(all(), skipped);
}

TEST_F(MirrorState, RunsThemAtTraceLevelWhichTellsThem) {
    epgset::LogControl::setLevel(Container::Logger::Trace);
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, RunsThemForEveryChangeOfABooking) {
    const auto changes = std::to_array<void (*)(CRemindInfo&)>({
        [](CRemindInfo& info) { info.SetUid(7); },
        [](CRemindInfo& info) { info.SetEventId(8); },
        [](CRemindInfo& info) { info.SetReserveType(CReminder::RESERVE_VIEW); },
        [](CRemindInfo& info) { info.SetRepeat(CReminder::REPEAT_MANUAL, 10); },
        [](CRemindInfo& info) { info.SetStartTime(midnight + 60); },
        [](CRemindInfo& info) { info.SetDuration(7200); },
        [](CRemindInfo& info) { info.Set(7, 2, 0, TCChannel::GetDigitalChType(Air), 0); },
    });
    for (const auto change : changes) {
        change(reminders.entries[1]);
        EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
        const auto after = all();
        mirror();
        EXPECT_EQ(all(), after);
        mirrorOnce();
        EXPECT_THAT(mirrorOnce(), IsEmpty());
    }
    reminders.entries.pop_back();
    mirrorOnce();
    EXPECT_THAT(schedules(), ElementsAre(Row{"pid-000-7-2-1", "Morning", "sch_id_5", "RECORD", "ONCE"}));
    reminders.entries.clear();
    mirrorOnce();
    EXPECT_THAT(schedules(), IsEmpty());
}

TEST_F(MirrorState, RunsThemWhenAClientHasChangedTheTable) {
    const auto mirrored = schedules();
    rows("UPDATE myView SET ScheduleId='' WHERE ScheduleId='sch_id_5'");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_EQ(schedules(), mirrored);
    rows("DROP TABLE myView");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, RunsThemWhenTheTableIsFilledAgain) {
    const auto mirrored = schedules();
    OpenPlugin::m_deleteDBTable("myView", database);
    fill();
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_EQ(schedules(), mirrored);
}

TEST_F(MirrorState, RunsThemInsideAClientsTransaction) {
    rows("BEGIN");
    rows("UPDATE myView SET ScheduleId='' WHERE ScheduleId='sch_id_5'");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    rows("ROLLBACK");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_THAT(schedules(), testing::SizeIs(2));
}

TEST_F(MirrorState, RunsThemWhenATemporaryTableStandsBeforeTheTable) {
    sqlite3_set_authorizer(database->handle(), nullptr, nullptr);  // which refuses such a table
    rows("CREATE TEMP TABLE myView AS SELECT * FROM main.myView");
    rows("UPDATE myView SET ScheduleId=''");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_THAT(schedules(), testing::SizeIs(2));
}

TEST_F(MirrorState, RunsThemEachTimeWhileATriggerChangesMore) {
    rows("CREATE TABLE seen (id)");
    rows("CREATE TRIGGER t AFTER UPDATE ON myView BEGIN INSERT INTO seen VALUES(new.ScheduleId); END");
    mirrorOnce();
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, RunsThemEachTimeWhileOneOfThemFails) {
    rows("CREATE TRIGGER t BEFORE UPDATE ON myView BEGIN SELECT RAISE(FAIL, 'no'); END");
    mirrorOnce();
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, RunsThemEachTimeWhileABookingsChannelIsGone) {
    reminders.entries.push_back(lostEntry(8, 1, "Lost"));
    mirrorOnce();
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, KnowsNothingOfAnotherDatabase) {
    const auto other = OpenPlugin::m_createSqlDB("");
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

TEST_F(MirrorState, RemembersNoMirrorThatOverlappedWithAnotherChange) {
    const ::MirrorState::Change change(OpenPlugin::mirrorState);
    mirrorOnce();
    EXPECT_THAT(mirrorOnce(), Not(IsEmpty()));
}

}  // namespace
}  // namespace epgtest
