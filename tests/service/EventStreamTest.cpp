// The set's events over HTTP.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

const std::string events = "/set/events";
const std::string booking = "/ws/epg2/programs/pid-000-1-0-38971/schedule";

class EventStream : public ServiceFixture {
protected:
    /// What a client is sent first: the number that it begins at.
    std::string firstId() {
        const std::string begin = client_.listen(events, "\n\n").body;
        EXPECT_THAT(begin, MatchesRegex("retry: [0-9]+\nid: [0-9]+\n\n"));
        const std::size_t id = begin.find("id: ") + 4;
        return begin.substr(id, begin.find('\n', id) - id);
    }
};

TEST_F(EventStream, TellsWhatHappenedSinceTheNumberThatAClientStates) {
    const std::string last = firstId();
    ASSERT_EQ(201, client_.send("POST", booking, R"({"status":"VIEW"})").status);
    ASSERT_EQ(200, client_.send("DELETE", booking, "").status);
    const HttpAnswer answer =
        client_.listen(events, "schedule-removed\ndata: {\"path\":\"/ws/epg2/schedules/sch_id_1\"}\n\n",
                       {"Last-Event-ID: " + last});
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ("text/event-stream", answer.header("content-type"));
    EXPECT_EQ("no-store", answer.header("cache-control"));
    EXPECT_THAT(answer.body, ContainsRegex("id: [0-9]+\nevent: schedule-added\n"
                                           "data: \\{\"path\":\"/ws/epg2/schedules/sch_id_1\"\\}\n\nid: "));
}

TEST_F(EventStream, TellsAClientWithAnUnknownNumberToReadEverythingAgain) {
    for (const char* number : {"1", "none", "99999999999999999999"}) {
        const std::string body =
            client_.listen(events, "}\n\n", {std::string("Last-Event-ID: ") + number}).body;
        EXPECT_THAT(body, HasSubstr("event: reset\ndata: {\"path\":\"/ws/epg2\"}\n\n")) << number;
    }
}

TEST_F(EventStream, IsOnlyRead) {
    const HttpAnswer head = client_.head(events);
    EXPECT_EQ(200, head.status);
    EXPECT_EQ("text/event-stream", head.header("content-type"));
    EXPECT_EQ(405, client_.send("POST", events, "x").status);
    EXPECT_EQ(400, client_.get(events + "?%00").status);
}

TEST(CrowdedEventStream, RefusesAClientWhenTooManyListen) {
    RunningSet set({"--guide", EPG_TEST_DATA "/small.xml"});
    std::vector<std::unique_ptr<RawConnection>> listeners;
    for (int number = 0; number < 64; ++number) {
        listeners.push_back(std::make_unique<RawConnection>(set.url()));
        listeners.back()->send("GET /set/events HTTP/1.0\r\n\r\n");
        ASSERT_THAT(listeners.back()->receiveUntil("\n\n"), HasSubstr("200 OK"));
    }
    const HttpAnswer refused = HttpClient(set.url()).get(events);
    EXPECT_EQ(503, refused.status);
    EXPECT_EQ("60", refused.header("retry-after"));
}

}  // namespace
}  // namespace epgset::test
