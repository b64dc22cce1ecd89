// The set's events over HTTP, as server-sent events.
#include "set/web/EventFeed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "set/web/HttpServer.h"
#include "tests/support/RawConnection.h"

namespace epgset {
namespace {

using test::RawConnection;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using namespace std::chrono_literals;

/// Answers every GET with a feed of a ring.
class FeedHandler : public WebHandler {
public:
    FeedHandler(EventRing& ring, std::chrono::milliseconds heartbeat) : feed_(ring, heartbeat) {}

    std::optional<WebResponse> answerAtOnce(const WebRequest& request) override {
        WebResponse response;
        response.stream = feed_.open(headerValue(request.headers, "Last-Event-ID"));
        if (!response.stream) return textResponse(503, "too many");
        return response;
    }

    WebResponse answerInTurn(const WebRequest&) override { return textResponse(500, "not reached"); }

private:
    EventFeed feed_;
};

class EventFeedTest : public ::testing::Test {
protected:
    void start(std::chrono::milliseconds heartbeat = 1h) {
        handler_.emplace(ring_, heartbeat);
        ListenSocket socket("127.0.0.1", 0);
        url_ = socket.url();
        server_ = std::make_unique<HttpServer>(std::move(socket), *handler_);
    }

    /// A client that has asked for events after a number; none where that is empty. It speaks HTTP/1.0, whose
    /// answers are not cut into chunks.
    std::unique_ptr<RawConnection> listen(const std::string& lastEventId = "") {
        auto connection = std::make_unique<RawConnection>(url_);
        connection->send("GET / HTTP/1.0\r\n" +
                         (lastEventId.empty() ? "" : "Last-Event-ID: " + lastEventId + "\r\n") + "\r\n");
        return connection;
    }

    void publish(const std::string& path) { ring_.publish("event", path); }

