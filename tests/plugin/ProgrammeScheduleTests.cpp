// The schedule of one programme: read, set, cleared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/plugin/ServiceTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using testing::_;
using testing::DoAll;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::Pair;
using testing::Return;
using testing::SaveArg;
using testing::SetArgReferee;

constexpr const char* view = R"({"status":"VIEW"})";
constexpr const char* recording = R"({"status":"RECORD"})";

/// The end of the messages about a time: the programme's start and end, and the clock, as they are compared.
std::string times(std::int64_t start, std::int64_t now, std::int64_t end) {
    return "(start:" + std::to_string(start) + " <= curr:" + std::to_string(now) +
           " <= end:" + std::to_string(end) + ")";
}

class ProgrammeSchedule : public ServiceTest {
protected:
    ServiceAnswer ask(const char* method, const char* id, Body body = nullptr) {
        const TestDocument document;
        char* location = nullptr;
        ServiceAnswer answer;
        answer.status = t_programs_id_schedule(document, method, id, body.data(), body.length(), &location);
        answer.location = taken(location);
        answer.members = document.json();
        return answer;
    }

    static ServiceAnswer nothingBut(int status) { return {status, "{}", std::nullopt}; }

    /// Lets the store take the programme to come, and answers the entry that it was given.
    CRemindInfo added(const char* body) {
        CRemindInfo info;
        EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
        EXPECT_CALL(store, AddRemindItem(_, 0)).WillOnce(addsAs(17, info));
        EXPECT_EQ(ask("POST", comingId, body).status, 201);
        return info;
    }
};

TEST_F(ProgrammeSchedule, TracesItsNameFirst) {
    ask("PATCH", comingId);
    EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_programs_id_schedule"));
}

TEST_F(ProgrammeSchedule, NeedsAStore) {
    epgset::useReminder(nullptr);
    for (const char* method : {"GET", "PUT", "POST", "DELETE", "PATCH"})
        EXPECT_EQ(ask(method, comingId, view), nothingBut(404)) << method;
    EXPECT_THAT(said(), IsEmpty()) << "neither method nor programme is looked at";
}

TEST_F(ProgrammeSchedule, RefusesOtherMethods) {
    for (const char* method : {"PATCH", "HEAD", "get", "", "GET "}) {
        log.clear();
        EXPECT_EQ(ask(method, "nonsense", "nonsense"), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support " +
                                                                     std::string(method) + " method")));
    }
    log.clear();
    EXPECT_EQ(ask(nullptr, comingId, view), nothingBut(404));
    EXPECT_THAT(said(),
                ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support (null) method")));
}

