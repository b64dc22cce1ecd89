// What a schedule request must look like as text, and whether the set can record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;

class RequestValidation : public ServiceTest {
protected:
    /// What a check says of a body after the two lines that show it; "(all is well)" for nothing.
    template <typename Check>
    std::string verdict(const Check& check, const std::string& body, int expected) {
        log.clear();
        EXPECT_EQ(check(body.c_str()), expected) << body;
        const auto lines = traced();
        EXPECT_EQ(logged().size(), lines.size()) << "everything is traced only: " << body;
        if (lines.size() < 2) return "(the body is not shown)";
        EXPECT_EQ(lines[0], "validate: Data char buffer: " + body + "\n\n");
        EXPECT_EQ(lines[1], "Data STRING: " + body + "\n\n");
        return lines.size() == 2 ? "(all is well)" : lines[2];
    }

    void expectPasses(const std::string& body) {
        EXPECT_EQ(verdict(t_validateSchedData, body, 0), "Schedule data is valid\n") << body;
    }
    void expectFailsOn(const std::string& word, const std::string& body) {
        EXPECT_EQ(verdict(t_validateSchedData, body, -1), "Failed on " + word + "\n") << body;
    }
};

TEST_F(RequestValidation, NeedsABody) {
    EXPECT_EQ(t_validateSchedData(nullptr), -1);
    EXPECT_EQ(t_validateSchedDataRecord(nullptr), -1);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "Data is NULL\n"),
                                      LogLine(Logger::Trace, "Data is NULL\n")));
}

TEST_F(RequestValidation, PassesABodyWithoutTheCheckedWords) {
    for (const char* body : {"", "{}", "not JSON at all", R"({"name":"x"})", R"({"type":"RECORD"})",
                             R"({"type":"nonsense"})", R"({"Status":"view"})", R"({"STATUS":"x"})"})
        expectPasses(body);
}

