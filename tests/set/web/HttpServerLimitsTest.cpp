// What clients may take of the server, and what those get that take more.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "set/log/LogCapture.h"
#include "set/web/HttpServer.h"
#include "tests/support/HttpClient.h"
#include "tests/support/RawConnection.h"

namespace epgset {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using test::HttpClient;
using test::RawConnection;
using test::statusOf;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr std::size_t mebibyte = std::size_t{1} << 20U;
constexpr const char* now = "GET /now HTTP/1.1\r\nHost: x\r\n\r\n";
constexpr const char* inTurn = "GET /turn HTTP/1.1\r\nHost: x\r\n\r\n";
constexpr const char* large = "GET /large HTTP/1.1\r\nHost: x\r\n\r\n";
constexpr const char* chunkedHead = "PUT /turn HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n";

/// Answers "/now" at once, all else in turn: "/large" with 8 MiB of its own, "/wait" when the test says so.
class Answers : public WebHandler {
public:
    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override {
        if (request.path == "/now") return textResponse(200, "now");
        return std::nullopt;
    }

    WebResponse answerInTurn(const WebRequest& request) override {
        WebResponse response = textResponse(200, "in turn");
        if (request.path == "/large") response.body.assign(8 * mebibyte, 'l');
        if (request.path == "/wait") {
            entered.set_value();
            leave.get_future().wait();
        }
        return response;
    }

    std::promise<void> entered;  ///< of the request for "/wait"
    std::promise<void> leave;    ///< lets it go on
};

class HttpServerLimits : public ::testing::Test {
protected:
    void serve(const HttpServer::Limits& limits) {
        ListenSocket socket("127.0.0.1", 0);
        url_ = socket.url();
        server_ = std::make_unique<HttpServer>(std::move(socket), answers_, limits);
    }

    std::unique_ptr<RawConnection> connect(const std::string& from = {}) const {
        return std::make_unique<RawConnection>(url_, from);
    }

    /// Whether a connection is still served.
    static bool isServed(RawConnection& connection) {
        connection.send(now);
        return statusOf(connection.receiveUntil("now\n")) == 200;
    }

    /// Serves with a limit of one second, which a client exceeds that begins with `first` and then sends a
    /// byte every now and then.
    void expectRefusedAfterASecond(const HttpServer::Limits& limits, const char* first) {
        serve(limits);
        const auto connection = connect();
        connection->send(first);
        const auto begun = steady_clock::now();
        std::string answer;
        while (answer.empty() && steady_clock::now() - begun < seconds(10)) {
            connection->send("x");
            answer = connection->receiveAll(std::chrono::milliseconds(50));
        }
        const auto time = steady_clock::now() - begun;
        EXPECT_EQ(408, statusOf(answer));
        EXPECT_GE(time, std::chrono::milliseconds(900));
        EXPECT_LT(time, seconds(5));
    }

