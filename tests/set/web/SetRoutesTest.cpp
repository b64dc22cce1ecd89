#include "set/web/SetRoutes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "set/guide/GuideBuilder.h"
#include "set/log/LogCapture.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ManualClock.h"
#include "set/middleware/Television.h"
#include "set/web/PluginLibrary.h"

namespace epgset {
namespace {

using ::testing::HasSubstr;

/// The routes around the test's plug-in.
class SetRoutesTest : public ::testing::Test {
protected:
    WebResponse request(const std::string& method, const std::string& path, const std::string& query = "",
                        const WebHeaders& headers = {}) {
        WebRequest sent;
        sent.method = method;
        sent.path = path;
        sent.query = query;
        sent.headers = headers;
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
              R"("zone":"Europe/Paris","channels":1,"programs":1,"programs_dropped":7})",
              response.body);
    EXPECT_THAT(west.body, HasSubstr("2026-08-22T21:30:00-02:30"));
}

}  // namespace
}  // namespace epgset