TEST_F(RequestValidation, PassesTheExactWordsOfAStatus) {
    for (const char* word : {"RECORD", "RECORDING", "NONE", "VIEW"}) {
        expectPasses(std::string(R"({"status":")") + word + R"("})");
        expectPasses(std::string("{status:") + word + "}");
    }
    expectPasses("{status:VIEW, repeat:ONCE}");
}

TEST_F(RequestValidation, PassesTheExactWordsOfARepeat) {
    for (const char* word : {"ONCE", "SERIES"}) {
        expectPasses(std::string(R"({"repeat":")") + word + R"("})");
        expectPasses(std::string("{repeat:") + word + "}");
    }
}

TEST_F(RequestValidation, PassesTheExactWordsOfForce) {
    for (const char* word : {"true", "false", "check_overlap"}) {
        expectPasses(std::string(R"({"force":")") + word + R"("})");
        expectPasses(std::string("{force:") + word + "}");
    }
}

TEST_F(RequestValidation, FailsOnAnotherStatus) {
    for (const char* body :
         {R"({"status":"view"})", R"({"status":"Record"})", R"({"status":"RECORDED"})", R"({"status":""})",
          R"({"status":VIEW})", R"({status:"VIEW"})", R"({'status':'VIEW'})", R"({"status"})", "status",
          "{status:record}", R"({"status":"SERIES"})", R"({"substatus":"WATCH"})"})
        expectFailsOn("status", body);
}

TEST_F(RequestValidation, FailsOnBlanksAroundTheColon) {
    for (const char* body : {R"({"status" : "VIEW"})", R"({"status": "VIEW"})", R"({"status" :"VIEW"})",
                             "{status: VIEW}", "{status :VIEW}", "{\"status\":\n\"VIEW\"}"})
        expectFailsOn("status", body);
    expectFailsOn("repeat", R"({"repeat": "ONCE"})");
    expectFailsOn("force", R"({"force": "true"})");
}

TEST_F(RequestValidation, FailsOnAnotherRepeat) {
    for (const char* body : {R"({"repeat":"EVERYDAY"})", R"({"repeat":"MON|TUE"})", R"({"repeat":"once"})",
                             R"({"repeat":"ONCES"})", "{repeat:EVERYDAY}"})
        expectFailsOn("repeat", body);
}

TEST_F(RequestValidation, FailsOnAnotherForce) {
    for (const char* body : {R"({"force":true})", R"({"force":"TRUE"})", R"({"force":"CHECK_OVERLAP"})",
                             R"({"force":"maybe"})", R"({"force":1})"})
        expectFailsOn("force", body);
}

TEST_F(RequestValidation, LooksAtNamesAndValuesAlike) {
    expectFailsOn("status", R"({"name":"the status"})");
    expectFailsOn("status", R"({"synopsis":"a status report","type":"VIEW"})");
    expectPasses(R"({"synopsis":"a status report","status":"VIEW"})");
    expectPasses(R"({"name":"status:VIEW"})");
    expectFailsOn("repeat", R"({"name":"repeated"})");
    expectFailsOn("force", R"({"channel_name":"Airforce TV"})");
}

TEST_F(RequestValidation, IsContentWithOnePairThatIsRight) {
    expectPasses(R"({"status":"nonsense","status":"VIEW"})");
    expectPasses(R"({"status":"VIEW","status":"nonsense"})");
}

TEST_F(RequestValidation, DoesNotSeeWhereAnUnquotedWordEnds) {
    expectPasses("{status:RECORDxyz}");
    expectPasses("{status:NONEsuch}");
    expectPasses("{repeat:ONCEMORE}");
    expectPasses("{force:truest}");
}

TEST_F(RequestValidation, StopsAtTheFirstWordThatFails) {
    const std::string body = R"({"force":"x","repeat":"x","status":"x"})";
    expectFailsOn("status", body);
    EXPECT_EQ(traced().size(), 3U);
    expectFailsOn("repeat", R"({"force":"x","repeat":"x","status":"VIEW"})");
    EXPECT_EQ(traced().size(), 3U);
    expectFailsOn("force", R"({"force":"x","repeat":"ONCE","status":"VIEW"})");
    EXPECT_EQ(traced().size(), 3U);
}

TEST_F(RequestValidation, NeverTakesTheBodyForAFormat) {
    expectPasses("%s%n%d%1000000d");
    ASSERT_FALSE(log.records().empty());
    EXPECT_EQ(log.records()[0].format, "validate: Data char buffer: %s\n\n");
    ASSERT_FALSE(log.records().empty());
    EXPECT_EQ(log.records()[1].format, "Data STRING: %s\n\n");
}

TEST_F(RequestValidation, DoesNotAskTheRecorder) {
    expectPasses(R"({"status":"RECORD"})");
    EXPECT_THAT(recorder.calls, IsEmpty());
}

// Whether the set can record ----------------------------------------------------------------------------

class RecordingRequest : public RequestValidation {
protected:
    static constexpr const char* check = "Check devices record capability\n";
};

TEST_F(RecordingRequest, PassesOnASetThatCanRecord) {
    for (const char* body : {R"({"status":"RECORD"})", R"({"status":"RECORDING"})", "{status:RECORD}",
                             "{status:RECORDING}", "{status:RECORDxyz}"})
        EXPECT_EQ(verdict(t_validateSchedDataRecord, body, 0), check) << body;
    EXPECT_EQ(traced().size(), 3U);
}

TEST_F(RecordingRequest, FailsOnASetThatCannotRecord) {
    recorder.formatted = 0;
    for (const char* body :
         {R"({"status":"RECORD"})", R"({"status":"RECORDING"})", "{status:RECORD}", "{status:RECORDING}",
          "{status:RECORDxyz}", R"({"name":"status:RECORD"})", R"({"status":"VIEW","status":"RECORD"})"}) {
        EXPECT_EQ(verdict(t_validateSchedDataRecord, body, -1), check) << body;
        EXPECT_THAT(traced(), ElementsAre(testing::_, testing::_, check, "Recording is not allowed\n"));
    }
}

TEST_F(RecordingRequest, IsSeenByItsExactWordsOnly) {
    recorder.model = 0;
    for (const char* body :
         {"", R"({"status":"VIEW"})", R"({"status":"NONE"})", R"({"status": "RECORD"})",
          R"({"status":"record"})", R"({"type":"RECORD"})", R"({"name":"RECORD","status":"VIEW"})"})
        EXPECT_EQ(verdict(t_validateSchedDataRecord, body, 0), "(all is well)") << body;
    EXPECT_THAT(recorder.calls, IsEmpty());
}

class RecordingCapability : public ServiceTest {
protected:
    RecordingCapability() { log.clear(); }
};

TEST_F(RecordingCapability, NeedsModelDeviceAndFormat) {
    EXPECT_EQ(t_checkForRecordingCapability(), 1);
    EXPECT_THAT(recorder.calls, ElementsAre("model", "devices", "formatted"));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "Check devices record capability\n")));
}

TEST_F(RecordingCapability, StopsAskingAtTheFirstThatIsMissing) {
    recorder.model = 0;
    EXPECT_EQ(t_checkForRecordingCapability(), 0);
    EXPECT_THAT(recorder.calls, ElementsAre("model"));

    recorder.model = 1;
    recorder.devices = 0;
    recorder.calls.clear();
    EXPECT_EQ(t_checkForRecordingCapability(), 0);
    EXPECT_THAT(recorder.calls, ElementsAre("model", "devices"));

    recorder.devices = 1;
    recorder.formatted = 0;
    recorder.calls.clear();
    EXPECT_EQ(t_checkForRecordingCapability(), 0);
    EXPECT_THAT(recorder.calls, ElementsAre("model", "devices", "formatted"));
}

TEST_F(RecordingCapability, TakesAnyNumberButZeroForYes) {
    recorder.model = -1;
    recorder.devices = 7;
    recorder.formatted = 256;
    EXPECT_EQ(t_checkForRecordingCapability(), 1);
    recorder.devices = -1;
    EXPECT_EQ(t_checkForRecordingCapability(), 0) << "fewer devices than none";
}

TEST_F(RecordingCapability, NeedsTheUsersPermission) {
    const NoUserScheduling refused;
    EXPECT_EQ(t_checkForRecordingCapability(), 0);
    EXPECT_THAT(recorder.calls, ElementsAre("model", "devices", "formatted"));
}

}  // namespace
}  // namespace epgtest
