// The web server's bookkeeping of connections and requests when there is no memory for it.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <thread>

#include "set/log/LogControl.h"
#include "set/web/ConnectionWatch.h"
#include "set/web/TaskQueue.h"
#include "tests/support/AllocationFaults.h"

namespace epgset::test {
namespace {

using epgtest::AllocationFault;

/// Two connected sockets: the set's and the client's.
class ConnectedPair {
public:
    ConnectedPair() {
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()) != 0) throw std::bad_alloc();
    }
    ~ConnectedPair() {
        for (const int end : ends_)
            close(end);
    }
    ConnectedPair(const ConnectedPair&) = delete;
    ConnectedPair& operator=(const ConnectedPair&) = delete;

    int own() const { return ends_[0]; }

    /// What has come to the client; nothing both while the connection is open and at its end.
    std::string received() const {
        std::array<char, 256> bytes{};
        const auto count = recv(ends_[1], bytes.data(), bytes.size(), MSG_DONTWAIT);
        return {bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
    }

    bool isOpen() const {
        char byte = 0;
        return recv(ends_[1], &byte, 1, MSG_DONTWAIT | MSG_PEEK) < 0 && errno == EAGAIN;
    }

private:
    std::array<int, 2> ends_{};
};

/// The log is silent, and its own allocations are not made to fail.
class ConnectionsWithoutMemory : public ::testing::Test {
protected:
    void SetUp() override { LogControl::setLevel(Container::Logger::Off); }
    void TearDown() override { LogControl::setLevel(Container::Logger::Warning); }

    /// Lets each allocation of `call` fail in turn, which must throw std::bad_alloc and nothing else.
    template <typename Call>
    static void failEach(const Call& call) {
        for (int n = 0;; ++n) {
            AllocationFault fault(n);
            bool threw = false;
            try {
                call();
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            const bool failed = fault.happened();
            fault.end();
            EXPECT_EQ(failed, threw) << "allocation " << n;
            if (!failed) {
                EXPECT_GT(n, 0);
                return;
            }
        }
    }
};

TEST_F(ConnectionsWithoutMemory, AConnectionThatCannotBeWatchedTakesNoRoom) {
    ConnectionLimits limits;
    limits.connections = 1;
    const ConnectedPair unwatched;
    const ConnectedPair next;
    ConnectionWatch watch(limits, true);
    ConnectionWatch::Connection* opened = nullptr;
    failEach([&] {
        opened = nullptr;
        opened = watch.open(unwatched.own(), nullptr);
    });
    ASSERT_NE(nullptr, opened);
    EXPECT_FALSE(watch.isEnding(*opened));
    EXPECT_TRUE(unwatched.isOpen());
    watch.close(opened);

    ConnectionWatch::Connection* const alone = watch.open(next.own(), nullptr);
    EXPECT_FALSE(watch.isEnding(*alone));
    EXPECT_TRUE(unwatched.isOpen());
    watch.close(alone);
}

TEST_F(ConnectionsWithoutMemory, AnAnswerThatCannotBeCountedTakesNothingFromOthersOfTheSameBody) {
    ConnectionLimits limits;
    limits.answerMemory = 1000;
    const std::array<ConnectedPair, 3> sockets;
    ConnectionWatch watch(limits, true);
    const auto body = std::make_shared<const std::string>(600, 'a');
    const auto other = std::make_shared<const std::string>(600, 'b');
    auto* const failing = watch.open(sockets[0].own(), nullptr);
    auto* const sending = watch.open(sockets[1].own(), nullptr);
    auto* const later = watch.open(sockets[2].own(), nullptr);
    {
        const AllocationFault fault(0);
        EXPECT_THROW(watch.answerBegins(*failing, body), std::bad_alloc);
    }
    watch.answerBegins(*sending, body);
    watch.answerEnds(*failing);
    watch.answerBegins(*later, other);
    EXPECT_TRUE(watch.isEnding(*sending)) << "both bodies together are more than may be held";
    EXPECT_FALSE(watch.isEnding(*later));
    for (auto* const connection : {failing, sending, later})
        watch.close(connection);
}

TEST_F(ConnectionsWithoutMemory, AConnectionThatTakesTooLongIsToldAndEndedAllTheSame) {
    ConnectionLimits limits;
    limits.bodyTime = std::chrono::seconds(0);
    const ConnectedPair slow;
    ConnectionWatch watch(limits, true);
    ConnectionWatch::Connection* const connection = watch.open(slow.own(), nullptr);
    {
        const AllocationFault fault(0, AllocationFault::AndAllAfter, AllocationFault::OtherThreads);
        watch.headEnds(*connection, 0);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (!watch.isEnding(*connection) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_TRUE(fault.happened());
    }
    EXPECT_TRUE(watch.isEnding(*connection));
    EXPECT_TRUE(slow.received().starts_with("HTTP/1.1 408 Request Timeout\r\n"));
    watch.close(connection);
}

TEST_F(ConnectionsWithoutMemory, ATaskThatCannotBeQueuedHoldsUpNoOther) {
    TaskQueue queue;
    std::promise<void> go;
    std::promise<void> held;
    queue.post({}, [&] {
        held.set_value();
        go.get_future().wait();
    });
    held.get_future().wait();
    int ran = 0;
    failEach([&] { queue.post(ClientAddress{1}, [&ran] { ++ran; }); });
    failEach([&] {
        for (int i = 0; i < 200; ++i)
            queue.post(ClientAddress{2}, [] {});
    });
    go.set_value();
    queue.close();
    EXPECT_EQ(1, ran);
}

}  // namespace
}  // namespace epgset::test
