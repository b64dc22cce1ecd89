// The web server when there is no memory, at every allocation that a request takes in its threads.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <string>

#include "set/log/LogControl.h"
#include "set/web/HttpServer.h"
#include "set/web/ListenSocket.h"
#include "tests/service/SetInProcess.h"
#include "tests/support/AllocationFaults.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using epgtest::AllocationFault;

/// The set in this process, served.
class ServerWithoutMemory : public ::testing::TestWithParam<AllocationFault::Extent> {
protected:
    void SetUp() override { LogControl::setLevel(Container::Logger::Off); }
    void TearDown() override { LogControl::setLevel(Container::Logger::Warning); }

    /// What the server sends for a request over a new connection: nothing where it closes that.
    std::string ask(const std::string& request) {
        RawConnection connection(url_);
        connection.send(request);
        return connection.receiveAll(std::chrono::seconds(5));
    }

    static std::string get(const std::string& path, const std::string& header = "") {
        return "GET " + path + " HTTP/1.1\r\nHost: localhost\r\n" + header + "Connection: close\r\n\r\n";
    }

    /// Whether an answer is whole, by the length that it states.
    static bool isWhole(const std::string& answer) {
        const std::size_t body = answer.find("\r\n\r\n") + 4;
        const std::size_t length = answer.find("Content-Length: ");
        if (statusOf(answer) == 204) return body == answer.size();
        return length != std::string::npos && std::stoul(answer.substr(length + 16)) == answer.size() - body;
    }

    /// Lets one allocation after the other fail of those that one request takes.
    void failEach(const std::string& request) {
        const int good = statusOf(ask(request));
        ASSERT_EQ(200, good);
        int closed = 0;
        int requests = 0;
        int n = epgtest::firstFault(GetParam());
        for (bool failed = true; failed; n += epgtest::faultStep(), ++requests) {
            RawConnection connection(url_);
            // Not while the connection is taken: one that cannot be taken is tried again by the library.
            AllocationFault fault(n, GetParam(), AllocationFault::OtherThreads);
            connection.send(request);
            const std::string answer = connection.receiveAll(std::chrono::seconds(5));
            failed = fault.happened();
            fault.end();
            if (answer.empty()) ++closed;
            EXPECT_TRUE(answer.empty() || isWhole(answer)) << "allocation " << n << ": " << answer;
            ASSERT_EQ(good, statusOf(ask(request))) << "after allocation " << n;
        }
        std::cout << "figure: " << requests << " requests over HTTP without memory, " << closed
                  << " connections closed\n";
    }

    SetInProcess set_{EPG_PLUGIN};

private:
    ListenSocket socket_{"127.0.0.1", 0};
    const std::string url_ = socket_.url(false);
    const HttpServer server_{std::move(socket_), set_.routes()};
};

TEST_P(ServerWithoutMemory, AnswersAnErrorOrClosesTheConnectionAndAnswersTheNextRequest) {
    failEach(get("/ws/epg2/channels"));
    failEach(get("/set/status", "Accept: application/json\r\n"));
    failEach(get("/set/metrics"));
    const std::string body(5000, ' ');
    failEach(
        "POST /ws/epg2?sql=SELECT+1+AS+a HTTP/1.1\r\nHost: localhost\r\nConnection: "
        "close\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body);
}

INSTANTIATE_TEST_SUITE_P(EachExtent, ServerWithoutMemory,
                         ::testing::Values(AllocationFault::One, AllocationFault::AndAllAfter));

}  // namespace
}  // namespace epgset::test
