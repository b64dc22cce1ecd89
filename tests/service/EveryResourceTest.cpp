// What holds for every resource alike: its two forms, its entity tag, bad parameters, bodies that are too
// long.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

/// A resource with every method that does something, and a request of it that finds something.
struct ServedResource {
    std::string path;
    std::vector<std::string> methods;
};

const std::string programme = "pid-000-1-0-38971";

const std::vector<ServedResource> resources = {
    {"/ws/epg2/channels", {"GET"}},
    {"/ws/epg2/channels/cid-000-1", {"GET"}},
    {"/ws/epg2/channels/cid-000-1/programs", {"GET"}},
    {"/ws/epg2/programs", {"GET"}},
    {"/ws/epg2/programs/" + programme, {"GET"}},
    {"/ws/epg2/programs/" + programme + "/detail", {"GET"}},
    {"/ws/epg2/programs/" + programme + "/schedule", {"GET", "POST", "PUT", "DELETE"}},
    {"/ws/epg2/schedules", {"GET", "POST"}},
    {"/ws/epg2/schedules/sch_id_1", {"GET", "PUT", "DELETE"}},
    {"/ws/epg2/recordingAvailable", {"GET"}},
    {"/ws/epg2/recordingSpec", {"GET"}},
    {"/ws/epg2/stopRecording", {"POST"}},
    {"/ws/epg2/antennas", {"GET"}},
    {"/ws/epg2/UPnP_Info", {"GET"}},
};

const std::string countChannels = "/ws/epg2?sql=SELECT%20count(*)%20FROM%20myView";

std::vector<std::string> readTargets() {
    std::vector<std::string> targets = {countChannels};
    for (const ServedResource& resource : resources) {
        if (resource.methods.front() == "GET") targets.push_back(resource.path);
    }
    return targets;
}

const HttpClient::Headers acceptXml = {"Accept: application/xml"};

/// The demo guide with one programme booked, `sch_id_1`.
class EveryResource : public ServiceFixture {
protected:
    void SetUp() override {
        if (client_.get("/ws/epg2/schedules").status == 200) return;
        const std::string path = "/ws/epg2/programs/" + programme + "/schedule";
        ASSERT_EQ(201, client_.send("POST", path, R"({"status":"VIEW"})").status);
    }
};

TEST_F(EveryResource, AnswersAsJsonAndAsXml) {
    for (const std::string& target : readTargets()) {
        const HttpAnswer json = client_.get(target);
        EXPECT_EQ(200, json.status) << target;
        EXPECT_EQ("application/json;charset=utf-8", json.header("content-type")) << target;
        EXPECT_THAT(json.body, StartsWith("{")) << target;
        const HttpAnswer xml = client_.get(target, acceptXml);
        EXPECT_EQ(200, xml.status) << target;
        EXPECT_EQ("application/xml;charset=utf-8", xml.header("content-type")) << target;
        EXPECT_THAT(xml.body, StartsWith("<?xml")) << target;
    }
}

TEST_F(EveryResource, IsNotSentAgainToAClientThatHasIt) {
    for (const std::string& target : readTargets()) {
        const std::string tag = client_.get(target).header("etag");
        EXPECT_EQ(304, client_.get(target, {"If-None-Match: " + tag}).status) << target;
    }
}

TEST_F(EveryResource, RefusesAParameterThatMeansNothing) {
    for (const ServedResource& resource : resources) {
        for (const std::string& method : resource.methods)
            EXPECT_EQ(400, client_.request(method, resource.path + "?sort=x").status)
                << method << resource.path;
    }
}

TEST_F(EveryResource, DoesNotLookAtABodyThatIsTooLong) {
    const std::string body(2097153, ' ');
    for (const ServedResource& resource : resources) {
        for (const std::string& method : resource.methods)
            EXPECT_EQ(404, client_.send(method, resource.path, body).status) << method << resource.path;
    }
}

TEST_F(EveryResource, RefusesAnEncodedNul) {
    for (const char* target : {"/", "/set/status", "/set/metrics", "/set/events", "/ws/epg2?sql=%00"})
        EXPECT_EQ(400, client_.get(std::string(target) + "?%00").status) << target;
}

TEST_F(EveryResource, ThatIsAListAnswersWithTheMembersSelected) {
    const std::string all =
        "name|id|channel_num|channel_name|program_name|scrambled|antenna|service_type|start|end";
    for (const char* list : {"/ws/epg2/channels", "/ws/epg2/programs"}) {
        const std::string body = client_.get(list + ("?items_max=1&select=" + all)).body;
        for (const char* member :
             {"name", "id", "channel_num", "scrambled", "antenna", "service_type", "start", "end"})
            EXPECT_THAT(body, HasSubstr('"' + std::string(member) + "\":")) << list;
        EXPECT_THAT(body, Not(HasSubstr("thumb_uri"))) << list;
    }
    EXPECT_THAT(client_.get("/ws/epg2/channels?items_max=1&select=program_name").body,
                HasSubstr("\"program_name\":"));
    EXPECT_THAT(client_.get("/ws/epg2/programs?items_max=1&select=channel_name").body,
                HasSubstr("\"channel_name\":"));
}

TEST_F(EveryResource, IsCounted) {
    const HttpAnswer metrics = client_.get("/set/metrics");
    EXPECT_EQ(200, metrics.status);
    EXPECT_EQ("text/plain; version=0.0.4; charset=utf-8", metrics.header("content-type"));
    EXPECT_THAT(metrics.body,
                HasSubstr("epghost_http_answers_total{method=\"GET\",resource=\"/ws/epg2/schedules\""));
}

TEST_F(EveryResource, AnswersToOtherMethodsAsItsKindDoes) {
    for (const auto& [path, status] : std::vector<std::pair<std::string, int>>{
             {"/ws/epg2/channels", 404},
             {"/ws/epg2/programs", 404},
             {"/ws/epg2/programs/" + programme + "/schedule", 404},
             {"/ws/epg2/schedules", 400},
             {"/ws/epg2/schedules/sch_id_1", 400},
             {"/ws/epg2/recordingAvailable", 200},
             {"/ws/epg2/recordingSpec", 200},
             {"/ws/epg2/stopRecording", 200},
             {"/ws/epg2/antennas", 200},
             {"/ws/epg2/UPnP_Info", 200},
             {countChannels, 200},
             {"/set/status", 405},
             {"/", 405},
         })
        EXPECT_EQ(status, client_.request("PATCH", path).status) << path;
}

}  // namespace
}  // namespace epgset::test
