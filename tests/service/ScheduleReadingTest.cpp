// Schedules as they are read over HTTP: the list, one of them, that of a programme.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

#include "tests/service/BookingFixture.h"
#include "tests/service/HourlyGuide.h"

namespace epgset::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* view = R"({"status":"VIEW"})";

class ScheduleReading : public BookingFixture {};

TEST_F(ScheduleReading, ListWithoutSchedulesIs204) {
    const HttpAnswer answer = get("schedules");
    EXPECT_EQ(204, answer.status);
    EXPECT_EQ("", answer.body);
}

TEST_F(ScheduleReading, ListHoldsEverySchedulesMembersAndTheirNumberAlone) {
    ASSERT_EQ(201, statusOf("POST", scheduleOf(coming_), view));
    ASSERT_EQ(201, statusOf("POST", "schedules", manual("20:00", "21:00")));
    const HttpAnswer answer = get("schedules");
    EXPECT_EQ(200, answer.status);
    const rapidjson::Document list = json(answer);
    EXPECT_THAT(keys(list), ElementsAre("items", "items_total"));
    EXPECT_EQ(2, list["items_total"].GetInt());
    ASSERT_EQ(2U, list["items"].Size());
    for (const auto& item : list["items"].GetArray())
        EXPECT_THAT(keys(item), ElementsAre("antenna", "channel_name", "channel_num", "channel_path", "end",
                                            "id", "program_id", "program_name", "repeat", "start", "status"));
    EXPECT_STREQ(coming_.c_str(), list["items"][0]["program_id"].GetString());
    EXPECT_THAT(list["items"][0]["id"].GetString(), HasSubstr("sch_id_"));
}

TEST_F(ScheduleReading, ListPaysNoHeedToThePageAskedFor) {
    ASSERT_EQ(201, statusOf("POST", scheduleOf(coming_), view));
    ASSERT_EQ(201, statusOf("POST", "schedules", manual("20:00", "21:00")));
    const std::string all = get("schedules").body;
    for (const char* page : {"items_max=1", "items_max=0", "items_start_index=1", "select=name"})
        EXPECT_EQ(all, get(std::string("schedules?") + page).body) << page;
}

TEST_F(ScheduleReading, OfOneEndsWithWhatTheMiddlewareKnows) {
    ASSERT_EQ(201, statusOf("POST", scheduleOf(coming_), view));
    const rapidjson::Document schedule = json(get("schedules/" + scheduleIds().at(0)));
    EXPECT_THAT(keys(schedule),
                ElementsAre("antenna", "channel_id", "channel_name", "channel_num", "end", "id", "program_id",
                            "repeat", "start", "status", "source_path", "storage_path", "method"));
    EXPECT_EQ(scheduleIds().at(0), schedule["id"].GetString());
    EXPECT_EQ(coming_, schedule["program_id"].GetString());
    EXPECT_STREQ("/ws/epg2/channels/cid-003-10", schedule["source_path"].GetString());
    EXPECT_TRUE(schedule["storage_path"].IsNull());
    EXPECT_STREQ("EPG", schedule["method"].GetString());
}

TEST_F(ScheduleReading, OfOneMadeByHandSaysSo) {
    ASSERT_EQ(201, statusOf("POST", "schedules", manual("20:00", "21:00")));
    EXPECT_STREQ("Manual", json(get("schedules/" + scheduleIds().at(0)))["method"].GetString());
}

TEST_F(ScheduleReading, OfAnUnknownOneIs404) {
    for (const char* id : {"sch_id_4711", "sch_id_", "x%27y"}) {
        const HttpAnswer answer = get(std::string("schedules/") + id);
        EXPECT_EQ(404, answer.status) << id;
        EXPECT_EQ("", answer.body);
    }
}

TEST_F(ScheduleReading, OfAProgrammeHoldsBothIdentifiers) {
    ASSERT_EQ(201, statusOf("POST", scheduleOf(coming_), view));
    const rapidjson::Document schedule = json(get(scheduleOf(coming_)));
    EXPECT_THAT(keys(schedule),
                ElementsAre("antenna", "channel_id", "channel_name", "channel_num", "end", "id", "repeat",
                            "schedule_id", "start", "status", "source_path", "storage_path", "method"));
    EXPECT_EQ(coming_, schedule["id"].GetString());
    EXPECT_EQ(scheduleIds().at(0), schedule["schedule_id"].GetString());
    EXPECT_TRUE(schedule["storage_path"].IsNull());
}

TEST_F(ScheduleReading, OfAProgrammeWithoutOneIsNone) {
    const HttpAnswer answer = get(scheduleOf(coming_));
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(R"({"type":"NONE","status":"NONE"})", answer.body);
}

TEST_F(ScheduleReading, OfAnUnknownProgrammeIs404) {
    EXPECT_EQ(404, get(scheduleOf("pid-000-99-0-1")).status);
}

/// A set with a programme an hour, whose guide a test changes so little that the table keeps what it was
/// filled with.
class ChangedGuide : public BookingFixture {
protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<TemporaryFolder>();
        startSet({"--now", "2026-08-23T12:30:00Z", "--guide",
                  folder_->write("guide.xml", hourlyGuide()).string()});
    }

    static void TearDownTestSuite() {
        BookingFixture::TearDownTestSuite();
        folder_.reset();
    }

    /// Lets the set read a guide that lacks the programme of that hour.
    static bool leavesOut(HttpClient& client, int hour) {
        folder_->write("guide.xml", hourlyGuide(hour));
        set().process().signal(SIGHUP);
        for (int attempt = 0; attempt < 1000; ++attempt) {
            if (json(client.get("/set/status"))["programs"].GetInt() == 11) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    static std::unique_ptr<TemporaryFolder> folder_;
};

std::unique_ptr<TemporaryFolder> ChangedGuide::folder_;

TEST_F(ChangedGuide, LeavesTheTablesMembersOfAProgrammeThatIsGone) {
    const std::string programme = programmeId("Hour 20");
    ASSERT_EQ(201, statusOf("POST", scheduleOf(programme), view));
    ASSERT_EQ(200, get("programs/" + programme + "/detail").status);
    EXPECT_THAT(get(scheduleOf(programme)).body, HasSubstr("source_path"));
    ASSERT_TRUE(leavesOut(client_, 20));

    const HttpAnswer schedule = get(scheduleOf(programme));
    EXPECT_EQ(200, schedule.status);
    EXPECT_THAT(schedule.body, HasSubstr("\"status\":\"VIEW\""));
    EXPECT_THAT(schedule.body, Not(HasSubstr("source_path")));
    EXPECT_EQ(404, get("programs/" + programme + "/detail").status);
    EXPECT_EQ(404, statusOf("PUT", scheduleOf(programme), view));
    EXPECT_EQ(200, get("programs/" + programme).status);
    EXPECT_THAT(get("schedules").body, HasSubstr("Hour 20"));
}

}  // namespace
}  // namespace epgset::test
