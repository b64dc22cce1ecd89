#include "set/web/HttpServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

#include "set/log/LogCapture.h"
#include "tests/support/HttpClient.h"
#include "tests/support/RawConnection.h"

namespace epgset {
namespace {

using test::HttpClient;
using test::RawConnection;
using test::statusOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

/// Answers at once what begins with "/now", throws for "/throw", and answers all else in turn.
class Echo : public WebHandler {
public:
    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override {
        if (request.path == "/throw-now") throw std::runtime_error("thrown at once");
        if (!request.path.starts_with("/now")) return std::nullopt;
        return echo(request);
    }

    WebResponse answerInTurn(const WebRequest& request) override {
        const int inside = ++inside_;
        if (inside > mostInside) mostInside = inside;
        WebResponse response = respond(request);
        --inside_;
        return response;
    }

    std::atomic<int> mostInside = 0;
    std::promise<void> entered;  ///< of a request for "/wait"
    std::promise<void> leave;    ///< lets it go on

private:
    WebResponse respond(const WebRequest& request) {
        if (request.path == "/throw") {
            --inside_;
            throw std::runtime_error("thrown in turn");
        }
        if (request.path == "/wait") {
            entered.set_value();
            leave.get_future().wait();
        }
        if (request.path == "/204" || request.path == "/304") {
            WebResponse response = echo(request);
            response.status = request.path == "/204" ? 204 : 304;
            return response;
        }
        if (request.path == "/bad-header") {
            WebResponse response = echo(request);
            setHeader(response.headers, "X-Bad", "one\r\nX-Worse: two");
            return response;
        }
        return echo(request);
    }

    static WebResponse echo(const WebRequest& request) {
        WebResponse response;
        setHeader(response.headers, "Content-Type", "text/plain");
        const std::string echoed = headerValue(request.headers, "X-Echo");
        if (!echoed.empty()) setHeader(response.headers, "X-Echo", echoed);
        response.body = request.method + " " + request.path + " [" + request.query + "] " +
                        std::to_string(request.bodyLength) + "/" + std::to_string(request.body.size());
        return response;
    }

    std::atomic<int> inside_ = 0;
};

class HttpServerTest : public ::testing::Test {
protected:
    static HttpServer::Limits limits() {
        HttpServer::Limits limits;
        limits.idleTime = std::chrono::seconds(1);
        return limits;
    }

    /// What the server answers to these bytes until it closes the connection.
    std::string exchange(const std::string& bytes) {
        RawConnection connection(url_);
        connection.send(bytes);
        connection.endSending();
        return connection.receiveAll();
    }

    LogCapture log_{Container::Logger::Warning};
    Echo echo_;
    ListenSocket socket_{"127.0.0.1", 0};
    std::string url_ = socket_.url();
    std::unique_ptr<HttpServer> server_ = std::make_unique<HttpServer>(std::move(socket_), echo_, limits());
    HttpClient client_{url_};
};

TEST_F(HttpServerTest, HandsOverPathAndQueryAsTheyWereSent) {
    EXPECT_EQ("GET /a%2Fb//c [x=%41+1&y=a%20b&=] 0/0", client_.get("/a%2Fb//c?x=%41+1&y=a%20b&=").body);
    EXPECT_EQ("GET /now%2f [%ZZ] 0/0", client_.get("/now%2f?%ZZ").body);
}

TEST_F(HttpServerTest, HandsOverEveryMethod) {
    for (const char* method : {"GET", "POST", "PUT", "DELETE", "OPTIONS", "PATCH", "PURGE", "x"}) {
        EXPECT_THAT(client_.request(method, "/").body, HasSubstr(std::string(method) + " / "));
    }
}

TEST_F(HttpServerTest, HandsOverHeadersAndSendsThem) {
    EXPECT_EQ("a, b", client_.get("/", {"X-Echo: a", "x-echo: b"}).header("x-echo"));
}

TEST_F(HttpServerTest, HandsOverABody) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{100000}, maximumRequestBody}) {
        const std::string length = std::to_string(size);
        EXPECT_THAT(client_.send("PUT", "/", std::string(size, 'b')).body, EndsWith(length + "/" + length));
    }
}

TEST_F(HttpServerTest, HandsOverABodyThatIsTooLongWithItsLengthOnly) {
    const std::string body(maximumRequestBody + 1, 'b');
    EXPECT_THAT(client_.send("POST", "/", body).body, EndsWith(" 2097153/0"));
    EXPECT_THAT(client_.send("POST", "/", body, {"Expect:"}).body, EndsWith(" 2097153/0"));
}

