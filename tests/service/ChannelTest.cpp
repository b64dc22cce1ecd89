// The channel resources over HTTP: what a companion application sees of a small guide.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <rapidjson/document.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using Names = std::vector<std::string>;

/// Five channels: 1 News 24, 2 O'Neil & Friends (radio), 10 Café Télé (satellite, scrambled), 7-2 Sub
/// News, and 9 Nothing On without programmes.
class Channels : public ServiceFixture {
protected:
    static void SetUpTestSuite() {
        const std::string data = EPG_TEST_DATA;
        startSet({"--now", "2026-08-23T12:00:00Z", "--guide", data + "/five-channels.xml", "--lineup",
                  data + "/five-channels.toml"});
    }

    HttpAnswer list(const std::string& query) { return client_.get("/ws/epg2/channels" + query); }

    /// The answer as a JSON document; fails the test when it is none.
    static rapidjson::Document json(const HttpAnswer& answer) {
        rapidjson::Document document;
        document.Parse(answer.body.c_str());
        EXPECT_FALSE(document.HasParseError()) << answer.body;
        return document;
    }

    /// One text member of every item, in their order.
    static Names members(const HttpAnswer& answer, const char* member) {
        Names names;
        EXPECT_EQ(200, answer.status);
        const rapidjson::Document document = json(answer);
        for (const auto& item : document["items"].GetArray())
            names.emplace_back(item[member].GetString());
        return names;
    }

    Names namesOf(const std::string& query) { return members(list(query), "name"); }
    int statusOf(const std::string& query) { return list(query).status; }
};

TEST_F(Channels, ListEveryChannelOnceWithTheCounts) {
    const HttpAnswer answer = list("");
    EXPECT_THAT(members(answer, "name"),
                UnorderedElementsAre("News 24", "O'Neil & Friends", "Café Télé", "Sub News", "Nothing On"));
    const rapidjson::Document document = json(answer);
    EXPECT_EQ(0, document["items_start_index"].GetInt());
    EXPECT_EQ(5, document["items_count"].GetInt());
    EXPECT_EQ(5, document["items_total"].GetInt());
}

TEST_F(Channels, CarryTheirMembersInTheOrderOfTheirKeys) {
    EXPECT_EQ(
        R"({"items":[{"antenna":"SATELLITE","channel_num":"10","channel_path":"/ws/epg2/channels/cid-003-10",)"
        R"("id":"cid-003-10","name":"Café Télé","scrambled":true,"service_type":"TV",)"
        R"("thumb_uri":"about:blank","category":"TBD"}],)"
        R"("items_start_index":0,"items_count":1,"items_total":1})",
        list("?antenna=SATELLITE").body);
}

TEST_F(Channels, AreOneObjectEachAtTheirOwnPath) {
    const HttpAnswer answer = client_.get("/ws/epg2/channels/cid-000-7-2");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(R"({"antenna":"AIR","channel_num":"7-2","channel_path":"/ws/epg2/channels/cid-000-7-2",)"
              R"("id":"cid-000-7-2","name":"Sub News","scrambled":false,"service_type":"TV"})",
              answer.body);
}

TEST_F(Channels, ThatDoNotExistAre404WithoutABody) {
    for (const char* path : {"/ws/epg2/channels/cid-000-99", "/ws/epg2/channels/x%27y"}) {
        const HttpAnswer answer = client_.get(path);
        EXPECT_EQ(404, answer.status) << path;
        EXPECT_EQ("", answer.body);
        EXPECT_EQ("no-cache", answer.header("cache-control"));
    }
}

TEST_F(Channels, AreFilteredByWhatTheyAre) {
    EXPECT_THAT(namesOf("?scrambled=true"), ElementsAre("Café Télé"));
    EXPECT_THAT(namesOf("?service_type=RADIO"), ElementsAre("O'Neil & Friends"));
    EXPECT_THAT(namesOf("?channel_num=7-2"), ElementsAre("Sub News"));
    EXPECT_THAT(namesOf("?antenna=AIR&scrambled=false&service_type=TV"),
                UnorderedElementsAre("News 24", "Sub News", "Nothing On"));
}

TEST_F(Channels, AreSearchedByNameWhateverCaseAndAccents) {
    EXPECT_THAT(namesOf("?name=news"), UnorderedElementsAre("News 24", "Sub News"));
    EXPECT_THAT(namesOf("?name=CAFE"), ElementsAre("Café Télé"));
    EXPECT_THAT(namesOf("?name=t%C3%A9l%C3%A9"), ElementsAre("Café Télé"));
}

TEST_F(Channels, AreFoundByTheProgrammesThatTheyCarry) {
    EXPECT_THAT(namesOf("?program_name=weather"), UnorderedElementsAre("News 24", "Sub News"));
    // A channel without programmes has an empty text for a start, which SQLite puts behind every number.
    EXPECT_THAT(namesOf("?start=2026-08-23T18:00:00Z"), UnorderedElementsAre("Café Télé", "Nothing On"));
    EXPECT_THAT(namesOf("?start=2026-08-23T12:00:00Z&end=2026-08-23T12:30:00+00:00"), ElementsAre("News 24"));
}

TEST_F(Channels, AreSortedByOneMember) {
    EXPECT_THAT(namesOf("?sort=name&sort_order=descend"),
                ElementsAre("Sub News", "O'Neil & Friends", "Nothing On", "News 24", "Café Télé"));
    // Numbers are texts: 10 comes before 2.
    EXPECT_THAT(members(list("?sort=channel_num&sort_order=ascend"), "channel_num"),
                ElementsAre("1", "10", "2", "7-2", "9"));
}