TEST_F(ProgrammeSchedule, OfAnUnknownProgrammeIsNotFound) {
    for (const char* method : {"GET", "PUT", "POST", "DELETE"}) {
        log.clear();
        EXPECT_EQ(ask(method, "pid-000-7-2-99", "nonsense"), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_programs_id found no pid-000-7-2-99")));
    }
    log.clear();
    EXPECT_EQ(ask("GET", nullptr), nothingBut(404));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_programs_id found no (null)")));
}

// Reading -----------------------------------------------------------------------------------------------

TEST_F(ProgrammeSchedule, ShowsTheReminderOfTheProgramme) {
    EXPECT_CALL(store, FindRemindItemFromProgram(HasEventId(3), _)).WillOnce(fillsWith<1>(entry(5)));
    EXPECT_EQ(ask("GET", comingId),
              (ServiceAnswer{200, shownEntry(5, "01:00:00", "01:10:00"), std::nullopt}));
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(ProgrammeSchedule, ShowsThatThereIsNone) {
    EXPECT_CALL(store, FindRemindItemFromProgram(HasEventId(3), _)).WillOnce(Return(false));
    EXPECT_EQ(ask("GET", comingId), (ServiceAnswer{200, R"({"type":"NONE","status":"NONE"})", std::nullopt}));
}

TEST_F(ProgrammeSchedule, IsReadWhateverTheBodyAndThePermission) {
    const NoUserScheduling refused;
    EXPECT_CALL(store, FindRemindItemFromProgram).WillOnce(Return(false));
    EXPECT_EQ(ask("GET", pastId, R"({"status":"nonsense"})").status, 200);
    EXPECT_THAT(said(), IsEmpty());
}

// What is refused ----------------------------------------------------------------------------------------

TEST_F(ProgrammeSchedule, IsChangedOnlyWhenTheUserMaySchedule) {
    const NoUserScheduling refused;
    for (const char* method : {"PUT", "POST", "DELETE"})
        EXPECT_EQ(ask(method, comingId, R"({"status":"nonsense"})"), nothingBut(403)) << method;
}

TEST_F(ProgrammeSchedule, RefusesABodyThatIsNotValid) {
    for (const char* method : {"PUT", "POST"}) {
        EXPECT_EQ(ask(method, comingId, R"({"status":"nonsense"})"), nothingBut(400));
        EXPECT_EQ(ask(method, comingId, R"({"status":"VIEW","repeat":"EVERYDAY"})"), nothingBut(400));
        EXPECT_EQ(ask(method, comingId, nullptr), nothingBut(400));
    }
}

TEST_F(ProgrammeSchedule, RefusesARecordingOnASetThatCannotRecord) {
    recorder.devices = 0;
    for (const char* method : {"PUT", "POST"})
        EXPECT_EQ(ask(method, comingId, recording), nothingBut(403));
}

TEST_F(ProgrammeSchedule, LooksAtTheTextBeforeTheRecorder) {
    recorder.devices = 0;
    EXPECT_EQ(ask("POST", comingId, R"({"status":"RECORD","repeat":"EVERYDAY"})"), nothingBut(400));
    EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(ProgrammeSchedule, DoesNotCheckATypeAsItDoesAStatus) {
    recorder.devices = 0;
    CRemindInfo info = added(R"({"type":"RECORD"})");
    EXPECT_EQ(info.ReserveType(), CReminder::RESERVE_RECORD);
    EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(ProgrammeSchedule, NeedsAStatus) {
    const LogLine error(Logger::Error, "=== No 'status(type)' parmeter ===");
    for (const char* method : {"PUT", "POST"}) {
        for (const char* body : {R"({"name":"x"})", "", "no JSON"}) {
            log.clear();
            EXPECT_EQ(ask(method, comingId, body), nothingBut(404));
            EXPECT_THAT(said(), ElementsAre(error)) << body;
        }
        log.clear();
        EXPECT_EQ(ask(method, comingId, R"({"status":"VIEW")"), nothingBut(404)) << "cannot be parsed";
        EXPECT_EQ(said().back(), error);
    }
}

TEST_F(ProgrammeSchedule, RefusesAStatusThatCannotBeAskedFor) {
    const struct {
        const char* body;
        const char* status;
    } examples[] = {{R"({"status":"RECORDING"})", "RECORDING"},
                    {"{status:RECORDxyz}", "RECORDxyz"},
                    {R"({"type":"watch"})", "watch"},
                    {R"({"status":"VIEW","type":"VIEW "})", "VIEW "},
                    {R"({"type":"%n%s"})", "%n%s"}};
    for (const auto& [body, status] : examples) {
        log.clear();
        EXPECT_EQ(ask("POST", comingId, body), nothingBut(404));
        EXPECT_THAT(said(), ElementsAre(LogLine(
                                Logger::Error,
                                "=== 'status(type)' must be 'NONE' or 'RECORD' or 'VIEW'. Input was '" +
                                    std::string(status) + "' ===")));
    }
}

// Clearing ----------------------------------------------------------------------------------------------

class ClearedProgramme : public ProgrammeSchedule {
protected:
    const LogLine cleared{Logger::Debug, "=== Remind Set 'NONE'. OK ==="};
    const LogLine ignored{Logger::Debug, "=== Remind Set 'NONE'. Ignored ==="};
};

TEST_F(ClearedProgramme, LosesItsReminderAtTheUsersRequest) {
    const struct {
        const char* method;
        Body body;
    } examples[] = {{"DELETE", nullptr},
                    {"DELETE", ""},
                    {"PUT", R"({"status":"NONE"})"},
                    {"POST", R"({"status":"NONE"})"},
                    {"POST", R"({"type":"none"})"}};
    for (const auto& [method, body] : examples) {
        log.clear();
        EXPECT_CALL(store, FindRemindItemFromProgram(HasEventId(3), _)).WillOnce(fillsWith<1>(entry(5)));
        EXPECT_CALL(store, UserDeleteRemindItemByUid(5)).WillOnce(Return(1));
        EXPECT_EQ(ask(method, comingId, body), nothingBut(200)) << method;
        EXPECT_THAT(said(), ElementsAre(cleared));
    }
}

TEST_F(ClearedProgramme, TakesAnyNumberButZeroForRemoved) {
    EXPECT_CALL(store, FindRemindItemFromProgram).WillOnce(fillsWith<1>(entry(5)));
    EXPECT_CALL(store, UserDeleteRemindItemByUid(5)).WillOnce(Return(-1));
    EXPECT_EQ(ask("DELETE", comingId), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(cleared));
}

TEST_F(ClearedProgramme, MayHaveHadNone) {
    EXPECT_CALL(store, FindRemindItemFromProgram).WillOnce(Return(false));
    EXPECT_EQ(ask("DELETE", comingId), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(ignored));
}

TEST_F(ClearedProgramme, MayKeepIt) {
    EXPECT_CALL(store, FindRemindItemFromProgram).WillOnce(fillsWith<1>(entry(5)));
    EXPECT_CALL(store, UserDeleteRemindItemByUid(5)).WillOnce(Return(0));
    EXPECT_EQ(ask("DELETE", comingId), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(ignored));
}

TEST_F(ClearedProgramme, MayBeOnOrOver) {
    EXPECT_CALL(store, FindRemindItemFromProgram).Times(2).WillRepeatedly(Return(false));
    EXPECT_EQ(ask("DELETE", presentId), nothingBut(200));
    EXPECT_EQ(ask("POST", pastId, R"({"status":"NONE"})"), nothingBut(200));
}

TEST_F(ClearedProgramme, DoesNotMindTheBodyOfADelete) {
    EXPECT_CALL(store, FindRemindItemFromProgram).Times(3).WillRepeatedly(Return(false));
    recorder.model = 0;
    EXPECT_EQ(ask("DELETE", comingId, R"({"status":"nonsense"})"), nothingBut(200));
    EXPECT_EQ(ask("DELETE", comingId, recording), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(ignored, ignored));
    log.clear();
    EXPECT_EQ(ask("DELETE", comingId, R"({"name")"), nothingBut(200));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Error, "json parsing error. no colon. : "), ignored))
        << "it is parsed all the same";
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
    EXPECT_EQ(said().front().second,
              "Invalid time. recording time overlappted " + times(start, startTime, end));
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
        EXPECT_EQ(said().front(),
                  LogLine(Logger::Warning, "Timer Viewing does not support series scheduling"));
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