TEST_F(HttpServerTest, LetsAClientFinishABodyThatIsTooLongBeforeItAnswers) {
    RawConnection connection(url_);
    ASSERT_TRUE(connection.send("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 3000000\r\n\r\n"));
    ASSERT_TRUE(connection.send(std::string(3000000, 'b')));
    EXPECT_THAT(connection.receiveUntil("/0"), EndsWith(" 3000000/0"));
    ASSERT_TRUE(connection.send("GET /next HTTP/1.1\r\nHost: x\r\n\r\n"));
    EXPECT_THAT(connection.receiveUntil("/0"), EndsWith("GET /next [] 0/0"));
}

TEST_F(HttpServerTest, AnswersAClientThatWaitsWithABodyThatIsTooLong) {
    RawConnection connection(url_);
    connection.send("POST / HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 2097153\r\n\r\n");
    const std::string answer = connection.receiveAll();
    EXPECT_EQ(200, statusOf(answer));
    EXPECT_THAT(answer, EndsWith(" 2097153/0"));
}

TEST_F(HttpServerTest, LetsAClientThatWaitsGoOnWithABodyThatFits) {
    RawConnection connection(url_);
    connection.send("POST / HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\nContent-Length: 3\r\n\r\n");
    EXPECT_EQ(100, statusOf(connection.receiveUntil("\r\n\r\n")));
    connection.send("abc");
    EXPECT_THAT(connection.receiveUntil("3/3"), EndsWith(" 3/3"));
}

TEST_F(HttpServerTest, AnswersAGiantStatedLengthUnread) {
    for (const char* length : {"16777217", "9223372036854775807"}) {
        RawConnection connection(url_);
        connection.send(std::string("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: ") + length + "\r\n\r\n");
        EXPECT_THAT(connection.receiveAll(), EndsWith(std::string(length) + "/0"));
    }
}

TEST_F(HttpServerTest, ReadsAChunkedBodyToItsTrueLength) {
    const std::string head = "PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";
    EXPECT_THAT(exchange(head + "3\r\nabc\r\nA;x=y\r\n0123456789\r\n0\r\n\r\n"), EndsWith(" 13/13"));
    EXPECT_THAT(exchange(head + "0\r\n\r\n"), EndsWith(" 0/0"));
    EXPECT_THAT(exchange(head + "200000\r\n" + std::string(maximumRequestBody, 'b') + "\r\n0\r\n\r\n"),
                EndsWith(" 2097152/2097152"));
}

TEST_F(HttpServerTest, HandsOverAChunkedBodyThatIsTooLongAsJustTooLong) {
    const std::string head = "PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";
    EXPECT_THAT(exchange(head + "200001\r\n" + std::string(maximumRequestBody + 1, 'b') + "\r\n0\r\n\r\n"),
                EndsWith(" 2097153/0"));
    EXPECT_THAT(exchange(head + "400000\r\n" + std::string(std::size_t{4} << 20U, 'b') + "\r\n0\r\n\r\n"),
                EndsWith(" 2097153/0"));
}

