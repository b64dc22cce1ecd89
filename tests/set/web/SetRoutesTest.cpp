#include "set/web/SetRoutes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "set/guide/GuideBuilder.h"
#include "set/log/LogCapture.h"
#include "set/middleware/Clock.h"
#include "set/middleware/GuideWindow.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "set/recorder/Recordings.h"
#include "set/web/PluginLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WebRequests.h"

namespace epgset {
namespace {

using ::testing::HasSubstr;

/// The routes around the test's plug-in.
class SetRoutesTest : public ::testing::Test {
protected:
    WebResponse request(const std::string& method, const std::string& path, const std::string& query = "",
                        const WebHeaders& headers = {}) {
        const WebRequest sent = test::webRequest(method, path, query, "", headers);
        auto atOnce = routes_.answerAtOnce(sent);
        return atOnce ? *atOnce : routes_.answerInTurn(sent);
    }

    LogCapture log_{Container::Logger::Warning};
    PluginLibrary library_{TEST_PLUGIN};
    PluginHost host_{library_.descriptor()};
    SetRoutes routes_{host_, SetFacts{"no-device", "Europe/Paris"}};
};

TEST_F(SetRoutesTest, GiveWhatIsBelowTheMountPointToThePlugin) {
    const WebResponse response = request("PUT", "//ws//echo/a%2Fb", "x=%41");
    EXPECT_EQ(200, response.status);
    EXPECT_THAT(response.body, HasSubstr("method PUT\npath echo/a%2Fb\nquery x=%41\n"));
}

TEST_F(SetRoutesTest, GiveTheMountPointItselfToThePlugin) {
    for (const char* path : {"/ws", "/ws/", "//ws//"}) {
        const WebResponse response = request("GET", path);
        EXPECT_EQ(404, response.status) << path;
        EXPECT_EQ("empty path", response.body) << path;
    }
}

TEST_F(SetRoutesTest, LeaveOnlyThePluginsRequestsForTheirTurn) {
    WebRequest sent;
    sent.method = "GET";
    sent.path = "/ws/echo";
    EXPECT_FALSE(routes_.answerAtOnce(sent));
    for (const char* path : {"/", "/set/status", "/else"}) {
        sent.path = path;
        EXPECT_TRUE(routes_.answerAtOnce(sent)) << path;
    }
}

TEST_F(SetRoutesTest, RefuseAnEncodedNul) {
    EXPECT_EQ(400, request("GET", "/ws/echo%00").status);
    EXPECT_EQ(400, request("GET", "/ws/echo", "a=%00").status);
    EXPECT_EQ(400, request("GET", "/set/status", "%00").status);
    EXPECT_EQ(200, request("GET", "/ws/echo", "a=%2500").status);
}

TEST_F(SetRoutesTest, AnswerOtherPathsWith404) {
    for (const char* path :
         {"/else", "/set", "/set/status/more", "/set%2Fstatus", "/WS/epg2", "*", "ws/epg2x", "host:80"}) {
        const WebResponse response = request("GET", path);
        EXPECT_EQ(404, response.status) << path;
    }
}

TEST_F(SetRoutesTest, AnswerOtherMethodsOnTheSetsOwnPathsWith405) {
    for (const char* method : {"POST", "PUT", "DELETE", "OPTIONS", "get", "X"}) {
        for (const char* path : {"/", "/set/status"}) {
            const WebResponse response = request(method, path);
            EXPECT_EQ(405, response.status) << method << path;
            EXPECT_EQ("GET, HEAD", headerValue(response.headers, "Allow"));
        }
    }
}

TEST_F(SetRoutesTest, NameTheResourcesOnTheFrontPage) {
    const WebResponse response = request("GET", "/");
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("text/html;charset=utf-8", headerValue(response.headers, "Content-Type"));
    EXPECT_THAT(response.body, HasSubstr("/ws/epg2/channels"));
    EXPECT_THAT(response.body, HasSubstr("/set/status"));
}

TEST_F(SetRoutesTest, TagThePluginsAnswersAndNoOthers) {
    const std::string tag = headerValue(request("GET", "/ws/status/200").headers, "ETag");
    ASSERT_FALSE(tag.empty());
    EXPECT_EQ(304, request("GET", "/ws/status/200", "", {{"If-None-Match", tag}}).status);
    EXPECT_EQ("", headerValue(request("GET", "/set/status").headers, "ETag"));
    EXPECT_EQ("", headerValue(request("GET", "/ws/status/201").headers, "ETag"));
}

TEST_F(SetRoutesTest, TellTheStateOfTheSet) {
    ManualClock clock(1787443200);  // 2026-08-23T00:00:00Z
    useClock(&clock);
    GuideBuilder builder;
    Channel one;
    one.id = "one";
    const std::size_t handle = builder.addChannel(one);
    GuideBuilder::ProgrammeDraft programme;
    programme.start = 1000;
    programme.stop = 2000;
    programme.eventId = 1;
    builder.addProgramme(handle, programme);
    builder.setProgrammesDropped(7);
    useGuide(builder.finish());
    const WebResponse response = request("GET", "/set/status");
    clock.setZone(-210, true);
    const WebResponse west = request("GET", "/set/status");
    useClock(nullptr);
    useGuide(GuideBuilder().finish());

    EXPECT_EQ(200, response.status);
    EXPECT_EQ("application/json;charset=utf-8", headerValue(response.headers, "Content-Type"));
    EXPECT_EQ(R"({"clock":"2026-08-23T00:00:00+00:00","channel":null,"recordings":[],"pvr":"no-device",)"
              R"("zone":"Europe/Paris","channels":1,"programs":1,"programs_dropped":7,"guides":[],)"
              R"("tuners":{"total":0,"in_use":0},"storage":{"folder":null,"free":null},"next":[]})",
              response.body);
    EXPECT_THAT(west.body, HasSubstr("2026-08-22T21:30:00-02:30"));
}

TEST_F(SetRoutesTest, TellWhatTheSetsPartsKnow) {
    ManualClock clock(1787443200);  // 2026-08-23T00:00:00Z
    useClock(&clock);
    SetState state;
    state.guides = {{"tv.xml", 1787443200, 3, 40, 2, ""}, {"http://x/", 0, 0, 0, 0, "http://x/: \"gone\""}};
    state.tuners = 2;
    state.tunersInUse = 1;
    state.recordingsFolder = "/disk";
    state.freeBytes = 5000000000;
    state.next = {{17, 1787446800, 3, 7, 2, "News", CReminder::RESERVE_SERIES},
                  {18, 1787450400, 3, 7, 0, "", CReminder::RESERVE_VIEW}};
    const std::string text = statusDocument({"on", "UTC", [&state] { return state; }});
    useClock(nullptr);
    EXPECT_THAT(
        text,
        HasSubstr(
            R"("guides":[{"guide":"tv.xml","time":"2026-08-23T00:00:00+00:00","channels":3,"programs":40,)"
            R"("skipped":2,"error":null},{"guide":"http://x/","time":null,"channels":0,"programs":0,)"
            R"("skipped":0,"error":"http://x/: \"gone\""}],"tuners":{"total":2,"in_use":1},)"
            R"("storage":{"folder":"/disk","free":5000000000},"next":[)"
            R"({"schedule_id":"sch_id_17","channel":"cid-003-7-2","start":"2026-08-23T01:00:00+00:00",)"
            R"("title":"News","type":"SERIES"},)"
            R"({"schedule_id":"sch_id_18","channel":"cid-003-7","start":"2026-08-23T02:00:00+00:00",)"
            R"("title":"","type":"VIEW"}]})"));
}

TEST_F(SetRoutesTest, CountWhatTheyAnswer) {
    request("GET", "/ws/status/200");
    request("GET", "/no/such/resource");
    const WebResponse response = request("GET", "/set/metrics");
    EXPECT_EQ("text/plain; version=0.0.4; charset=utf-8", headerValue(response.headers, "Content-Type"));
    EXPECT_THAT(response.body, HasSubstr(R"({method="GET",resource="other",status="404"})"));
    EXPECT_THAT(response.body, HasSubstr(R"(epghost_request_seconds_total{stage="plugin"})"));
    EXPECT_THAT(response.body, HasSubstr("epghost_tables_made_total "));
    EXPECT_EQ(405, request("POST", "/set/metrics").status);
}

TEST_F(SetRoutesTest, TellTheChannelThatIsTunedTo) {
    GuideBuilder builder;
    Channel channel;
    channel.tvMode = 3;
    channel.major = 7;
    channel.minor = 2;
    channel.name = "The \"Seventh\"";
    builder.addChannel(channel);
    useGuide(builder.finish());
    g_pAppWindow->ChangeChannel(7, 2);
    const std::string tuned = request("GET", "/set/status").body;
    useGuide(nullptr);
    const std::string gone = request("GET", "/set/status").body;
    guideWindow().reset();
    EXPECT_THAT(tuned, HasSubstr(R"("channel":{"id":"cid-003-7-2","num":"7-2","name":"The \"Seventh\""},)"));
    EXPECT_THAT(gone, HasSubstr(R"("channel":null,)"));
}

TEST_F(SetRoutesTest, TellTheRecordingsThatRun) {
    ManualClock clock(1787443200);  // 2026-08-23T00:00:00Z
    useClock(&clock);
    const test::TemporaryFolder folder;
    const auto file = folder.write("a.ts", "12345");
    Channel channel;
    channel.major = 5;
    recordings().start(channel, 17, file);
    channel.major = 6;
    recordings().start(channel, 18, folder.path() / "\xFF.ts");
    clock.advance(60);
    const std::string body = request("GET", "/set/status").body;
    recordings().stop(0, 5, 0);
    recordings().stop(0, 6, 0);
    const std::string after = request("GET", "/set/status").body;
    useClock(nullptr);
    const std::string path = folder.path().string();
    EXPECT_THAT(
        body, HasSubstr(R"("recordings":[{"channel":"cid-000-5","schedule_id":"sch_id_17","file":")" + path +
                        R"(/a.ts","start":"2026-08-23T00:00:00+00:00","bytes":5},)"
                        R"({"channel":"cid-000-6","schedule_id":"sch_id_18","file":")" +
                        path + "/\xEF\xBF\xBD" + R"(.ts","start":"2026-08-23T00:00:00+00:00","bytes":0}],)"));
    EXPECT_THAT(after, HasSubstr(R"("recordings":[],)"));
}

}  // namespace
}  // namespace epgset
