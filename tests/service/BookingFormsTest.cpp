// The answers to changes of schedules, in both forms that an answer can have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// Two programmes to come on one channel, one beside the other, and one that is over.
const std::string evening = "/ws/epg2/programs/pid-000-1-0-38971/schedule";
const std::string next = "/ws/epg2/programs/pid-000-1-0-39001/schedule";
const std::string over = "/ws/epg2/programs/pid-000-1-0-36391/schedule";
const std::string schedules = "/ws/epg2/schedules";

/// Books channel 2 by hand for an hour from this hour on of a day to come.
std::string manual(const std::string& hour, const std::string& status = "VIEW",
                   const std::string& more = "") {
    return R"({"status":")" + status + R"(","channel_num":"2","antenna":"AIR","start":"2026-08-25T)" + hour +
           R"(:00:00Z","end":"2026-08-25T)" + hour + R"(:59:00Z","repeat":"ONCE")" + more + "}";
}

/// A set of its own for each test, asked in JSON or in XML.
class BookingForms : public ::testing::TestWithParam<const char*> {
protected:
    HttpAnswer ask(const std::string& method, const std::string& target, const std::string& body = "") {
        return client_.send(method, target, body, {std::string("Accept: ") + GetParam()});
    }

    RunningSet set_{{"--now", "2026-08-23T12:00:00Z"}};
    HttpClient client_{set_.url()};
};

TEST_P(BookingForms, OfAProgrammeIsMadeListedAndTakenBack) {
    for (const char* method : {"POST", "PUT"}) {
        EXPECT_EQ(201, ask(method, evening, R"({"status":"RECORD"})").status);
        EXPECT_EQ(409, ask(method, evening, R"({"status":"VIEW"})").status);
        const HttpAnswer overlap = ask(method, evening, R"({"status":"VIEW","force":"check_overlap"})");
        EXPECT_EQ(200, overlap.status);
        EXPECT_THAT(overlap.body, HasSubstr("Around the Regions"));
        EXPECT_EQ(201, ask(method, next, R"({"status":"VIEW"})").status);
        EXPECT_EQ(200, ask(method, next, R"({"status":"NONE"})").status);
        EXPECT_EQ(200, ask("DELETE", evening).status);
        EXPECT_EQ(404, ask(method, over, R"({"status":"VIEW"})").status);
        EXPECT_EQ(404,
                  ask(method, "/ws/epg2/programs/pid-000-1-0-1/schedule", R"({"status":"VIEW"})").status);
    }
    EXPECT_EQ(204, ask("GET", schedules).status);
    EXPECT_THAT(ask("GET", evening).body, HasSubstr("NONE"));
}

TEST_P(BookingForms, ByHandIsMadeChangedAndTakenBack) {
    EXPECT_EQ(201, ask("POST", schedules, manual("20")).status);
    EXPECT_EQ(409, ask("POST", schedules, manual("20")).status);
    const HttpAnswer overlap = ask("POST", schedules, manual("20", "VIEW", R"(,"force":"check_overlap")"));
    EXPECT_EQ(200, overlap.status);
    EXPECT_THAT(overlap.body, HasSubstr("sch_id_1"));
    EXPECT_EQ(204, ask("POST", schedules, R"({"status":"VIEW"})").status);
    const std::string entry = schedules + "/sch_id_1";
    EXPECT_EQ(200, ask("PUT", entry, manual("21")).status);
    EXPECT_THAT(ask("GET", entry).body, HasSubstr("2026-08-25T21:00:00+00:00"));
    EXPECT_EQ(404, ask("PUT", entry, R"({"status":"VIEW"})").status);
    EXPECT_EQ(200, ask("DELETE", entry).status);
    for (const char* method : {"GET", "PUT", "DELETE"})
        EXPECT_EQ(404, ask(method, entry, manual("22")).status) << method;
}

TEST_P(BookingForms, OfAChannelWithoutProgrammesStandsBesideTheProgrammes) {
    EXPECT_EQ(201, ask("POST", schedules, manual("20")).status);
    const HttpAnswer booked = ask("GET", schedules);
    EXPECT_EQ(200, booked.status);
    EXPECT_THAT(booked.body, HasSubstr("scheduled_event"));
    EXPECT_THAT(ask("GET", "/ws/epg2/programs?name=scheduled_event").body, HasSubstr("scheduled_event"));
}

TEST_P(BookingForms, OfARecordingIsStopped) {
    EXPECT_EQ(200, ask("POST", "/ws/epg2/stopRecording").status);
    EXPECT_EQ(200, ask("POST", "/ws/epg2/stopRecording?channel_id=cid-000-1").status);
}

TEST_P(BookingForms, IsRefusedWhereTheSetCannotRecord) {
    RunningSet set({"--now", "2026-08-23T12:00:00Z", "--pvr", "off"});
    HttpClient client(set.url());
    const HttpClient::Headers accept = {std::string("Accept: ") + GetParam()};
    const std::string record = R"({"status":"RECORD"})";
    EXPECT_EQ(201, client.send("POST", schedules, manual("20"), accept).status);
    EXPECT_EQ(403, client.send("POST", evening, record, accept).status);
    EXPECT_EQ(403, client.send("PUT", evening, record, accept).status);
    EXPECT_EQ(403, client.send("POST", schedules, manual("21", "RECORD"), accept).status);
    EXPECT_EQ(403, client.send("PUT", schedules + "/sch_id_1", manual("21", "RECORD"), accept).status);
}

TEST_P(BookingForms, OfNothingIsFoundWithoutRows) {
    EXPECT_EQ(204, ask("GET", "/ws/epg2/programs?name=zebra").status);
    EXPECT_EQ(204, ask("GET", "/ws/epg2/channels/cid-000-1/programs?name=zebra").status);
    const HttpAnswer failed = ask("GET", "/ws/epg2?sql=SELECT%20nothing%20FROM%20myView");
    EXPECT_EQ(204, failed.status);
    EXPECT_THAT(failed.header("epg-sql-error"), Not(""));
}

INSTANTIATE_TEST_SUITE_P(Form, BookingForms, ::testing::Values("application/json", "application/xml"),
                         [](const auto& form) {
                             return std::string(form.param).substr(std::string("application/").size());
                         });

}  // namespace
}  // namespace epgset::test