TEST_F(HttpServerTest, AnswersAChunkedBodyThatIsLongerThanAnyItReadsOfAStatedLength) {
    RawConnection connection(url_);
    connection.send("PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string chunk = "100000\r\n" + std::string(std::size_t{1} << 20U, 'b') + "\r\n";
    for (int sent = 0; sent < 20; ++sent)
        ASSERT_TRUE(connection.send(chunk));
    connection.send("0\r\n\r\n");
    EXPECT_THAT(connection.receiveUntil("/0"), EndsWith(" 2097153/0"));
    connection.send("GET /next HTTP/1.1\r\nHost: x\r\n\r\n");
    EXPECT_THAT(connection.receiveUntil("/0"), EndsWith("GET /next [] 0/0"));
}

TEST_F(HttpServerTest, RefusesABodyInAnUnknownCoding) {
    RawConnection connection(url_);
    connection.send("PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: gzip\r\n\r\nabc");
    EXPECT_EQ(501, statusOf(connection.receiveAll()));
}

TEST_F(HttpServerTest, SendsNoBodyForHead) {
    const auto get = client_.get("/now");
    const std::string head = exchange("HEAD /now HTTP/1.1\r\nHost: x\r\n\r\n");
    EXPECT_EQ(200, statusOf(head));
    EXPECT_THAT(head, EndsWith("\r\n\r\n"));
    // The method's name is one letter longer in what is echoed.
    EXPECT_THAT(head, HasSubstr("Content-Length: " + std::to_string(get.body.size() + 1) + "\r\n"));
}

TEST_F(HttpServerTest, SendsNoBodyWith204And304) {
    for (const char* path : {"/204", "/304"}) {
        const std::string answer = exchange(std::string("GET ") + path + " HTTP/1.1\r\nHost: x\r\n\r\n");
        EXPECT_EQ(std::atoi(path + 1), statusOf(answer));
        EXPECT_THAT(answer, EndsWith("\r\n\r\n"));
        EXPECT_EQ(answer.find("\r\n\r\n"), answer.size() - 4);
        const bool tellsLength = answer.find("Content-Length: ") != std::string::npos;
        EXPECT_EQ(path == std::string_view("/304"), tellsLength) << answer;
    }
    EXPECT_EQ(200, client_.get("/").status);
}

TEST_F(HttpServerTest, TellsWith304TheLengthThatThe200WouldHave) {
    const std::string answer = exchange("GET /304 HTTP/1.1\r\nHost: x\r\n\r\n");
    EXPECT_THAT(answer,
                HasSubstr("Content-Length: " + std::to_string(client_.get("/200").body.size()) + "\r\n"));
}

TEST_F(HttpServerTest, AnswersAnExceptionWith500) {
    EXPECT_EQ(500, client_.get("/throw").status);
    EXPECT_EQ(500, client_.get("/throw-now").status);
    EXPECT_EQ(200, client_.get("/").status);
    EXPECT_EQ(2U, log_.messagesOf("set/web", Container::Logger::Error).size());
}

TEST_F(HttpServerTest, LeavesAHeaderOutThatWouldSplitTheAnswer) {
    const auto answer = client_.get("/bad-header");
    EXPECT_EQ(200, answer.status);
    EXPECT_FALSE(answer.has("x-bad"));
    EXPECT_FALSE(answer.has("x-worse"));
    EXPECT_THAT(log_.messagesOf("set/web"), ElementsAre(HasSubstr("X-Bad")));
}

TEST_F(HttpServerTest, KeepsAConnectionForTheNextRequest) {
    for (int round = 0; round < 5; ++round) {
        client_.get("/now");
        client_.send("PUT", "/", "body");
    }
    EXPECT_EQ(1, client_.connectionsMade());
}

TEST_F(HttpServerTest, AnswersPipelinedRequestsInTheirOrder) {
    std::string requests;
    for (const char* path : {"/1", "/now2", "/3"}) {
        requests += std::string("GET ") + path + " HTTP/1.1\r\nHost: x\r\n\r\n";
    }
    RawConnection connection(url_);
    connection.send(requests + "GET /4 HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    const std::string answers = connection.receiveAll();
    std::size_t at = 0;
    for (const char* path : {"GET /1 ", "GET /now2 ", "GET /3 ", "GET /4 "}) {
        at = answers.find(path, at);
        EXPECT_NE(std::string::npos, at) << path;
    }
}

TEST_F(HttpServerTest, AnswersOneRequestAfterTheOtherFor32ClientsAtOnce) {
    std::vector<std::thread> clients;
    std::atomic<int> good = 0;
    for (int number = 0; number < 32; ++number) {
        clients.emplace_back([&] {
            HttpClient client(url_);
            for (int round = 0; round < 20; ++round) {
                if (client.get("/some").body == "GET /some [] 0/0") ++good;
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_EQ(32 * 20, good);
    EXPECT_EQ(1, echo_.mostInside);
}

TEST_F(HttpServerTest, AnswersAtOnceWhileAnotherRequestIsAnswered) {
    std::thread waiting([this] { EXPECT_EQ(200, HttpClient(url_).get("/wait").status); });
    echo_.entered.get_future().wait();
    EXPECT_EQ(200, client_.get("/now").status);
    echo_.leave.set_value();
    waiting.join();
}

TEST_F(HttpServerTest, AnswersRequestsThatWaitWhenItStops) {
    std::thread first([this] { EXPECT_EQ(200, HttpClient(url_).get("/wait").status); });
    echo_.entered.get_future().wait();
    RawConnection second(url_);
    second.send("GET /second HTTP/1.1\r\nHost: x\r\n\r\n");
    client_.get("/now");  // the second has been read by then, or comes just after
    std::thread stopping([this] { server_.reset(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    echo_.leave.set_value();
    stopping.join();
    first.join();
    EXPECT_EQ(503, statusOf(second.receiveAll()));
}

TEST_F(HttpServerTest, StopsWhileConnectionsAreOpen) {
    RawConnection idle(url_);
    RawConnection halfway(url_);
    halfway.send("PUT / HTTP/1.1\r\nHost: x\r\nContent-Length: 10\r\n\r\nabc");
    client_.get("/now");
    server_.reset();
    EXPECT_EQ("", idle.receiveAll());
    EXPECT_EQ("", halfway.receiveAll());
}

TEST_F(HttpServerTest, ClosesASilentConnection) {
    RawConnection connection(url_);
    connection.send("GET / HT");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(200, statusOf(connection.receiveAll()));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(HttpServerTest, SurvivesAClientThatLeavesBeforeItsAnswer) {
    for (int round = 0; round < 50; ++round) {
        RawConnection connection(url_);
        connection.send("GET /leave HTTP/1.1\r\nHost: x\r\n\r\n");
    }
    EXPECT_EQ(200, client_.get("/").status);
}

TEST_F(HttpServerTest, SurvivesBytesOfAnyKind) {
    using namespace std::string_literals;
    const std::vector<std::string> requests = {
        "",
        "\r\n\r\n",
        "\0\0\0\0"s,
        "GET\r\n\r\n",
        "GET /\r\n\r\n",
        "GET / HTTP/9.9\r\n\r\n",
        "GET  /  HTTP/1.1\r\nHost: x\r\n\r\n",
        "GET /\0x HTTP/1.1\r\nHost: x\r\n\r\n"s,
        "GET /now\xFF\xFE\x80?\xC3\x28 HTTP/1.1\r\nHost: \xFF\r\n\r\n",
        "GET /now HTTP/1.1\r\n: no name\r\nno colon\r\n\r\n",
        "GET /now HTTP/1.1\r\nHost: x\r\nX: a\0b\r\n\r\n"s,
        "\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03"s,
        "PUT / HTTP/1.1\r\nHost: x\r\nContent-Length: -1\r\n\r\n",
        "PUT / HTTP/1.1\r\nHost: x\r\nContent-Length: abc\r\n\r\nabc",
        "PUT / HTTP/1.1\r\nHost: x\r\nContent-Length: 99999999999999999999999\r\n\r\n",
        "PUT / HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\nContent-Length: 4\r\n\r\nabcd",
        "PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n\r\n",
        "PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFFFF\r\n",
        "PUT / HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: gzip\r\n\r\n",
        "GET /" + std::string(100000, 'a') + " HTTP/1.1\r\nHost: x\r\n\r\n",
        "GET / HTTP/1.1\r\nX: " + std::string(100000, 'a') + "\r\n\r\n",
        std::string(1000, '\n'),
        std::string(100000, '%'),
    };
    for (const std::string& request : requests) {
        const std::string answer = exchange(request);
        EXPECT_TRUE(answer.empty() || statusOf(answer) >= 200) << request.substr(0, 80) << ": " << answer;
        EXPECT_EQ(200, client_.get("/").status) << request.substr(0, 80);
    }
}

TEST_F(HttpServerTest, AnswersBytesBeyondAsciiInATarget) {
    const std::string answer =
        exchange("GET /now\xFF\xC3\x28?\x80 HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(200, statusOf(answer));
    EXPECT_THAT(answer, HasSubstr("GET /now\xFF\xC3\x28 [\x80] 0/0"));
}

TEST(ListenSocket, NamesAPortThatIsTaken) {
    const ListenSocket first("127.0.0.1", 0);
    const std::string url = first.url();
    const std::string port = url.substr(url.rfind(':') + 1, url.size() - url.rfind(':') - 2);
    try {
        const ListenSocket second("127.0.0.1", static_cast<std::uint16_t>(std::stoi(port)));
        FAIL() << "the port was given out twice";
    } catch (const ListenError& error) {
        EXPECT_THAT(error.what(), HasSubstr("127.0.0.1 port " + port));
    }
}

TEST(ListenSocket, NamesAnAddressThatIsNone) {
    for (const char* address : {"300.1.1.1", "not an address", "[::1]"}) {
        try {
            const ListenSocket socket(address, 0);
            FAIL() << address;
        } catch (const ListenError& error) {
            EXPECT_THAT(error.what(), HasSubstr(address));
        }
    }
}

}  // namespace
}  // namespace epgset