    LogCapture log_{Container::Logger::Warning};
    Answers answers_;
    std::string url_;
    std::unique_ptr<HttpServer> server_;
};

TEST_F(HttpServerLimits, EndAConnectionThatWaitsForANewOneOfItsAddress) {
    HttpServer::Limits few;
    few.connectionsPerAddress = 4;
    serve(few);
    std::vector<std::unique_ptr<RawConnection>> open;
    for (int number = 0; number < 8; ++number) {
        open.push_back(connect());
        EXPECT_TRUE(isServed(*open.back())) << number;
    }
    EXPECT_EQ(4, std::ranges::count_if(open, [](const auto& connection) { return isServed(*connection); }));
    EXPECT_TRUE(isServed(*open.back()));
    EXPECT_THAT(log_.messagesOf("set/web", Container::Logger::Warning),
                Contains(HasSubstr("limit of 256, 4")));
}

TEST_F(HttpServerLimits, EndAConnectionOfTheAddressThatHasMostForAnother) {
    HttpServer::Limits few;
    few.connections = 6;
    serve(few);
    const auto ordinary = connect("127.0.0.2");
    EXPECT_TRUE(isServed(*ordinary));
    std::vector<std::unique_ptr<RawConnection>> many;
    for (int number = 0; number < 20; ++number)
        many.push_back(connect("127.0.0.3"));
    const auto another = connect("127.0.0.4");
    EXPECT_TRUE(isServed(*another));
    EXPECT_TRUE(isServed(*ordinary)) << "it has waited longest, but its address has only one";
}

TEST_F(HttpServerLimits, EndANewConnectionWhereNoneWaits) {
    HttpServer::Limits two;
    two.connectionsPerAddress = 2;
    serve(two);
    const auto answered = connect();
    answered->send("GET /wait HTTP/1.1\r\nHost: x\r\n\r\n");
    answers_.entered.get_future().wait();
    const auto queued = connect();
    queued->send(inTurn);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // until it is read
    EXPECT_EQ("", connect()->receiveAll());
    EXPECT_TRUE(isServed(*connect("127.0.0.2")));
    answers_.leave.set_value();
    EXPECT_EQ(200, statusOf(answered->receiveUntil("turn\n")));
    EXPECT_EQ(200, statusOf(queued->receiveUntil("turn\n")));
}

TEST_F(HttpServerLimits, AnswerAHeadThatTakesTooLongWith408) {
#ifdef EPG_EMULATED
    GTEST_SKIP()
        << "the emulator does not tell what a socket has received, so a head's first byte is not seen";
#endif
    HttpServer::Limits brief;
    brief.headTime = seconds(1);
    expectRefusedAfterASecond(brief, "GET / HTTP/1.1\r\nX: ");
}

TEST_F(HttpServerLimits, CountAHeadsTimeFromItsFirstByte) {
    HttpServer::Limits brief;
    brief.headTime = seconds(1);
    serve(brief);
    const auto connection = connect();
    for (int round = 0; round < 2; ++round) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        EXPECT_TRUE(isServed(*connection));
    }
}

TEST_F(HttpServerLimits, AnswerABodyThatTakesTooLongWith408) {
    HttpServer::Limits brief;
    brief.bodyTime = seconds(1);
    expectRefusedAfterASecond(brief, "PUT /turn HTTP/1.1\r\nHost: x\r\nContent-Length: 1000000\r\n\r\n");
}

TEST_F(HttpServerLimits, EndAConnectionWhoseClientGoesOnAfterItWasRefused) {
    HttpServer::Limits brief;
    brief.bodyTime = seconds(0);
    serve(brief);
    RawConnection connection(url_);
    connection.send(chunkedHead);
    const std::string chunk = "100000\r\n" + std::string(mebibyte, 'b') + "\r\n";
    int sent = 0;
    while (sent < 20000 && connection.send(chunk))
        ++sent;
    EXPECT_LT(sent, 20000);
    EXPECT_TRUE(isServed(*connect()));
}

TEST_F(HttpServerLimits, AnswerABodyInChunksThatIsTooLongWith413) {
    HttpServer::Limits shorter;
    shorter.chunkedBody = 4 * mebibyte;
    serve(shorter);
    const auto fits = connect();
    const std::string chunk = "100000\r\n" + std::string(mebibyte, 'b') + "\r\n";
    fits->send(chunkedHead + chunk + chunk + chunk + chunk + "0\r\n\r\n");
    EXPECT_EQ(200, statusOf(fits->receiveUntil("turn\n")));
    const auto longer = connect();
    longer->send(chunkedHead + chunk + chunk + chunk + chunk + "1\r\nb");
    EXPECT_EQ(413, statusOf(longer->receiveAll()));
}

