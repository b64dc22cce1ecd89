// Whether the set can record, and stopping what it records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "set/recorder/Recordings.h"
#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;

class RecordingService : public ServiceTest {
protected:
    const LogLine noModel{Logger::Debug, "=== CAppUtil::FlagSupportRecordingSpec() == false ==="};
    const LogLine noDevice{Logger::Debug, "=== CPVRWrapper::GetDevTotal() < 1 ==="};
    const LogLine notFormatted{Logger::Debug,
                               "=== CPVRWrapper::IsExistRecDevice() is false. maybe unformatted device ==="};
};

// Availability ------------------------------------------------------------------------------------------

class RecordingAvailability : public RecordingService {
protected:
    /// The answer, whose status is always 200.
    std::string answer(const char* method = "GET") {
        log.clear();
        recorder.calls.clear();
        const TestDocument document;
        EXPECT_EQ(t_recordingAvailable(document, method), 200);
        EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_recordingAvailable"));
        return document.json();
    }

    static constexpr const char* yes = R"({"recordingAvailable":true})";
    static constexpr const char* no = R"({"recordingAvailable":false})";
};

TEST_F(RecordingAvailability, NeedsModelDeviceAndFormat) {
    EXPECT_EQ(answer(), yes);
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(RecordingAvailability, IsAnsweredForAnyMethod) {
    for (const char* method : {"POST", "DELETE", "", static_cast<const char*>(nullptr)})
        EXPECT_EQ(answer(method), yes);
}

TEST_F(RecordingAvailability, IsMissingWithoutTheModel) {
    recorder.model = 0;
    EXPECT_EQ(answer(), no);
    EXPECT_THAT(said(), ElementsAre(noModel));
    EXPECT_THAT(recorder.calls, ElementsAre("model", "devices", "formatted")) << "all is asked all the same";
}

TEST_F(RecordingAvailability, IsMissingWithoutADevice) {
    recorder.formatted = 0;
    for (const int devices : {0, -1}) {
        recorder.devices = devices;
        EXPECT_EQ(answer(), no);
        EXPECT_THAT(said(), ElementsAre(noDevice)) << "its format is not asked for";
    }
}

TEST_F(RecordingAvailability, IsMissingWithoutAFormattedDevice) {
    recorder.formatted = 0;
    EXPECT_EQ(answer(), no);
    EXPECT_THAT(said(), ElementsAre(notFormatted));
}

TEST_F(RecordingAvailability, NamesAllThatIsMissing) {
    recorder.model = 0;
    recorder.devices = 0;
    EXPECT_EQ(answer(), no);
    EXPECT_THAT(said(), ElementsAre(noModel, noDevice));
    recorder.devices = 2;
    recorder.formatted = 0;
    EXPECT_EQ(answer(), no);
    EXPECT_THAT(said(), ElementsAre(noModel, notFormatted));
}

// What the set can do ----------------------------------------------------------------------------------

class RecordingSpecification : public RecordingService {
protected:
    std::string answer(const char* method = "GET") {
        log.clear();
        const TestDocument document;
        EXPECT_EQ(t_recordingSpec(document, method), 200);
        EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_recordingSpec"));
        return document.json();
    }
};

TEST_F(RecordingSpecification, TellsTheFourConditionsInOrder) {
    EXPECT_EQ(answer(), R"({"function":true,"medium":true,"formatted":true,"user_allow":true})");
}

TEST_F(RecordingSpecification, TellsEachConditionByItself) {
    recorder.model = 0;
    EXPECT_EQ(answer(), R"({"function":false,"medium":true,"formatted":true,"user_allow":true})");
    recorder.model = 5;
    recorder.devices = 0;
    EXPECT_EQ(answer(), R"({"function":true,"medium":false,"formatted":true,"user_allow":true})");
    recorder.devices = 3;
    recorder.formatted = 0;
    EXPECT_EQ(answer(), R"({"function":true,"medium":true,"formatted":false,"user_allow":true})");
}

TEST_F(RecordingSpecification, TellsWhetherTheUserMaySchedule) {
    const NoUserScheduling refused;
    EXPECT_EQ(answer(), R"({"function":true,"medium":true,"formatted":true,"user_allow":false})");
}

TEST_F(RecordingSpecification, IsAnsweredForAnyMethod) {
    for (const char* method : {"POST", "", static_cast<const char*>(nullptr)})
        EXPECT_THAT(answer(method), testing::StartsWith(R"({"function":true)"));
}

// Stopping ----------------------------------------------------------------------------------------------

class RecordingStop : public RecordingService {
protected:
    int stop(const char* query = "", const char* method = "POST") {
        log.clear();
        recorder.calls.clear();
        const TestQuery record(query);
        return stopWith(record, method);
    }

    int stopWith(TARNO_rstr_uri_query_st* query, const char* method = "POST") {
        const TestDocument document;
        const int status = t_recordStop(document, method, query);
        EXPECT_EQ(document.json(), "{}") << "no members are written";
        return status;
    }

    /// Records from 7-2 and 8 on AIR and 7-2 on SATELLITE.
    void recordThree() {
        recorder.running = {numbered(Air, 7, 2), numbered(Air, 8, 0), numbered(Satellite, 7, 2)};
    }

    static LogLine count(int recordings) {
        return {Logger::Debug, "recourding count is " + std::to_string(recordings)};
    }
    static LogLine called(int number, const char* result = "true") {
        return {Logger::Warning,
                std::to_string(number) + ") CPVRWrapper::StopRecording called. ret=" + result};
    }
    static LogLine unmatched(int number, const std::string& numbers) {
        return {Logger::Warning,
                std::to_string(number) + ") Recording channel is not matched. (" + numbers + ")"};
    }

    const LogLine everyChannel{Logger::Warning,
                               "Channel is not specified. StopRecording applies all channel"};
    const LogLine channelSeven{Logger::Warning, "Channel is specified. Major:7"};
    const LogLine nothingStopped{Logger::Error, "No recording is stopped."};
};

TEST_F(RecordingStop, TracesItsNameFirst) {
    stop();
    EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_recordStop"));
}

TEST_F(RecordingStop, RefusesOtherMethods) {
    recordThree();
    for (const char* method : {"GET", "PUT", "post", ""}) {
        EXPECT_EQ(stop("channel_id=cid-000-7-2", method), 404);
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_recordStop does not support " +
                                                                     std::string(method) + " method")));
        EXPECT_THAT(recorder.calls, IsEmpty());
    }
    EXPECT_EQ(stop("", nullptr), 404);
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_recordStop does not support (null) method")));
}

