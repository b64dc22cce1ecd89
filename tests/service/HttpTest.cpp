// What the set's web server does to requests and answers, whatever resource they concern.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr const char* channels = "/ws/epg2/channels";
constexpr const char* notLocated = "Unable to locate URL, so go bang";

/// The set with the demo guide.
class Http : public ServiceFixture {};

TEST_F(Http, AnswersChannelsAsJsonAndAsXml) {
    const HttpAnswer json = client_.get(channels);
    EXPECT_EQ(200, json.status);
    EXPECT_EQ("application/json;charset=utf-8", json.header("content-type"));
    EXPECT_EQ("no-cache", json.header("cache-control"));
    EXPECT_EQ('{', json.body.front());
    const HttpAnswer xml = client_.get(channels, {"Accept: application/xml"});
    EXPECT_EQ(200, xml.status);
    EXPECT_EQ("application/xml;charset=utf-8", xml.header("content-type"));
    EXPECT_THAT(xml.body, HasSubstr("<response>"));
}

TEST_F(Http, TagsAnAnswerAndDoesNotSendItAgain) {
    const HttpAnswer first = client_.get(channels);
    const std::string tag = first.header("etag");
    ASSERT_FALSE(tag.empty());
    for (const std::string& value : {tag, "W/" + tag, "\"other\", " + tag, std::string("*")}) {
        const HttpAnswer again = client_.get(channels, {"If-None-Match: " + value});
        EXPECT_EQ(304, again.status) << value;
        EXPECT_EQ("", again.body);
        EXPECT_EQ(tag, again.header("etag"));
        EXPECT_EQ(std::to_string(first.body.size()), again.header("content-length"));
    }
    EXPECT_EQ(200, client_.get(channels, {"If-None-Match: \"other\""}).status);
    EXPECT_NE(tag, client_.get(channels, {"Accept: text/xml"}).header("etag"));
}

TEST_F(Http, AnswersWhatThePluginLeavesUntouchedWithAnEmpty404) {
    const HttpAnswer answer = client_.get("/ws/other");
    EXPECT_EQ(404, answer.status);
    EXPECT_EQ("", answer.body);
    EXPECT_FALSE(answer.has("content-type"));
}

TEST_F(Http, AnswersTheMountPointWithThePluginsText) {
    for (const char* path : {"/ws", "/ws/", "//ws//"}) {
        const HttpAnswer answer = client_.get(path);
        EXPECT_EQ(404, answer.status);
        EXPECT_EQ("text/plain", answer.header("content-type"));
        EXPECT_EQ(notLocated, answer.body);
    }
}

TEST_F(Http, DecodesPathsAndLeavesEmptySegmentsOut) {
    const HttpAnswer plain = client_.get(channels);
    for (const char* path : {"//ws//epg2///channels/", "/%77%73/epg2/chann%65ls", "/ws/%65pg2/channels?"}) {
        const HttpAnswer answer = client_.get(path);
        EXPECT_EQ(200, answer.status) << path;
        EXPECT_EQ(plain.body, answer.body) << path;
    }
}

TEST_F(Http, RefusesAnEncodedNul) {
    for (const char* target :
         {"/ws/epg2/channels%00", "/%00", "/ws/epg2/channels?sort=%00", "/set/status?%00"}) {
        EXPECT_EQ(400, client_.get(target).status) << target;
    }
}

