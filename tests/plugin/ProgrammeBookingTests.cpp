// Booking one programme: its times, the entry, and what is in the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/plugin/ProgrammeScheduleTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::Pair;
using testing::Return;

/// The end of the messages about a time: the programme's start and end, and the clock, as they are compared.
std::string times(std::int64_t start, std::int64_t now, std::int64_t end) {
    return "(start:" + std::to_string(start) + " <= curr:" + std::to_string(now) +
           " <= end:" + std::to_string(end) + ")";
}

// Times -------------------------------------------------------------------------------------------------

class ProgrammeTimes : public ProgrammeSchedule {
protected:
    static constexpr std::int64_t start = startTime - 600;
    static constexpr std::int64_t end = startTime + 600;
};

TEST_F(ProgrammeTimes, TuneAtOnceToAProgrammeToViewThatIsOn) {
    for (const std::int64_t now : {start, start + 1, end}) {
        log.clear();
        window.tuned.clear();
        clock.setNow(now);
        EXPECT_EQ(ask("POST", presentId, view), nothingBut(200));
        EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2)));
        EXPECT_THAT(said(),
                    ElementsAre(LogLine(Logger::Debug, "View time is overlapped. Instant channel change " +
                                                           times(start, now, end))));
    }
}

TEST_F(ProgrammeTimes, TuneAtOnceWhateverForceSays) {
    for (const char* force : {"true", "false", "check_overlap"}) {
        const std::string body = R"({"status":"VIEW","force":")" + std::string(force) + R"("})";
        EXPECT_EQ(ask("PUT", presentId, body), nothingBut(200));
    }
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2), Pair(7, 2), Pair(7, 2)));
}

TEST_F(ProgrammeTimes, RefuseToRecordAProgrammeThatIsOn) {
    for (const std::int64_t now : {start, end}) {
        log.clear();
        clock.setNow(now);
        EXPECT_EQ(ask("POST", presentId, recording), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "Invalid time. recording time overlappted " +
                                                                     times(start, now, end))));
    }
    EXPECT_EQ(ask("POST", presentId, R"({"status":"RECORD","force":"true"})"), nothingBut(404));
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ProgrammeTimes, RefuseAProgrammeThatIsOver) {
    clock.setNow(end + 1);
    for (const char* body : {view, recording}) {
        log.clear();
        EXPECT_EQ(ask("POST", presentId, body), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning,
                                                "Invalid time. already passed (end:" + std::to_string(end) +
                                                    " <= curr:" + std::to_string(end + 1) + ")")));
    }
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ProgrammeTimes, AcceptAProgrammeASecondBeforeItsStart) {
    clock.setNow(start - 1);
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(Return(true));
    EXPECT_EQ(ask("POST", presentId, view).status, 201);
    EXPECT_THAT(window.tuned, IsEmpty());
}

TEST_F(ProgrammeTimes, RefuseAProgrammeThatEndsBeforeItStarts) {
    epgset::Programme turned = plainProgramme();
    turned.start = comingStart;
    turned.stop = comingStart - 1;
    ForwardingTelevision television;
    television.programmeList = [&turned](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(
            std::vector<std::optional<TCProgram>>{middleware(turned)}));
        return 1;
    };
    EXPECT_EQ(ask("POST", "pid-000-7-2-1234", view), nothingBut(404));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning,
                                            "Invalid time. start time bigger than end time. (start:" +
                                                std::to_string(comingStart) +
                                                " > end:" + std::to_string(comingStart - 1) + ")")));
}

TEST_F(ProgrammeTimes, AreUnixTimesWhateverTheZone) {
    clock.setZone(540, true);
    EXPECT_EQ(ask("POST", presentId, recording), nothingBut(404));
    EXPECT_EQ(firstSaid().second, "Invalid time. recording time overlappted " + times(start, startTime, end));
}

TEST_F(ProgrammeTimes, BeyondThirtyOneBitsAreLater) {
    epgset::Programme late = plainProgramme();
    late.start = 4'294'967'000;
    late.stop = 4'294'967'295;
    ForwardingTelevision television;
    television.programmeList = [&late](CCSortedList& list) {
        list.Fill(std::make_shared<FixedEntries<TCProgram>>(
            std::vector<std::optional<TCProgram>>{middleware(late)}));
        return 1;
    };
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(Return(true));
    EXPECT_EQ(ask("POST", "pid-000-7-2-1234", view).status, 201);
}

// The entry ---------------------------------------------------------------------------------------------

TEST_F(ProgrammeSchedule, StoresAnEntryForTheProgramme) {
    const struct {
        const char* body;
        int type;
    } examples[] = {
        {view, CReminder::RESERVE_VIEW},
        {R"({"type":"view"})", CReminder::RESERVE_VIEW},
        {recording, CReminder::RESERVE_RECORD},
        {R"({"type":"Record"})", CReminder::RESERVE_RECORD},
        {R"({"status":"RECORD","repeat":"ONCE"})", CReminder::RESERVE_RECORD},
        {R"({"status":"RECORD","repeat":"SERIES"})", CReminder::RESERVE_SERIES},
        {R"({"status":"RECORD","name":"repeat:SERIES","repeat":"series"})", CReminder::RESERVE_SERIES},
        {R"({"status":"RECORD","name":"repeat:ONCE","repeat":"EVERYDAY"})", CReminder::RESERVE_RECORD},
    };
    for (const auto& [body, type] : examples) {
        const CRemindInfo info = added(body);
        EXPECT_EQ(info.ReserveType(), type) << body;
        EXPECT_EQ(info.EventId(), 3);
        EXPECT_EQ(info.StartTime(), comingStart);
        EXPECT_EQ(info.Duration(), 1800U);
        EXPECT_EQ(info.RepeatType(), CReminder::REPEAT_ONCE);
        EXPECT_EQ(info.CreationMethod(), CReminder::CREATED_FROM_EPG);
        EXPECT_EQ(info.Major(), 7);
        EXPECT_EQ(info.Minor(), 2);
        EXPECT_EQ(info.ChannelType(), TCChannel::GetDigitalChType(Air));
        EXPECT_EQ(info.GetTitle(), unitsOf("Coming", std::endian::big));
    }
}

