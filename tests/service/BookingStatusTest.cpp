// Every status with which the schedule resources answer a change.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/service/BookingFixture.h"

namespace epgset::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* view = R"({"status":"VIEW"})";
constexpr const char* record = R"({"status":"RECORD"})";
constexpr const char* none = R"({"status":"NONE"})";

/// The schedule of a programme.
class ProgrammeBooking : public BookingFixture {
protected:
    std::string path() const { return scheduleOf(coming_); }
};

TEST_F(ProgrammeBooking, Is201ForEitherMethodAndShown) {
    for (const char* method : {"POST", "PUT"}) {
        const HttpAnswer answer = send(method, path(), record);
        EXPECT_EQ(201, answer.status) << method;
        EXPECT_FALSE(answer.has("location"));
        EXPECT_EQ("{}", answer.body);
        EXPECT_STREQ("RECORD", json(get(path()))["status"].GetString());
        EXPECT_EQ(200, statusOf("DELETE", path(), ""));
    }
}

TEST_F(ProgrammeBooking, Is200WhenItIsCleared) {
    for (const char* method : {"POST", "PUT"}) {
        EXPECT_EQ(201, statusOf("POST", path(), view));
        EXPECT_EQ(200, statusOf(method, path(), none));
        EXPECT_THAT(scheduleIds(), IsEmpty());
    }
    EXPECT_EQ(200, statusOf("DELETE", path(), "")) << "there is none any more";
    EXPECT_EQ(200, statusOf("DELETE", path(), "no JSON"));
}

TEST_F(ProgrammeBooking, Is200AndTunesAtOnceToAViewOfWhatIsOn) {
    EXPECT_EQ(200, statusOf("POST", scheduleOf(present_), view));
    EXPECT_EQ("News 24", tunedTo());
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(ProgrammeBooking, Is200WithTheEntriesThatItWouldOverlap) {
    const std::string check = R"({"status":"RECORD","force":"check_overlap"})";
    EXPECT_EQ(R"({"items":[]})", send("POST", path(), check).body);
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("17:30", "18:30")));
    const HttpAnswer answer = send("POST", path(), check);
    EXPECT_EQ(200, answer.status);
    const rapidjson::Document document = json(answer);
    ASSERT_EQ(1U, document["items"].Size());
    EXPECT_EQ(scheduleIds().front(), document["items"][0]["id"].GetString());
    EXPECT_STREQ("Manual", document["items"][0]["method"].GetString());
    EXPECT_THAT(scheduleIds(), SizeIs(1));
}

TEST_F(ProgrammeBooking, Is400ForABodyThatIsNotValid) {
    for (const char* body : {"", R"({"status":"VIEWS"})", R"({"status": "VIEW"})", R"({"status":"view"})",
                             R"({"status":"VIEW","repeat":"EVERYDAY"})", R"({"status":"VIEW","force":true})",
                             R"({"synopsis":"a status"})"}) {
        EXPECT_EQ(400, statusOf("POST", path(), body)) << body;
        EXPECT_EQ(400, statusOf("PUT", path(), body)) << body;
    }
}

TEST_F(ProgrammeBooking, Is404ForAProgrammeOrAStatusOrATimeThatCannotBe) {
    EXPECT_EQ(404, statusOf("POST", scheduleOf("pid-000-99-0-1"), view));
    EXPECT_EQ(404, statusOf("DELETE", scheduleOf("pid-000-99-0-1"), ""));
    EXPECT_EQ(404, statusOf("POST", path(), R"({"name":"x"})")) << "no status";
    EXPECT_EQ(404, statusOf("POST", path(), R"({"status":"VIEW"} x)")) << "not parsed";
    EXPECT_EQ(404, statusOf("POST", path(), R"({"status":"RECORDING"})")) << "a status that is only shown";
    EXPECT_EQ(404, statusOf("POST", scheduleOf(present_), record)) << "it is on";
    EXPECT_EQ(404, statusOf("POST", scheduleOf(past_), view)) << "it is over";
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(ProgrammeBooking, Is409ForAConflictUnlessForced) {
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("18:30", "19:30")));
    const auto before = scheduleIds();
    EXPECT_EQ(409, statusOf("POST", path(), view));
    EXPECT_EQ(409, statusOf("POST", path(), R"({"status":"VIEW","force":"false"})"));
    EXPECT_EQ(before, scheduleIds());
    EXPECT_EQ(201, statusOf("POST", path(), R"({"status":"VIEW","force":"true"})"));
    EXPECT_THAT(scheduleIds(), SizeIs(1));
    EXPECT_NE(before, scheduleIds());
}