TEST_F(Http, SendsHeadersAloneForHead) {
    const HttpAnswer get = client_.get("/set/status");
    const HttpAnswer head = client_.head("/set/status");
    EXPECT_EQ(200, head.status);
    EXPECT_EQ("", head.body);
    EXPECT_EQ(std::to_string(get.body.size()), head.header("content-length"));
    RawConnection connection(set().url());
    connection.send("HEAD /ws/epg2/channels HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    EXPECT_THAT(connection.receiveAll(), EndsWith("\r\n\r\n"));
}

TEST_F(Http, AnswersOtherPathsAndMethods) {
    EXPECT_EQ(404, client_.get("/elsewhere").status);
    EXPECT_EQ(404, client_.get("/set").status);
    const HttpAnswer post = client_.send("POST", "/set/status", "{}");
    EXPECT_EQ(405, post.status);
    EXPECT_EQ("GET, HEAD", post.header("allow"));
    EXPECT_THAT(client_.get("/").body, HasSubstr("/ws/epg2/channels"));
}

TEST_F(Http, AcceptsABodyUpToTheLimitAndNoLonger) {
    const std::string limit(2097152, ' ');
    EXPECT_NE(notLocated, client_.send("PUT", "/ws/epg2/other", limit).body);
    const HttpAnswer longer = client_.send("PUT", "/ws/epg2/other", limit + " ");
    EXPECT_EQ(404, longer.status);
    EXPECT_EQ(notLocated, longer.body);
}

TEST_F(Http, TreatsAChunkedBodyLikeAnother) {
    const std::string head =
        "PUT /ws/epg2/other HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
        "Transfer-Encoding: chunked\r\n\r\n";
    const std::string limit(2097152, ' ');
    RawConnection fits(set().url());
    fits.send(head + "200000\r\n" + limit + "\r\n0\r\n\r\n");
    EXPECT_THAT(fits.receiveAll(), ::testing::Not(HasSubstr(notLocated)));
    RawConnection longer(set().url());
    longer.send(head + "200001\r\n" + limit + " \r\n0\r\n\r\n");
    EXPECT_THAT(longer.receiveAll(), EndsWith(notLocated));
}

TEST_F(Http, AnswersATextThatIsAFormat) {
    for (const char* path :
         {"/ws/%25n%25s%25s%25n", "/ws/%25999999999d/x", "/ws/%25%2a%2ad", "/ws/epg2/%25s%25n"}) {
        EXPECT_THAT(client_.get(path).status, ::testing::AnyOf(400, 404)) << path;
    }
}

TEST_F(Http, SurvivesRequestsOfAnyBytes) {
    using namespace std::string_literals;
    for (const std::string& bytes : {
             "\0\xFF\xFE garbage\r\n\r\n"s,
             "GET /ws/epg2/\xFF\xC0\x80?q=\xFF HTTP/1.1\r\nHost: localhost\r\n\r\n"s,
             "GET /ws/epg2/channels?sort=%FF%FE&%=%&=&&;+ HTTP/1.1\r\nHost: localhost\r\n\r\n"s,
             "PUT /ws/epg2/schedules HTTP/1.1\r\nHost: localhost\r\nContent-Length: 4\r\n\r\n\0\xFF{\""s,
             "GET /ws/epg2?sql=\xFF%27%22 HTTP/1.1\r\nHost: localhost\r\nAccept: \xFF\xFExml\r\n\r\n"s,
             "POST /ws/epg2 HTTP/1.1\r\nContent-Length: 99999999999999999999\r\n\r\n"s,
             "GET " + std::string(200000, '/') + " HTTP/1.1\r\n\r\n",
         }) {
        RawConnection connection(set().url());
        connection.send(bytes);
        connection.endSending();
        connection.receiveAll(std::chrono::seconds(1));
        EXPECT_EQ(200, client_.get("/set/status").status);
    }
    EXPECT_EQ(200, client_.get(channels).status);
    EXPECT_TRUE(set().process().running());
}

TEST_F(Http, ReadsARequestThatComesByteByByte) {
    RawConnection connection(set().url());
    for (const char byte : std::string("GET /set/status HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n")) {
        connection.send({&byte, 1});
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(200, statusOf(connection.receiveAll()));
}

TEST_F(Http, AnswersOthersWhileAClientIsSlow) {
    std::vector<std::unique_ptr<RawConnection>> slow;
    for (int number = 0; number < 50; ++number) {
        slow.push_back(std::make_unique<RawConnection>(set().url()));
        slow.back()->send("PUT /ws/epg2/schedules HTTP/1.1\r\nContent-Length: 1000\r\n\r\n{");
    }
    EXPECT_EQ(200, client_.get(channels).status);
}

TEST_F(Http, KeepsAConnectionOpen) {
    for (int count = 0; count < 5; ++count) {
        EXPECT_EQ(200, client_.get(channels).status);
    }
    EXPECT_EQ(1, client_.connectionsMade());
}

TEST_F(Http, AnswersPipelinedRequests) {
    std::string requests;
    for (int count = 0; count < 10; ++count) {
        requests += "GET /ws/epg2/other HTTP/1.1\r\nHost: localhost\r\n\r\n";
    }
    RawConnection connection(set().url());
    connection.send(requests + "GET /set/status HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n");
    const std::string answers = connection.receiveAll();
    EXPECT_THAT(answers, HasSubstr("\"clock\""));
    int count = 0;
    for (std::size_t at = 0; (at = answers.find("HTTP/1.1 400", at)) != std::string::npos; ++at) {
        ++count;
    }
    EXPECT_EQ(10, count);
}

TEST_F(Http, Answers32ClientsAtOnce) {
    const std::string expected = client_.get(channels).body;
    std::atomic<int> same = 0;
    std::vector<std::thread> clients;
    for (int number = 0; number < 32; ++number) {
        clients.emplace_back([&] {
            HttpClient client(set().url());
            for (int round = 0; round < 5; ++round) {
                if (client.get(channels).body == expected) ++same;
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_EQ(32 * 5, same);
}

}  // namespace
}  // namespace epgset::test