TEST_F(ProgrammeSchedule, OfASeriesIsAPlainViewWithAWarning) {
    for (const char* body : {R"({"status":"VIEW","repeat":"SERIES"})",
                             R"({"status":"VIEW","name":"repeat:SERIES","repeat":"Series"})"}) {
        log.clear();
        const CRemindInfo info = added(body);
        EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_VIEW);
        EXPECT_EQ(firstSaid(), LogLine(Logger::Warning, "Timer Viewing does not support series scheduling"));
    }
}

TEST_F(ProgrammeSchedule, IsCreated) {
    for (const char* method : {"PUT", "POST"}) {
        log.clear();
        CRemindInfo info;
        EXPECT_CALL(store, ExistSameTimeRemindItem(HasEventId(3), _)).WillOnce(Return(false));
        EXPECT_CALL(store, AddRemindItem(_, 0)).WillOnce(addsAs(17, info));
        EXPECT_EQ(ask(method, comingId, view), (ServiceAnswer{201, "{}", "/ws/epg/schedules/sch_id_17"}));
        EXPECT_THAT(said(),
                    ElementsAre(LogLine(Logger::Debug, "=== Remind Set 'VIEW'. OK (pid:3 sch_id:17) ===")));
    }
}

TEST_F(ProgrammeSchedule, IsCreatedForWhoDoesNotAskWhere) {
    Body body(view);
    const TestDocument document;
    CRemindInfo info;
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(addsAs(17, info));
    EXPECT_EQ(t_programs_id_schedule(document, "POST", comingId, body.data(), body.length(), nullptr), 201);
}

TEST_F(ProgrammeSchedule, ThatTheStoreRefusesIsNoError) {
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(Return(false));
    EXPECT_EQ(ask("POST", comingId, recording), nothingBut(200));
    EXPECT_THAT(said(),
                ElementsAre(LogLine(Logger::Debug, "=== Remind Set 'RECORD'. FAIL!! (pid:3 sch_id:0) ===")));
}

// Conflicts ---------------------------------------------------------------------------------------------

TEST_F(ProgrammeSchedule, ConflictsWithAnotherEntry) {
    for (const char* body : {view, R"({"status":"VIEW","force":"false"})"}) {
        log.clear();
        EXPECT_CALL(store, ExistSameTimeRemindItem(HasEventId(3), _)).WillOnce(fillsWith<1>(entry(5)));
        EXPECT_EQ(ask("POST", comingId, body), nothingBut(409));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Error, "=== Remind Duplicated. Confliction ===")));
    }
}

TEST_F(ProgrammeSchedule, ReplacesTheOtherEntryByForce) {
    CRemindInfo info;
    {
        const InSequence inOrder;
        EXPECT_CALL(store, ExistSameTimeRemindItem(HasEventId(3), _)).WillOnce(fillsWith<1>(entry(5)));
        EXPECT_CALL(store, DeleteRemindItemByUid(5)).WillOnce(Return(1));
        EXPECT_CALL(store, AddRemindItem(HasEventId(3), 0)).WillOnce(addsAs(17, info));
    }
    EXPECT_EQ(ask("POST", comingId, R"({"status":"RECORD","force":"true"})").status, 201);
    EXPECT_THAT(said(),
                ElementsAre(LogLine(Logger::Debug, "=== Remind Duplicated. Previous is removed (5) ==="),
                            LogLine(Logger::Debug, "=== Remind Set 'RECORD'. OK (pid:3 sch_id:17) ===")));
}

TEST_F(ProgrammeSchedule, ForcesNothingWithoutAConflict) {
    const CRemindInfo info = added(R"({"status":"VIEW","force":"true"})");
    EXPECT_EQ(info.EventId(), 3);
    EXPECT_THAT(said(), testing::SizeIs(1));
}

TEST_F(ProgrammeSchedule, ShowsWhatOverlapsAndStoresNothing) {
    EXPECT_CALL(store, GetOverlappingRemindItems(HasEventId(3), _))
        .WillOnce(overlapsWith({entry(5), entry(6, comingStart + 600)}));
    EXPECT_EQ(ask("POST", comingId, R"({"status":"RECORD","force":"check_overlap"})"),
              (ServiceAnswer{200,
                             R"({"items":[)" + shownEntry(5, "01:00:00", "01:10:00") + "," +
                                 shownEntry(6, "01:10:00", "01:20:00") + "]}",
                             std::nullopt}));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "getting overlapped 2")));
}

TEST_F(ProgrammeSchedule, ShowsThatNothingOverlaps) {
    EXPECT_CALL(store, GetOverlappingRemindItems);
    EXPECT_EQ(ask("PUT", comingId, R"({"status":"VIEW","force":"check_overlap"})"),
              (ServiceAnswer{200, R"({"items":[]})", std::nullopt}));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "getting overlapped 0")));
}

}  // namespace
}  // namespace epgtest