TEST_F(Channels, ArePaged) {
    EXPECT_THAT(namesOf("?sort=name&items_max=2&items_start_index=1"), ElementsAre("News 24", "Nothing On"));
    const rapidjson::Document page = json(list("?items_max=2&items_start_index=4"));
    EXPECT_EQ(4, page["items_start_index"].GetInt());
    EXPECT_EQ(1, page["items_count"].GetInt());
    EXPECT_EQ(5, page["items_total"].GetInt());
    const rapidjson::Document beyond = json(list("?items_start_index=2147483647&items_max=2147483647"));
    EXPECT_EQ(0U, beyond["items"].Size());
    EXPECT_EQ(5, beyond["items_total"].GetInt());
}

TEST_F(Channels, AnswerWithTheSelectedMembersAlone) {
    EXPECT_EQ(R"({"items":[{"id":"cid-000-1","name":"News 24"}],)"
              R"("items_start_index":0,"items_count":1,"items_total":1})",
              list("?channel_num=1&select=name%7Cid").body);
    EXPECT_EQ(R"({"end":"2026-08-23T14:00:00+00:00","start":"2026-08-23T12:00:00+00:00"})",
              list("?channel_num=2&select=start|end").body.substr(10, 71));
}

TEST_F(Channels, WithoutAMatchAre204WithoutABody) {
    for (const char* query : {"?name=zebra", "?antenna=air", "?name=O%27Neil"}) {
        const HttpAnswer answer = list(query);
        EXPECT_EQ(204, answer.status) << query;
        EXPECT_EQ("", answer.body);
    }
}

TEST_F(Channels, RefuseParametersThatMeanNothing) {
    for (const char* query :
         {"?sort=Name", "?sort=channel_id", "?sort=", "?sort_order=ASC", "?scrambled=TRUE", "?scrambled=1",
          "?select=name|x", "?start=yesterday", "?start=2026-08-23", "?start=2040-01-01T00:00:00Z",
          "?end=2026-08-23T12:00:00.5Z", "?start=2026-08-23T10:00:00Z&end=2026-08-23T09:00:00Z",
          "?items_max=0", "?items_max=x", "?items_max=-5", "?items_start_index=-1"})
        EXPECT_EQ(400, statusOf(query)) << query;
}

TEST_F(Channels, TakeParametersAtTheirEdges) {
    for (const char* query :
         {"?select=", "?select=|name|", "?items_max=5x", "?items_start_index=x", "?unknown=1",
          "?start=2026-08-23T12:00:00Z&end=2026-08-23T14:00:00Z", "?items_max="})
        EXPECT_THAT(statusOf(query), ::testing::AnyOf(200, 204)) << query;
    EXPECT_EQ(204, statusOf("?sort_order=descend"));  // a direction without a sort is no statement
}

TEST_F(Channels, RefuseOtherMethodsWith404) {
    for (const char* method : {"POST", "PUT", "DELETE"}) {
        EXPECT_EQ(404, client_.send(method, "/ws/epg2/channels", "").status) << method;
        EXPECT_EQ(404, client_.send(method, "/ws/epg2/channels/cid-000-1", "").status) << method;
    }
}

TEST_F(Channels, AreNotFoundUnderOtherShapesOfPath) {
    for (const char* path : {"/ws/epg2/channels/cid-000-1/foo", "/ws/epg2/channels/cid-000-1/programs/x",
                             "/ws/epg2/Channels", "/ws/epg2/unknown"})
        EXPECT_EQ(400, client_.get(path).status) << path;
    EXPECT_EQ(404, client_.get("/ws/epg2").status);
    EXPECT_EQ(404, client_.get("/ws/epg2?x=1&sql=select").status);
    EXPECT_EQ(404, client_.get("/ws/other/channels").status);
}

TEST_F(Channels, CheckParametersBeforeAnyResourceIsLookedAt) {
    EXPECT_EQ(400, client_.request("DELETE", "/ws/epg2/antennas?sort=x").status);
    EXPECT_EQ(200, client_.request("DELETE", "/ws/epg2/antennas?items_max=0").status);
    EXPECT_EQ(400, client_.get("/ws/epg2/antennas/1").status);
}

TEST_F(Channels, AreXmlForWhoAcceptsXmlAndNotJson) {
    const HttpAnswer answer =
        client_.get("/ws/epg2/channels?service_type=RADIO", {"Accept: application/xml"});
    EXPECT_EQ("application/xml;charset=utf-8", answer.header("content-type"));
    EXPECT_THAT(answer.body, HasSubstr("<items><item><antenna>AIR</antenna>"));
    EXPECT_THAT(answer.body, HasSubstr("<name>O'Neil &amp; Friends</name><scrambled>false</scrambled>"));
    EXPECT_THAT(answer.body, HasSubstr("<items_total>1</items_total></response>"));
    const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document(
        xmlReadMemory(answer.body.data(), static_cast<int>(answer.body.size()), nullptr, nullptr, 0),
        xmlFreeDoc);
    EXPECT_NE(nullptr, document);
    for (const char* accept :
         {"Accept: application/json, application/xml", "Accept: */*", "Accept: application/XML", "Accept:"})
        EXPECT_EQ("application/json;charset=utf-8",
                  client_.get("/ws/epg2/channels", {accept}).header("content-type"))
            << accept;
}

TEST_F(Channels, AnswerAnyBytesInTheirParameters) {
    for (const char* query : {"?name=%FF%FE", "?name=%25n%25s", "?antenna=%01%02", "?%FF=%FF",
                              "?name=%22%3B--", "?select=%00", "?=&&=&", "?name"}) {
        const int status = statusOf(query);
        EXPECT_THAT(status, ::testing::AnyOf(200, 204, 400)) << query;
    }
    EXPECT_EQ(200, statusOf(""));
}

}  // namespace
}  // namespace epgset::test