TEST_F(RecordingStop, NeedsTheUsersPermission) {
    const NoUserScheduling refused;
    recordThree();
    EXPECT_EQ(stop(), 403);
    EXPECT_THAT(recorder.calls, IsEmpty());
}

TEST_F(RecordingStop, StopsEveryRecordingWithoutAChannel) {
    recordThree();
    EXPECT_EQ(stop(), 200);
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "stop 0-7-2", "channel 2", "stop 0-8-0",
                                            "channel 3", "stop 3-7-2"))
        << "counted once, numbered from 1";
    EXPECT_THAT(said(), ElementsAre(everyChannel, count(3), called(1), called(2), called(3)));
}

TEST_F(RecordingStop, StopsEveryRecordingWithoutAQuery) {
    recordThree();
    EXPECT_EQ(stopWith(nullptr), 200);
    EXPECT_THAT(recorder.calls, testing::Contains("stop 3-7-2"));
}

TEST_F(RecordingStop, StopsTheRecordingOfAChannel) {
    recordThree();
    EXPECT_EQ(stop("channel_id=cid-003-7-2"), 200);
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "channel 2", "channel 3", "stop 3-7-2"));
    EXPECT_THAT(said(), ElementsAre(channelSeven, count(3), unmatched(1, "0-7-2 != 3-7-2"),
                                    unmatched(2, "0-8-0 != 3-7-2"), called(3)));
}