TEST_F(ProgrammeBooking, TakesATypeForAStatusUncheckedByTheValidator) {
    EXPECT_EQ(404, statusOf("POST", path(), R"({"type":"SOMETHING"})"));
    EXPECT_EQ(201, statusOf("POST", path(), R"({"type":"RECORD"})"));
}

TEST_F(ProgrammeBooking, Is404ForMethodsThatNeitherReadNorChange) {
    for (const char* method : {"HEAD", "OPTIONS", "PATCH"})
        EXPECT_EQ(404, client_.request(method, "/ws/epg2/" + path()).status) << method;
}

/// The list of schedules, to which bookings by hand are added.
class ManualBooking : public BookingFixture {};

TEST_F(ManualBooking, Is201AndShown) {
    const HttpAnswer answer = send("POST", "schedules", manual("18:00", "19:00"));
    EXPECT_EQ(201, answer.status);
    EXPECT_FALSE(answer.has("location"));
    const rapidjson::Document list = json(get("schedules"));
    ASSERT_EQ(1, list["items_total"].GetInt());
    EXPECT_STREQ("scheduled_event", list["items"][0]["program_name"].GetString());
    EXPECT_STREQ("2026-08-23T18:00:00+00:00", list["items"][0]["start"].GetString());
}

TEST_F(ManualBooking, Is201AndTunesAtOnceToAViewOfWhatIsOn) {
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("12:00", "13:00")));
    EXPECT_EQ("Café Télé", tunedTo());
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(ManualBooking, Is200WithTheEntriesThatItWouldOverlap) {
    const std::string check = manual("18:00", "19:00", R"(,"force":"check_overlap")");
    EXPECT_EQ(R"({"items":[]})", send("POST", "schedules", check).body);
    EXPECT_EQ(201, statusOf("POST", scheduleOf(coming_), record));
    const HttpAnswer answer = send("POST", "schedules", check);
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(1U, json(answer)["items"].Size());
    EXPECT_THAT(scheduleIds(), SizeIs(1));
}

TEST_F(ManualBooking, Is204ForWhateverElseCannotBe) {
    EXPECT_EQ(204, statusOf("PUT", "schedules", manual("18:00", "19:00"))) << "the method";
    EXPECT_EQ(204, statusOf("DELETE", "schedules", "")) << "the method";
    EXPECT_EQ(204, statusOf("POST", "schedules", "{}")) << "not parsed";
    EXPECT_EQ(204, statusOf("POST", "schedules", view)) << "members are missing";
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("19:00", "18:00"))) << "ends before it starts";
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("10:00", "11:00"))) << "is over";
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("18:00", "19:00", R"(,"channel_num":"77")")));
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("18:00", "19:00", R"(,"antenna":"SEA")")));
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("18:00", "19:00", R"(,"start":"soon")")));
    EXPECT_EQ(204, statusOf("POST", "schedules", manual("19:00", "18:00", R"(,"force":"check_overlap")")));
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(ManualBooking, Is400ForABodyThatIsNotValid) {
    EXPECT_EQ(400, statusOf("POST", "schedules", ""));
    EXPECT_EQ(400, statusOf("POST", "schedules", manual("18:00", "19:00", R"(,"force":"maybe")")));
    EXPECT_EQ(400, statusOf("POST", "schedules", R"({"status":"VIEW","repeat":"EVERYDAY"})"));
}

TEST_F(ManualBooking, Is400WithParametersThatMeanNothing) {
    EXPECT_EQ(400, statusOf("POST", "schedules?sort=x", manual("18:00", "19:00")));
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(ManualBooking, Is409ForAConflictUnlessForced) {
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("18:00", "19:00")));
    EXPECT_EQ(409, statusOf("POST", "schedules", manual("18:59", "19:59")));
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("19:00", "20:00"))) << "the entries touch";
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("18:30", "19:00", R"(,"force":"true")")));
    EXPECT_THAT(scheduleIds(), SizeIs(2));
}