    EventRing ring_{4, 100};
    std::string url_;
    std::optional<FeedHandler> handler_;
    std::unique_ptr<HttpServer> server_;
};

TEST_F(EventFeedTest, TellsANewClientTheNumberItBeginsAt) {
    publish("/before");
    start();
    EXPECT_THAT(listen()->receiveUntil("\n\n"), AllOf(StartsWith("HTTP/1."), HasSubstr("200 OK")));
    EXPECT_THAT(listen()->receiveUntil("id: 101\n\n"), EndsWith("\r\n\r\nretry: 3000\nid: 101\n\n"));
}

TEST_F(EventFeedTest, SendsEventsAsTheyHappen) {
    start();
    const auto client = listen();
    client->receiveUntil("id: 100\n\n");
    publish("/1");
    EXPECT_EQ(client->receiveUntil("\n\n"), "id: 101\nevent: event\ndata: {\"path\":\"/1\"}\n\n");
    publish("/2");
    EXPECT_EQ(client->receiveUntil("\n\n"), "id: 102\nevent: event\ndata: {\"path\":\"/2\"}\n\n");
}

TEST_F(EventFeedTest, SendsEveryListenerTheSame) {
    start();
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (int i = 0; i < 10; ++i) {
        clients.push_back(listen());
        clients.back()->receiveUntil("id: 100\n\n");
    }
    publish("/1");
    for (const auto& client : clients)
        EXPECT_THAT(client->receiveUntil("\n\n"), HasSubstr("\"/1\""));
}

TEST_F(EventFeedTest, SendsAClientThatComesBackWhatItMissed) {
    for (const char* path : {"/1", "/2", "/3"})
        publish(path);
    start();
    EXPECT_THAT(listen("101")->receiveUntil("{\"path\":\"/3\"}\n\n"),
                EndsWith("\r\n\r\nretry: 3000\n\n"
                         "id: 102\nevent: event\ndata: {\"path\":\"/2\"}\n\n"
                         "id: 103\nevent: event\ndata: {\"path\":\"/3\"}\n\n"));
}

TEST_F(EventFeedTest, TellsAClientToReadEverythingAgainWhenWhatItMissedIsGone) {
    for (const char* path : {"/1", "/2", "/3", "/4", "/5"})
        publish(path);
    start();
    const std::string reset = "id: 105\nevent: reset\ndata: {\"path\":\"/ws/epg2\"}\n\n";
    for (const char* lastEventId : {"100", "7", "106", "18446744073709551616", "-1", "x", "101x"}) {
        const auto client = listen(lastEventId);
        EXPECT_THAT(client->receiveUntil("/ws/epg2\"}\n\n"), EndsWith("retry: 3000\n\n" + reset))
            << lastEventId;
    }
}

TEST_F(EventFeedTest, GoesOnAfterAReset) {
    start();
    const auto client = listen("7");
    client->receiveUntil("/ws/epg2\"}\n\n");
    publish("/1");
    EXPECT_THAT(client->receiveUntil("\n\n"), StartsWith("id: 101\n"));
}

TEST_F(EventFeedTest, SendsACommentEveryNowAndThen) {
    start(30ms);
    const auto client = listen();
    client->receiveUntil("id: 100\n\n");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client->receiveUntil("\n\n"), ": nothing new\n\n");
}

TEST_F(EventFeedTest, EscapesAPath) {
    start();
    const auto client = listen();
    client->receiveUntil("id: 100\n\n");
    publish("/\"\n\\");
    EXPECT_THAT(client->receiveUntil("\n\n"), EndsWith("data: {\"path\":\"/\\\"\\n\\\\\"}\n\n"));
}

TEST_F(EventFeedTest, HasABoundOfClientsAndRoomAgainWhenOneGoes) {
    start(20ms);
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (std::size_t i = 0; i < EventFeed::maximumStreams; ++i) {
        clients.push_back(listen());
        clients.back()->receiveUntil("id: 100\n\n");
    }
    EXPECT_THAT(listen()->receiveUntil("too many\n"), HasSubstr(" 503 "));
    clients.pop_back();
    bool room = false;
    for (int tries = 0; tries < 500 && !room; ++tries) {
        std::this_thread::sleep_for(10ms);
        room = listen()->receiveUntil("\n\n").find(" 200 ") != std::string::npos;
    }
    EXPECT_TRUE(room) << "a client that left still counts";
}

TEST_F(EventFeedTest, EndsItsStreamsWhenTheServerStops) {
    start();
    const auto client = listen();
    client->receiveUntil("id: 100\n\n");
    const auto before = std::chrono::steady_clock::now();
    server_.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 900ms) << "the server waited for its streams";
    EXPECT_EQ(client->receiveAll(), "");
}

TEST_F(EventFeedTest, EndsItsStreamsWhenTheFeedGoes) {
    start();
    const auto client = listen();
    client->receiveUntil("id: 100\n\n");
    handler_.reset();
    EXPECT_EQ(client->receiveAll(), "");
}

TEST_F(EventFeedTest, LosesNothingWhileManyPublishAndListen) {
    EventRing ring(10000);
    FeedHandler handler(ring, 1h);
    ListenSocket socket("127.0.0.1", 0);
    const std::string url = socket.url();
    const HttpServer server(std::move(socket), handler);
    constexpr int publishers = 4;
    constexpr int eventsEach = 500;
    std::vector<std::unique_ptr<RawConnection>> clients;
    for (int i = 0; i < 4; ++i) {
        clients.push_back(std::make_unique<RawConnection>(url));
        clients.back()->send("GET / HTTP/1.0\r\nLast-Event-ID: 0\r\n\r\n");
    }
    std::vector<std::thread> threads;
    for (int i = 0; i < publishers; ++i) {
        threads.emplace_back([&ring] {
            for (int n = 0; n < eventsEach; ++n)
                ring.publish("event", "/");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    ring.publish("last", "/last");
    for (const auto& client : clients) {
        const std::string text = client->receiveUntil("{\"path\":\"/last\"}\n\n");
        std::size_t from = 0;
        for (int id = 1; id <= publishers * eventsEach; ++id) {
            from = text.find("id: " + std::to_string(id) + "\n", from);
            ASSERT_NE(from, std::string::npos) << "event " << id << " is missing";
        }
        EXPECT_THAT(text, Not(HasSubstr("reset")));
        EXPECT_THAT(text, EndsWith("{\"path\":\"/last\"}\n\n"));
    }
}

}  // namespace
}  // namespace epgset
