// One schedule by its identifier: read, changed, deleted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::DoAll;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Return;
using testing::SaveArg;

/// A request to change an entry to view 7-2 on AIR from 01:00:00 to 01:30:00, with further members behind.
std::string change(const std::string& more = "") {
    return R"({"status":"VIEW","channel_num":"7-2","antenna":"AIR","start":"2026-08-23T01:00:00Z",)"
           R"("end":"2026-08-23T01:30:00Z","repeat":"ONCE")" +
           more + "}";
}

class SingleSchedule : public ServiceTest {
protected:
    ServiceAnswer ask(const char* method, const char* id, Body body = nullptr) {
        const TestDocument document;
        ServiceAnswer answer;
        answer.status = t_schedules_id(document, method, id, body.data(), body.length());
        answer.members = document.json();
        return answer;
    }

    /// Lets the store find entry 5 once for each request.
    void keep(int requests = 1) {
        EXPECT_CALL(store, GetRemindItemByUid(5, _)).Times(requests).WillRepeatedly(fillsWith<1>(entry(5)));
    }
};

TEST_F(SingleSchedule, TracesItsNameFirst) {
    ask("POST", "sch_id_5");
    EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_schedules_id"));
}

TEST_F(SingleSchedule, RefusesOtherMethods) {
    for (const char* method : {"POST", "PATCH", "HEAD", "get", ""}) {
        log.clear();
        EXPECT_EQ(ask(method, "sch_id_5", change()), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support " +
                                                                     std::string(method) + " method")));
    }
    log.clear();
    EXPECT_EQ(ask(nullptr, "sch_id_5"), nothingBut(404));
    EXPECT_THAT(said(),
                ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support (null) method")));
}

TEST_F(SingleSchedule, MayBeUnknown) {
    for (const char* method : {"GET", "PUT", "DELETE"}) {
        log.clear();
        EXPECT_CALL(store, GetRemindItemByUid(5, _)).WillOnce(Return(false));
        EXPECT_EQ(ask(method, "sch_id_5", "nonsense"), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "GetRemindItemByUid fail (uid:5)"),
                                        LogLine(Logger::Warning, "t_schedules_id found no sch_id_5")));
    }
}

TEST_F(SingleSchedule, NeedsAnIdentifier) {
    EXPECT_EQ(ask("GET", "SCH_ID_5"), nothingBut(404));
    EXPECT_EQ(ask("GET", nullptr), nothingBut(404));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_schedules_id found no SCH_ID_5"),
                                    LogLine(Logger::Warning, "t_schedules_id found no (null)")));
}

TEST_F(SingleSchedule, IsUnknownWithoutAStoreOrItsChannel) {
    EXPECT_CALL(store, GetRemindItemByUid(5, _)).WillOnce([](unsigned long, CRemindInfo& info) {
        info = entry(5);
        info.Set(9, 4, 0, TCChannel::GetDigitalChType(Air), 0);
        return true;
    });
    EXPECT_EQ(ask("GET", "sch_id_5"), nothingBut(404));
    EXPECT_EQ(lastSaid(), LogLine(Logger::Warning, "t_schedules_id found no sch_id_5"));
    epgset::useReminder(nullptr);
    EXPECT_EQ(ask("DELETE", "sch_id_5"), nothingBut(404));
}

// Reading -----------------------------------------------------------------------------------------------

TEST_F(SingleSchedule, IsShown) {
    keep();
    EXPECT_EQ(ask("GET", "sch_id_5"),
              (ServiceAnswer{200, shownEntry(5, "01:00:00", "01:10:00"), std::nullopt}));
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(SingleSchedule, IsShownWhateverTheBodyAndThePermission) {
    const NoUserScheduling refused;
    keep();
    EXPECT_EQ(ask("GET", "sch_id_5", R"({"status":"nonsense"})").status, 200);
}

TEST_F(SingleSchedule, CannotBeShownWithoutARecord) {
    keep();
    const FailingAllocations fault(sizeof(ws_epg_schedule));
    EXPECT_EQ(ask("GET", "sch_id_5"), nothingBut(404));
}

// Deleting ----------------------------------------------------------------------------------------------

TEST_F(SingleSchedule, IsDeleted) {
    keep();
    EXPECT_CALL(store, DeleteRemindItemByUid(5)).WillOnce(Return(1));
    EXPECT_EQ(ask("DELETE", "sch_id_5"), nothingBut(200));
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(SingleSchedule, IsDeletedWhateverTheBody) {
    keep();
    EXPECT_CALL(store, DeleteRemindItemByUid(5)).WillOnce(Return(1));
    EXPECT_EQ(ask("DELETE", "sch_id_5", R"({"status":"nonsense")"), nothingBut(200));
}

TEST_F(SingleSchedule, IsDeletedOnlyWhenTheStoreAnswersOne) {
    for (const int answer : {0, 2, -1}) {
        log.clear();
        keep();
        EXPECT_CALL(store, DeleteRemindItemByUid(5)).WillOnce(Return(answer));
        EXPECT_EQ(ask("DELETE", "sch_id_5"), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Error, "DeleteRemindItemByUid failed (uid:5)")));
    }
}

