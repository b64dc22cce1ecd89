// A set at noon of a day, on which tests book programmes and times.
#pragma once

#include <gmock/gmock.h>
#include <rapidjson/document.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {

/// The five channels at 12:45: on channel 1 "Midday News" is over and "Weather" on, on the satellite's
/// channel 10 "Éclairs à la carte" is to come at 18:00. Every test begins without bookings and tuned to
/// nothing it knows of.
class BookingFixture : public ServiceFixture {
protected:
    static EpghostProcess::Arguments guideOptions() {
        const std::string data = EPG_TEST_DATA;
        return {"--now",    "2026-08-23T12:45:00Z",      "--guide", data + "/five-channels.xml",
                "--lineup", data + "/five-channels.toml"};
    }

    static void SetUpTestSuite() { startSet(guideOptions()); }

    void SetUp() override {
        for (const std::string& id : scheduleIds())
            ASSERT_EQ(200, client_.request("DELETE", "/ws/epg2/schedules/" + id).status);
        past_ = programmeId("Midday News");
        present_ = programmeId("Weather&channel_name=News 24");
        coming_ = programmeId("clairs");
    }

    /// The answer as a JSON document; fails the test when it is none.
    static rapidjson::Document json(const HttpAnswer& answer) {
        rapidjson::Document document;
        document.Parse(answer.body.c_str());
        EXPECT_FALSE(document.HasParseError()) << answer.status << answer.body;
        return document;
    }

    /// The names of an object's members, in their order.
    static std::vector<std::string> keys(const rapidjson::Value& object) {
        std::vector<std::string> names;
        for (const auto& member : object.GetObject())
            names.emplace_back(member.name.GetString());
        return names;
    }

    HttpAnswer get(const std::string& path) { return client_.get("/ws/epg2/" + path); }
    HttpAnswer send(const std::string& method, const std::string& path, const std::string& body) {
        return client_.send(method, "/ws/epg2/" + path, body);
    }
    int statusOf(const std::string& method, const std::string& path, const std::string& body) {
        return send(method, path, body).status;
    }

    /// The identifiers of all schedules, in the order of the list.
    std::vector<std::string> scheduleIds() {
        std::vector<std::string> ids;
        const HttpAnswer answer = get("schedules");
        if (answer.status == 204) return ids;
        const rapidjson::Document document = json(answer);
        for (const auto& item : document["items"].GetArray())
            ids.emplace_back(item["id"].GetString());
        return ids;
    }

    /// The identifier of the only programme that a name finds; more parameters may follow the name.
    std::string programmeId(std::string name) {
        for (std::size_t at = 0; (at = name.find(' ', at)) != std::string::npos;)
            name.replace(at, 1, "+");
        const HttpAnswer answer = get("programs?select=id&name=" + name);
        if (answer.status != 200) return "(not found)";
        const rapidjson::Document document = json(answer);
        if (document["items"].Size() != 1) return "(not the only one)";
        return document["items"][0]["id"].GetString();
    }

    std::string scheduleOf(const std::string& programme) const {
        return "programs/" + programme + "/schedule";
    }

    /// The body of a booking by hand of the satellite's channel 10 from the given clock times of the day,
    /// with more members where `more` has some.
    static std::string manual(const std::string& start, const std::string& end,
                              const std::string& more = "") {
        return R"({"status":"VIEW","channel_num":"10","antenna":"SATELLITE","start":"2026-08-23T)" + start +
               R"(:00+00:00","end":"2026-08-23T)" + end + R"(:00+00:00","repeat":"ONCE")" + more + "}";
    }

    /// The name of the channel that the set is tuned to.
    std::string tunedTo() {
        const rapidjson::Document status = json(client_.get("/set/status"));
        return status["channel"].IsNull() ? "" : status["channel"]["name"].GetString();
    }

    std::string past_;
    std::string present_;
    std::string coming_;
};

}  // namespace epgset::test