TEST_F(HttpServerLimits, AnswerALongBodyThatThereIsNoMemoryForWith503) {
    HttpServer::Limits little;
    little.bodyMemory = 3 * mebibyte;
    serve(little);
    const std::string head = "PUT /turn HTTP/1.1\r\nHost: x\r\nConnection: close\r\nContent-Length: ";
    const auto first = connect();
    first->send(head + "2000000\r\n\r\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // until it is read
    const auto second = connect();
    second->send(head + "2000000\r\n\r\n");
    const std::string refused = second->receiveAll();
    EXPECT_EQ(503, statusOf(refused));
    EXPECT_THAT(refused, HasSubstr("\r\nRetry-After: 5\r\n"));
    const auto brief = connect();
    brief->send(head + "60000\r\n\r\n" + std::string(60000, 'b'));
    EXPECT_EQ(200, statusOf(brief->receiveAll()));
    first->send(std::string(2000000, 'b'));
    EXPECT_EQ(200, statusOf(first->receiveAll()));
    const auto third = connect();
    third->send(head + "2000000\r\n\r\n" + std::string(2000000, 'b'));
    EXPECT_EQ(200, statusOf(third->receiveAll())) << "the first is not held any more";
}

TEST_F(HttpServerLimits, EndTheAnswersThatAreLongestUnderWayWhenTheyTakeTooMuchMemory) {
    HttpServer::Limits little;
    little.answerMemory = 30 * mebibyte;
    serve(little);
    std::vector<std::unique_ptr<RawConnection>> deaf;
    for (int number = 0; number < 10; ++number) {
        deaf.push_back(connect());
        deaf.back()->send(large);
    }
    HttpClient client(url_);
    for (int number = 0; number < 5; ++number)
        EXPECT_EQ(8 * mebibyte, client.get("/large").body.size());
    EXPECT_LT(deaf.front()->receiveAll().size(), 8 * mebibyte);
}

TEST_F(HttpServerLimits, EndAnAnswerThatTakesTooLong) {
    HttpServer::Limits brief;
    brief.answerTime = seconds(1);
    serve(brief);
    const auto connection = connect();
    connection->send(large);
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    EXPECT_LT(connection->receiveAll().size(), 8 * mebibyte);
}

TEST_F(HttpServerLimits, AnswerARequestLineThatIsTooLongWith414AndHeadersWith431) {
    serve({});
    const std::string filler(200000, 'a');
    const auto line = connect();
    line->send("GET /" + filler + " HTTP/1.1\r\nHost: x\r\n\r\n");
    EXPECT_EQ(414, statusOf(line->receiveAll()));
    const auto header = connect();
    header->send("GET / HTTP/1.1\r\nHost: x\r\nX: " + filler + "\r\n\r\n");
    EXPECT_EQ(431, statusOf(header->receiveAll()));
}

TEST_F(HttpServerLimits, EndAConnectionWhoseClientEndedItsSideWithinARequest) {
    serve({});
    std::vector<std::unique_ptr<RawConnection>> cut;
    const auto begun = steady_clock::now();
    for (int number = 0; number < 20; ++number) {
        for (const char* bytes : {"PUT /turn HTTP/1.1\r\nHost: x\r\nContent-Length: 9\r\n\r\n{", "GET /tu"}) {
            cut.push_back(connect());
            cut.back()->send(bytes);
            cut.back()->endSending();
        }
    }
    for (const auto& connection : cut)
        EXPECT_EQ("", connection->receiveAll());
    EXPECT_LT(steady_clock::now() - begun, seconds(5));
}

TEST_F(HttpServerLimits, AnswerAClientThatEndedItsSideAfterItsRequest) {
    serve({});
    std::vector<std::unique_ptr<RawConnection>> idle;
    for (int number = 0; number < 20; ++number) {
        idle.push_back(connect());
        EXPECT_TRUE(isServed(*idle.back()));
    }
    for (int number = 0; number < 40; ++number) {
        const auto connection = connect();
        connection->send(inTurn);
        connection->endSending();
        EXPECT_THAT(connection->receiveAll(), EndsWith("in turn\n")) << number;
    }
}

}  // namespace
}  // namespace epgset
