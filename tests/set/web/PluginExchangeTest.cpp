#include "set/web/PluginExchange.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/CommonPlugin.h"

namespace epgset {
namespace {

std::string variable(const Container::HttpRequest& request, const std::string& name) {
    std::string value = "left over";
    request.getHeader(name, value);
    return value;
}

TEST(PluginRequest, HandsOverWhatTheClientSent) {
    WebRequest request;
    request.method = "PUT";
    request.path = "/ws/epg2/channels";
    request.query = "a=%20";
    PluginRequest seen(request, "epg2/channels");
    std::string method;
    std::string path;
    std::string query;
    std::string file;
    seen.getMethod(method);
    seen.getPath(path);
    seen.getUri().getQuery(query);
    seen.getUri().getFile(file);
    EXPECT_EQ("PUT", method);
    EXPECT_EQ("epg2/channels", path);
    EXPECT_EQ("a=%20", query);
    EXPECT_EQ("/ws/epg2/channels", file);
}

TEST(PluginRequest, FindsAHeaderByItsVariable) {
    WebRequest request;
    request.headers = {{"accept", "text/xml"}, {"X-Two-Words", "yes"}, {"Content-Type", "text/json"}};
    const PluginRequest seen(request, "");
    EXPECT_EQ("text/xml", variable(seen, "HTTP_ACCEPT"));
    EXPECT_EQ("yes", variable(seen, "HTTP_X_TWO_WORDS"));
    EXPECT_EQ("text/json", variable(seen, "CONTENT_TYPE"));
}

TEST(PluginRequest, JoinsTheLinesOfAHeader) {
    WebRequest request;
    request.headers = {{"Accept", "text/xml"}, {"Other", "-"}, {"ACCEPT", "text/json"}};
    EXPECT_EQ("text/xml, text/json", variable(PluginRequest(request, ""), "HTTP_ACCEPT"));
}

TEST(PluginRequest, EmptiesTheTextForAVariableThatIsAbsent) {
    const WebRequest request;
    const PluginRequest seen(request, "");
    for (const char* name : {"HTTP_ACCEPT", "HTTP_", "ACCEPT", "accept", ""}) {
        EXPECT_EQ("", variable(seen, name)) << name;
    }
}

TEST(PluginRequest, StreamsTheBodyOfAnyBytes) {
    WebRequest request;
    request.body = std::string("a\0\xFF\n", 4);
    request.bodyLength = 4;
    PluginRequest seen(request, "");
    ASSERT_EQ(4, seen.getContentLength());
    std::string body(4, '?');
    seen.getInputStream().read(body.data(), 4);
    EXPECT_EQ(request.body, body);
}

TEST(PluginRequest, CutsALengthThatDoesNotFit) {
    WebRequest request;
    request.bodyLength = std::int64_t{1} << 40;
    PluginRequest seen(request, "");
    EXPECT_EQ(std::numeric_limits<int>::max(), seen.getContentLength());
}

TEST(PluginResponse, KeepsWhatThePluginWrote) {
    PluginResponse response;
    response.setHeader("Content-Type", "text/a");
    response.setStatus(201);
    response.setHeader("content-type", "text/b");
    response.commitHeaders();
    response.getOutputStream() << "one " << 2;
    EXPECT_FALSE(response.untouched());
    const WebResponse sent = response.finish();
    EXPECT_EQ(201, sent.status);
    EXPECT_EQ(1U, sent.headers.size());
    EXPECT_EQ("text/b", headerValue(sent.headers, "Content-Type"));
    EXPECT_EQ("one 2", sent.body);
}

TEST(PluginResponse, TakesABodyPieceByPieceAndIsEmptyAfterwards) {
    PluginResponse response;
    std::string expected;
    for (int i = 0; i < 1000; ++i) {
        response.getOutputStream().put(static_cast<char>(i)) << i;
        response.getOutputStream().write("\0xyz", 4);
        expected += static_cast<char>(i) + std::to_string(i) + std::string("\0xyz", 4);
    }
    EXPECT_EQ(expected, response.finish().body);
    EXPECT_TRUE(response.untouched());
    EXPECT_EQ(404, response.finish().status);
}

TEST(PluginResponse, IsA500ForABodyThatCouldNotBeWritten) {
    PluginResponse response;
    response.getOutputStream() << "text";
    response.getOutputStream().seekp(0);  // a body is written from its start to its end
    response.getOutputStream() << "other";
    EXPECT_EQ(500, response.finish().status);
    response.getOutputStream() << "text";
    EXPECT_EQ("text", response.finish().body) << "the failure is gone";
}

TEST(PluginResponse, IsAnEmpty404WhenUntouched) {
    PluginResponse response;
    EXPECT_TRUE(response.untouched());
    const WebResponse sent = response.finish();
    EXPECT_EQ(404, sent.status);
    EXPECT_TRUE(sent.headers.empty());
    EXPECT_EQ("", sent.body);
}

TEST(PluginResponse, IsA200WhenOnlyABodyIsWritten) {
    PluginResponse response;
    response.getOutputStream() << "text";
    EXPECT_FALSE(response.untouched());
    EXPECT_EQ(200, response.finish().status);
}

TEST(PluginResponse, IsA500ForAStatusThatCannotBeSent) {
    for (const int status : {-1, 0, 99, 100, 199, 600, 1000, std::numeric_limits<int>::min()}) {
        PluginResponse response;
        response.setStatus(status);
        EXPECT_EQ(500, response.finish().status) << status;
    }
    for (const int status : {200, 204, 404, 599}) {
        PluginResponse response;
        response.setStatus(status);
        EXPECT_EQ(status, response.finish().status);
    }
}

TEST(WriteError, WritesACompleteAnswer) {
    PluginResponse response;
    const std::vector<std::pair<std::string, std::string>> extra = {{"X-Extra", "1"}};
    CommonPlugin::writeError(response, 404, "not here", &extra);
    const WebResponse sent = response.finish();
    EXPECT_EQ(404, sent.status);
    EXPECT_EQ("text/plain", headerValue(sent.headers, "Content-Type"));
    EXPECT_EQ("1", headerValue(sent.headers, "X-Extra"));
    EXPECT_EQ("not here", sent.body);
}

}  // namespace
}  // namespace epgset