/// One schedule, which there is when a test begins.
class SingleBooking : public BookingFixture {
protected:
    void SetUp() override {
        BookingFixture::SetUp();
        ASSERT_EQ(201, statusOf("POST", "schedules", manual("18:00", "19:00")));
        path_ = "schedules/" + scheduleIds().at(0);
    }

    std::string path_;
};

TEST_F(SingleBooking, Is200WhenItIsChanged) {
    EXPECT_EQ(200, statusOf("PUT", path_, manual("20:00", "21:00")));
    EXPECT_STREQ("2026-08-23T20:00:00+00:00", json(get(path_))["start"].GetString());
}

TEST_F(SingleBooking, Is200WhenItIsDeletedAnd404AfterThat) {
    EXPECT_EQ(200, statusOf("DELETE", path_, ""));
    EXPECT_EQ(404, statusOf("DELETE", path_, ""));
    EXPECT_EQ(404, get(path_).status);
    EXPECT_THAT(scheduleIds(), IsEmpty());
}

TEST_F(SingleBooking, Is400ForABodyThatIsNotValid) {
    EXPECT_EQ(400, statusOf("PUT", path_, ""));
    EXPECT_EQ(400, statusOf("PUT", path_, R"({"status":"WATCH"})"));
    EXPECT_THAT(scheduleIds(), SizeIs(1));
}

TEST_F(SingleBooking, Is404ForAMethodAnIdentifierOrAChangeThatCannotBe) {
    EXPECT_EQ(404, statusOf("POST", path_, manual("20:00", "21:00"))) << "the method";
    for (const char* id : {"sch_id_4711", "sch_id_", "17", "sch_id_-1", "x"}) {
        EXPECT_EQ(404, statusOf("PUT", std::string("schedules/") + id, manual("20:00", "21:00"))) << id;
        EXPECT_EQ(404, statusOf("DELETE", std::string("schedules/") + id, "")) << id;
    }
    EXPECT_EQ(404, statusOf("PUT", path_, "{}")) << "not parsed";
    EXPECT_EQ(404, statusOf("PUT", path_, view)) << "members are missing";
    EXPECT_EQ(404, statusOf("PUT", path_, manual("21:00", "20:00"))) << "ends before it starts";
    EXPECT_STREQ("2026-08-23T18:00:00+00:00", json(get(path_))["start"].GetString());
}

TEST_F(SingleBooking, Is400ForMethodsThatNeitherReadNorChange) {
    for (const char* method : {"HEAD", "OPTIONS", "PATCH"}) {
        EXPECT_EQ(400, client_.request(method, "/ws/epg2/" + path_).status) << method;
        EXPECT_EQ(400, client_.request(method, "/ws/epg2/schedules").status) << method;
    }
    EXPECT_EQ(400, get(path_ + "/x").status);
}

/// A set that cannot record.
class NoRecorder : public BookingFixture {
protected:
    static void SetUpTestSuite() {
        EpghostProcess::Arguments options = guideOptions();
        options.insert(options.end(), {"--pvr", "off"});
        startSet(options);
    }
};

TEST_F(NoRecorder, Refuses403ToRecord) {
    const std::string recording = R"({"status":"RECORD","channel_num":"10","antenna":"SATELLITE",)"
                                  R"("start":"2026-08-23T18:00:00+00:00",)"
                                  R"("end":"2026-08-23T19:00:00+00:00","repeat":"ONCE"})";
    for (const char* method : {"POST", "PUT"})
        EXPECT_EQ(403, statusOf(method, scheduleOf(coming_), record)) << method;
    EXPECT_EQ(403, statusOf("POST", "schedules", recording));
    EXPECT_EQ(201, statusOf("POST", "schedules", manual("18:00", "19:00")));
    EXPECT_EQ(403, statusOf("PUT", "schedules/" + scheduleIds().at(0), recording));
    EXPECT_THAT(scheduleIds(), SizeIs(1));
}

TEST_F(NoRecorder, LooksAtTheTextBeforeTheRecorder) {
    EXPECT_EQ(400, statusOf("POST", scheduleOf(coming_), R"({"status":"RECORD","repeat":"NEVER"})"));
}

TEST_F(NoRecorder, IsNotAskedForAType) {
    EXPECT_EQ(201, statusOf("POST", scheduleOf(coming_), R"({"type":"RECORD"})"));
    EXPECT_STREQ("RECORD", json(get(scheduleOf(coming_)))["status"].GetString());
}

}  // namespace
}  // namespace epgset::test