TEST_F(RecordingStop, MatchesModeMajorAndMinor) {
    recorder.running = {numbered(Air, 7, 3), numbered(Air, 6, 2), numbered(Cable, 7, 2)};
    EXPECT_EQ(stop("channel_id=cid-000-7-2"), 200);
    EXPECT_THAT(said(),
                ElementsAre(channelSeven, count(3), unmatched(1, "0-7-3 != 0-7-2"),
                            unmatched(2, "0-6-2 != 0-7-2"), unmatched(3, "1-7-2 != 0-7-2"), nothingStopped));
}

TEST_F(RecordingStop, FindsTheChannelOfAProgramme) {
    recordThree();
    EXPECT_EQ(stop("program_id=pid-000-7-2-2"), 200);
    EXPECT_THAT(recorder.calls, testing::Contains("stop 0-7-2"));
    EXPECT_THAT(recorder.calls, testing::Not(testing::Contains("stop 0-8-0")));
}

TEST_F(RecordingStop, FindsTheChannelOfASchedule) {
    recordThree();
    EXPECT_CALL(store, GetRemindItemByUid(5, _)).WillOnce(fillsWith<1>(entry(5)));
    EXPECT_EQ(stop("schedule_id=sch_id_5"), 200);
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "stop 0-7-2", "channel 2", "channel 3"));
}

TEST_F(RecordingStop, TakesTheFirstItemThatLeadsToAChannel) {
    recordThree();
    EXPECT_EQ(stop("name=x&channel_id=cid-000-99&program_id=pid-000-7-2-2&channel_id=cid-000-8"), 200);
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "stop 0-7-2", "channel 2", "channel 3"));
    EXPECT_EQ(stop("channel_id=cid-000-8&schedule_id=sch_id_5"), 200) << "the rest is not looked at";
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "channel 2", "stop 0-8-0", "channel 3"));
}

TEST_F(RecordingStop, AppliesToAllWhenNoItemLeadsToAChannel) {
    recordThree();
    for (const char* query : {"channel_id=nonsense", "CHANNEL_ID=cid-000-7-2", "channel_id",
                              "program_id=", "schedule_id=x", "antenna=AIR"}) {
        EXPECT_EQ(stop(query), 200);
        EXPECT_EQ(firstSaid(), everyChannel) << query;
        EXPECT_THAT(recorder.calls, testing::SizeIs(7));
    }
}

TEST_F(RecordingStop, SaysWhenNothingRuns) {
    EXPECT_EQ(stop(), 200);
    EXPECT_THAT(said(), ElementsAre(everyChannel, count(0), nothingStopped));
}

TEST_F(RecordingStop, SaysWhenARecordingDoesNotStop) {
    recorder.running = {numbered(Air, 7, 2)};
    recorder.stops = false;
    EXPECT_EQ(stop(), 200);
    EXPECT_THAT(said(), ElementsAre(everyChannel, count(1), called(1, "false"), nothingStopped));
}

TEST_F(RecordingStop, PassesOverARecordingThatHasEnded) {
    recordThree();
    recorder.ended = {1, 3};
    EXPECT_EQ(stop(), 200);
    EXPECT_THAT(recorder.calls, ElementsAre("count", "channel 1", "channel 2", "stop 0-8-0", "channel 3"));
    EXPECT_EQ(stop("channel_id=cid-003-7-2"), 200);
    EXPECT_EQ(lastSaid(), nothingStopped);
    for (const auto& [level, message] : said())
        EXPECT_THAT(message, testing::Not(testing::HasSubstr("-1-0-0"))) << "an empty channel is not shown";
}

/// On the set's own recorder.
TEST(RunningRecordings, AllStop) {
    epgset::Channel channel;
    for (const int major : {7, 8, 9}) {
        channel.major = static_cast<std::int16_t>(major);
        epgset::recordings().start(channel, 0, "");
    }
    const TestDocument document;
    const epgset::LogCapture log;
    EXPECT_EQ(t_recordStop(document, "POST", nullptr), 200);
    EXPECT_THAT(epgset::recordings().running(), IsEmpty());
}

}  // namespace
}  // namespace epgtest
