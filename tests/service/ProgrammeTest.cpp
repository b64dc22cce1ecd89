// The programme resources over HTTP: lists, one programme, its synopsis.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/service/BookingFixture.h"

namespace epgset::test {
namespace {

using ::testing::ElementsAre;

class Programmes : public BookingFixture {};

TEST_F(Programmes, AreListedWithTheirCounts) {
    const HttpAnswer answer = get("programs?name=midday");
    EXPECT_EQ(200, answer.status);
    EXPECT_EQ(R"({"items":[{"antenna":"AIR","channel_name":"News 24","channel_num":"1",)"
              R"("channel_path":"/ws/epg2/channels/cid-000-1","end":"2026-08-23T12:30:00+00:00",)"
              R"("id":")" +
                  past_ +
                  R"(","name":"Midday News","scrambled":false,"start":"2026-08-23T12:00:00+00:00",)"
                  R"("thumb_uri":"about:blank","category":"TBD"}],)"
                  R"("items_start_index":0,"items_count":1,"items_total":1})",
              answer.body);
    EXPECT_EQ(6, json(get("programs"))["items_total"].GetInt()) << "five and a stub";
}

TEST_F(Programmes, OfAChannelAreListed) {
    const rapidjson::Document list = json(get("channels/cid-000-1/programs?sort=start"));
    ASSERT_EQ(2, list["items_total"].GetInt());
    EXPECT_STREQ("Midday News", list["items"][0]["name"].GetString());
    EXPECT_STREQ("Weather", list["items"][1]["name"].GetString());
    EXPECT_STREQ("No information", json(get("channels/cid-000-9/programs"))["items"][0]["name"].GetString());
}

TEST_F(Programmes, WithoutAMatchAre204) {
    EXPECT_EQ(204, get("programs?name=zebra").status);
    EXPECT_EQ(204, get("channels/cid-000-1/programs?name=zebra").status);
    EXPECT_EQ("", get("programs?name=zebra").body);
}

TEST_F(Programmes, RefuseAPageThatCannotBe) {
    for (const char* page : {"items_max=0", "items_max=x", "items_start_index=-1"}) {
        EXPECT_EQ(400, get(std::string("programs?") + page).status) << page;
        EXPECT_EQ(400, get(std::string("channels/cid-000-1/programs?") + page).status) << page;
    }
}

TEST_F(Programmes, OfAnUnknownChannelAre404WhateverThePage) {
    EXPECT_EQ(404, get("channels/cid-000-99/programs").status);
    EXPECT_EQ(404, get("channels/cid-000-99/programs?items_max=0").status);
}

TEST_F(Programmes, AreOneObjectEachAtTheirOwnPath) {
    const HttpAnswer answer = get("programs/" + coming_);
    EXPECT_EQ(200, answer.status);
    EXPECT_THAT(keys(json(answer)), ElementsAre("antenna", "channel_id", "channel_name", "channel_num",
                                                "channel_path", "end", "id", "name", "scrambled", "start"));
}

TEST_F(Programmes, ThatDoNotExistAre404) {
    for (const char* id : {"pid-000-1-0-1", "x", "x%27y"}) {
        EXPECT_EQ(404, get(std::string("programs/") + id).status) << id;
        EXPECT_EQ(404, get(std::string("programs/") + id + "/detail").status) << id;
    }
}

TEST_F(Programmes, TellTheirSynopsis) {
    EXPECT_EQ(R"({"synopsis":"What happened.","screenShotURL":"about:blank","linkURL":"about:blank"})",
              get("programs/" + past_ + "/detail").body);
}

TEST_F(Programmes, WithoutASynopsisHaveNoDetail) {
    const HttpAnswer answer = get("programs/" + present_ + "/detail");
    EXPECT_EQ(404, answer.status);
    EXPECT_EQ("", answer.body);
}

TEST_F(Programmes, RefuseOtherMethodsWith404) {
    for (const std::string& path :
         {std::string("programs"), "programs/" + coming_, "programs/" + coming_ + "/detail",
          std::string("channels/cid-000-1/programs")})
        for (const char* method : {"POST", "PUT", "DELETE"})
            EXPECT_EQ(404, statusOf(method, path, "")) << method << ' ' << path;
}

TEST_F(Programmes, AreNotFoundUnderOtherShapesOfPath) {
    for (const std::string& path : {"programs/" + coming_ + "/x", "programs/" + coming_ + "/detail/x",
                                    "programs/" + coming_ + "/schedule/x"})
        EXPECT_EQ(400, get(path).status) << path;
}

}  // namespace
}  // namespace epgset::test
