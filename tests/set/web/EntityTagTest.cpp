#include "set/web/EntityTag.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

WebRequest getWith(const std::string& ifNoneMatch) {
    WebRequest request;
    request.method = "GET";
    if (!ifNoneMatch.empty()) request.headers = {{"If-None-Match", ifNoneMatch}};
    return request;
}

WebResponse okWith(const std::string& body) {
    WebResponse response;
    response.headers = {{"Content-Type", "text/plain"}, {"Cache-Control", "no-cache"}};
    response.body = body;
    return response;
}

TEST(EntityTag, IsAQuotedStrongTag) {
    const std::string tag = entityTag("text/plain", "body");
    EXPECT_EQ(34U, tag.size());
    EXPECT_EQ('"', tag.front());
    EXPECT_EQ('"', tag.back());
    EXPECT_EQ(std::string::npos, tag.find_first_not_of("\"0123456789abcdef"));
}

TEST(EntityTag, IsTheSameForTheSameBodyAndType) {
    EXPECT_EQ(entityTag("text/plain", "body"), entityTag("text/plain", "body"));
}

TEST(EntityTag, TellsBodiesApart) {
    EXPECT_NE(entityTag("text/plain", "a"), entityTag("text/plain", "b"));
}

TEST(EntityTag, TellsContentTypesOfOneBodyApart) {
    EXPECT_NE(entityTag("application/json", ""), entityTag("application/xml", ""));
    EXPECT_NE(entityTag("text/a", "b"), entityTag("text/", "ab"));
}

TEST(IfNoneMatch, NamesATagStandingAlone) {
    EXPECT_TRUE(namesTag("\"abc\"", "\"abc\""));
    EXPECT_TRUE(namesTag("  \"abc\"  ", "\"abc\""));
    EXPECT_FALSE(namesTag("\"abd\"", "\"abc\""));
}

TEST(IfNoneMatch, NamesATagInAList) {
    EXPECT_TRUE(namesTag("\"x\", \"abc\",\"y\"", "\"abc\""));
    EXPECT_TRUE(namesTag("\"x\" ,, \"abc\"", "\"abc\""));
    EXPECT_TRUE(namesTag("\"with,comma\", \"abc\"", "\"abc\""));
    EXPECT_FALSE(namesTag("\"x,\"abc\",y\"", "\"abcd\""));
}

TEST(IfNoneMatch, ComparesWeakTagsAsStrongOnes) {
    EXPECT_TRUE(namesTag("W/\"abc\"", "\"abc\""));
    EXPECT_TRUE(namesTag("\"x\", W/\"abc\"", "\"abc\""));
    EXPECT_FALSE(namesTag("w/\"abc\"", "\"abc\""));
}

TEST(IfNoneMatch, NamesEveryTagWithAStar) {
    EXPECT_TRUE(namesTag("*", "\"abc\""));
    EXPECT_TRUE(namesTag(" * ", "\"abc\""));
}

TEST(IfNoneMatch, NamesNothingWhenItIsMalformed) {
    for (const char* value : {"", "abc", "\"abc", "W/", "W/abc", "W", ",,,", "\"", "abc, \"abc\""}) {
        EXPECT_FALSE(namesTag(value, "\"abc\"")) << value;
    }
}

/// What the set makes of an answer of the plug-in.
void answer(const WebRequest& request, WebResponse& response) {
    tagEntity(request, response);
    answerConditionally(request, response);
}

TEST(EntityTagOfAnAnswer, IsSetOnAGet) {
    WebResponse response = okWith("body");
    answer(getWith(""), response);
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("body", response.body);
    EXPECT_EQ(entityTag("text/plain", "body"), headerValue(response.headers, "ETag"));
}

TEST(EntityTagOfAnAnswer, MakesA304OfAnAnswerThatTheClientHas) {
    WebResponse response = okWith("body");
    answer(getWith(entityTag("text/plain", "body")), response);
    EXPECT_EQ(304, response.status);
    EXPECT_EQ("body", response.body) << "whose length is told";
    EXPECT_EQ(entityTag("text/plain", "body"), headerValue(response.headers, "ETag"));
    EXPECT_EQ("no-cache", headerValue(response.headers, "Cache-Control"));
}

TEST(EntityTagOfAnAnswer, IsLookedForInEveryIfNoneMatchLine) {
    WebResponse response = okWith("body");
    WebRequest request = getWith("\"other\"");
    request.headers.emplace_back("if-none-match", entityTag("text/plain", "body"));
    answer(request, response);
    EXPECT_EQ(304, response.status);
}

TEST(EntityTagOfAnAnswer, IsNotGivenToOtherMethodsAndStatuses) {
    for (const char* method : {"HEAD", "POST", "PUT", "DELETE", "get", ""}) {
        WebRequest request = getWith("*");
        request.method = method;
        WebResponse response = okWith("body");
        answer(request, response);
        EXPECT_EQ(200, response.status) << method;
        EXPECT_EQ("", headerValue(response.headers, "ETag")) << method;
    }
    for (const int status : {201, 204, 400, 404, 500}) {
        WebResponse response = okWith("body");
        response.status = status;
        answer(getWith("*"), response);
        EXPECT_EQ(status, response.status);
        EXPECT_EQ("", headerValue(response.headers, "ETag")) << status;
    }
}

}  // namespace
}  // namespace epgset
