// The schedule of one programme: read, refused, cleared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/plugin/ProgrammeScheduleTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;

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
        EXPECT_EQ(lastSaid(), error);
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

}  // namespace
}  // namespace epgtest