// Changing ----------------------------------------------------------------------------------------------

TEST_F(SingleSchedule, IsReplaced) {
    keep();
    CRemindInfo updated;
    EXPECT_CALL(store, UpdateRemindItemByUid(5, _, 0, 1)).WillOnce(DoAll(SaveArg<1>(&updated), Return(true)));
    EXPECT_EQ(ask("PUT", "sch_id_5", change()), nothingBut(200));
    EXPECT_EQ(updated.StartTime(), comingStart);
    EXPECT_EQ(updated.Duration(), 1800U);
    EXPECT_EQ(updated.CreationMethod(), CReminder::CREATED_MANUALLY);
}

TEST_F(SingleSchedule, IsReplacedWhateverOverlapsAndForceSays) {
    for (const char* force : {"true", "false", "check_overlap"}) {
        keep();
        EXPECT_CALL(store, UpdateRemindItemByUid(5, _, 0, 1)).WillOnce(Return(true));
        EXPECT_EQ(ask("PUT", "sch_id_5", change(R"(,"force":")" + std::string(force) + R"(")")),
                  nothingBut(200))
            << force;
    }
}

TEST_F(SingleSchedule, IsDoneWithAlsoWhenTheStoreRefusesTheChange) {
    keep();
    EXPECT_CALL(store, UpdateRemindItemByUid).WillOnce(Return(false));
    EXPECT_EQ(ask("PUT", "sch_id_5", change()), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(Pair(_, "UpdateRemindItemByUid Fail!")));
}

TEST_F(SingleSchedule, IsChangedOnlyWhenTheUserMaySchedule) {
    const NoUserScheduling refused;
    keep(2);
    EXPECT_EQ(ask("PUT", "sch_id_5", R"({"status":"nonsense"})"), nothingBut(403));
    EXPECT_EQ(ask("DELETE", "sch_id_5"), nothingBut(403));
}

TEST_F(SingleSchedule, RefusesABodyThatIsNotValid) {
    keep(3);
    EXPECT_EQ(ask("PUT", "sch_id_5", nullptr), nothingBut(400));
    EXPECT_EQ(ask("PUT", "sch_id_5", R"({"status":"nonsense"})"), nothingBut(400));
    EXPECT_EQ(ask("PUT", "sch_id_5", change(R"(,"force":"maybe")")), nothingBut(400));
}

TEST_F(SingleSchedule, RefusesARecordingOnASetThatCannotRecord) {
    recorder.formatted = 0;
    keep();
    EXPECT_EQ(ask("PUT", "sch_id_5", R"({"status":"RECORD"})"), nothingBut(403));
}

TEST_F(SingleSchedule, RefusesABodyThatCannotBeParsed) {
    keep(2);
    EXPECT_EQ(ask("PUT", "sch_id_5", ""), nothingBut(404));
    EXPECT_EQ(ask("PUT", "sch_id_5", R"({"status":"VIEW")"), nothingBut(404));
}

TEST_F(SingleSchedule, RefusesAChangeToNothingThatCanBeBooked) {
    keep(3);
    for (const char* more : {R"(,"antenna":"ROOF")", R"(,"status":"NONE")", R"(,"repeat":"SERIES")"}) {
        EXPECT_EQ(ask("PUT", "sch_id_5", change(more)), nothingBut(404)) << more;
        EXPECT_EQ(lastSaid(), LogLine(Logger::Error, "Manual Remind Set Failed"));
    }
}

TEST_F(SingleSchedule, TunesAtOnceToWhatIsOnAndStaysAsItIs) {
    clock.setNow(comingStart);
    keep();
    EXPECT_EQ(ask("PUT", "sch_id_5", change()), nothingBut(200));
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2)));
}

}  // namespace
}  // namespace epgtest
