// Ordinary clients are served, and the set takes bounded memory and lets go of all it took, while other
// clients do what they can to prevent it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/service/OrdinaryClients.h"
#include "tests/service/ServerProcess.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::size_t mebibyte = std::size_t{1} << 20U;
constexpr std::size_t answerMemory = 64 * mebibyte;
constexpr std::size_t bodyMemory = 32 * mebibyte;

/// What the set may take more than before: twice its bounds, for what the allocator keeps, and eight times
/// the longest answer, for the one that is being made.
constexpr std::size_t memoryBound = 2 * (answerMemory + bodyMemory) + 8 * 10 * mebibyte;

/// An answer of some 10 MB, which is not kept, whatever the number.
std::string largeRequest(int number) {
    return "GET /ws/epg2?sql=SELECT%20hex(zeroblob(1900000))%20AS%20a,hex(zeroblob(1900000))%20AS%20b,"
           "hex(zeroblob(1400000))%20AS%20c," +
           std::to_string(number) + "%20AS%20n HTTP/1.1\r\nHost: localhost\r\n\r\n";
}

/// An ordinary request waits while one such answer is made.
constexpr seconds whileAnswersAreLarge{10};

const std::string statusRequest = "GET /set/status HTTP/1.1\r\nHost: localhost\r\n\r\n";

using Connections = std::vector<std::unique_ptr<RawConnection>>;

class HostileClients : public ServiceFixture {
protected:
    static void SetUpTestSuite() {
        startSet({"--now", "2026-08-23T12:00:00Z", "--idle-time", "3", "--head-time", "2", "--body-time", "2",
                  "--answer-time", "8", "--answer-memory", std::to_string(answerMemory), "--body-memory",
                  std::to_string(bodyMemory)});
    }

    /// Has ordinary clients ask while `attack` goes on; prints and checks how they fare and what the set
    /// takes.
    void withstand(const char* name, const std::function<void()>& attack, milliseconds longest = seconds(2)) {
        // What is opened once, for as long as the set runs, is open then.
        EXPECT_EQ(200, client_.get("/ws/epg2/antennas").status);
        EXPECT_EQ(200, client_.get("/ws/epg2?sql=SELECT%201").status);
        const pid_t process = set().process().id();
        const std::size_t filesBefore = openFilesOf(process);
        beginPeakMemoryOf(process);
        const std::size_t memoryBefore = peakMemoryOf(process);
        OrdinaryClients ordinary(set().url());
        std::this_thread::sleep_for(milliseconds(200));
        attack();
        const OrdinaryClients::Outcome outcome = ordinary.finish();
        const std::size_t memory = peakMemoryOf(process);
        const std::size_t files = filesAfter(filesBefore);
        std::printf(
            "figure: hostile, %-42s ordinary answers %5zu, wrong %zu, p99 %6.1f ms; memory %3zu to %3zu MiB; "
            "files %zu to %zu\n",
            name, outcome.answers, outcome.wrong, static_cast<double>(outcome.ninetyNinth.count()) / 1000,
            memoryBefore / mebibyte, memory / mebibyte, filesBefore, files);
        EXPECT_GT(outcome.answers, 0U);
        EXPECT_EQ(0U, outcome.wrong) << outcome.example;
        EXPECT_LT(outcome.ninetyNinth, longest);
        EXPECT_LT(memory, memoryBefore + memoryBound);
        EXPECT_LE(files, filesBefore);
        EXPECT_TRUE(set().process().running());
    }

    /// How many files are open once there are no more than before, or after a while.
    static std::size_t filesAfter(std::size_t before) {
        const auto deadline = steady_clock::now() + seconds(30);
        std::size_t files = openFilesOf(set().process().id());
        while (files > before && steady_clock::now() < deadline) {
            std::this_thread::sleep_for(milliseconds(50));
            files = openFilesOf(set().process().id());
        }
        return files;
    }

    static std::unique_ptr<RawConnection> connect(const std::string& from = "127.0.0.66") {
        return std::make_unique<RawConnection>(set().url(), from);
    }

    static Connections connectMany(int count, const std::string& first,
                                   const std::string& from = "127.0.0.66") {
        Connections connections;
        for (int number = 0; number < count; ++number) {
            connections.push_back(connect(from));
            connections.back()->send(first);
        }
        return connections;
    }

    /// Sends a byte over each connection every now and then until it is answered; says what they are
    /// answered.
    static std::multiset<int> trickle(const Connections& connections) {
        std::vector<std::string> answers(connections.size());
        const auto deadline = steady_clock::now() + seconds(15);
        while (std::ranges::count(answers, "") > 0 && steady_clock::now() < deadline) {
            for (std::size_t number = 0; number < connections.size(); ++number) {
                if (!answers[number].empty()) continue;
                connections[number]->send("x");
                answers[number] = connections[number]->receiveAll(milliseconds(2));
            }
            std::this_thread::sleep_for(milliseconds(130));
        }
        std::multiset<int> statuses;
        for (const std::string& answer : answers)
            statuses.insert(statusOf(answer));
        return statuses;
    }
};

TEST_F(HostileClients, SendHeadersByteByByte) {
#ifdef EPG_EMULATED
    GTEST_SKIP() << "the emulator does not tell what a socket has received, so a head's first byte is not seen";
#endif
    withstand("headers byte by byte", [] {
        const Connections slow = connectMany(120, "GET /ws/epg2/channels HTTP/1.1\r\nHost: localhost\r\nX: ");
        EXPECT_EQ(120U, trickle(slow).count(408));
    });
}

TEST_F(HostileClients, SendBodiesByteByByte) {
    withstand("bodies byte by byte", [] {
        const Connections slow = connectMany(
            120, "PUT /ws/epg2/schedules HTTP/1.1\r\nHost: localhost\r\nContent-Length: 10000\r\n\r\n{");
        EXPECT_EQ(120U, trickle(slow).count(408));
    });
}

TEST_F(HostileClients, OpenConnectionsAndSaveTheirBreath) {
    withstand("silent and half-closed connections", [] {
        const Connections silent = connectMany(200, "");
        const Connections halfClosed =
            connectMany(200, "PUT /ws/epg2/schedules HTTP/1.1\r\nContent-Length: 10\r\n\r\n{", "127.0.0.67");
        for (const auto& connection : halfClosed)
            connection->endSending();
        for (const auto& connection : halfClosed)
            connection->receiveAll();
        for (const auto& connection : silent)
            EXPECT_EQ("", connection->receiveAll());
    });
}

/// Lets this process have so many files open as far as it may, and answers how many connections that allows.
int connectionsToHave(int wanted) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    constexpr rlim_t others = 300;
    return limit.rlim_cur > others + static_cast<rlim_t>(wanted) ? wanted
                                                                 : static_cast<int>(limit.rlim_cur - others);
}

TEST_F(HostileClients, OpenTenThousandConnectionsFromOneAddress) {
    const int count = connectionsToHave(10000);
    withstand((std::to_string(count) + " connections of one address").c_str(),
              [count] { connectMany(count, statusRequest); });
}

TEST_F(HostileClients, OpenTenThousandConnectionsFromManyAddresses) {
    const int count = connectionsToHave(10000);
    withstand((std::to_string(count) + " connections of 50 addresses").c_str(), [count] {
        Connections all;
        for (int number = 0; number < count; ++number)
            all.push_back(connect("127.0.1." + std::to_string(1 + number % 50)));
        std::this_thread::sleep_for(milliseconds(500));
    });
}

TEST_F(HostileClients, SendThousandsOfRequestsAtOnceAndReadNoAnswer) {
    withstand("pipelined requests, answers unread", [] {
        std::string many;
        for (int number = 0; number < 400; ++number)
            many += "GET /ws/epg2/antennas HTTP/1.1\r\nHost: localhost\r\n\r\n" + statusRequest;
        const Connections pipelines = connectMany(20, many);
        std::this_thread::sleep_for(seconds(2));
    });
}

TEST_F(HostileClients, SendRequestLinesAndHeadersOfMebibytes) {
    withstand("request lines and headers of 8 MiB", [] {
        const std::string filler(8 * mebibyte, 'a');
        for (int number = 0; number < 20; ++number) {
            connect()->send("GET /" + filler + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
            connect()->send("GET / HTTP/1.1\r\nHost: localhost\r\nX: " + filler + "\r\n\r\n");
            std::string lines = "GET / HTTP/1.1\r\nHost: localhost\r\n";
            for (int line = 0; line < 100000; ++line)
                lines += "X:y\r\n";
            connect()->send(lines + "\r\n");
        }
    });
}

TEST_F(HostileClients, SendBodiesInChunksWithoutEnd) {
    withstand("bodies in chunks without end", [] {
        const std::string chunk = "10000\r\n" + std::string(65536, 'b') + "\r\n";
        std::vector<std::thread> senders;
        for (int number = 0; number < 4; ++number) {
            senders.emplace_back([&chunk] {
                const auto connection = connect();
                connection->send(
                    "PUT /ws/epg2/other HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n");
                std::size_t sent = 0;
                while (sent < 1024 * mebibyte && connection->send(chunk))
                    sent += chunk.size();
                EXPECT_LT(sent, 1024 * mebibyte) << "nobody ended it";
            });
        }
        for (std::thread& sender : senders)
            sender.join();
    });
}

TEST_F(HostileClients, HoldLongBodies) {
    withstand("bodies of 2 MiB that do not end", [] {
        const std::string most(2097151, ' ');
        Connections held;
        for (int number = 0; number < 120; ++number) {
            held.push_back(connect());
            // What is refused unread is not taken either.
            const timeval patience{0, 50000};
            setsockopt(held.back()->descriptor(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
            held.back()->send(
                "PUT /ws/epg2/other HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2097152\r\n\r\n" + most);
        }
    });
}

TEST_F(HostileClients, SpeakOtherVersionsAndOtherProtocols) {
    withstand("other versions, garbage, TLS", [] {
        std::mt19937 random(1);  // NOLINT: the same each time
        std::string garbage(4096, '\0');
        for (char& byte : garbage)
            byte = static_cast<char>(random());
        const std::string hello =
            std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03", 11) + garbage.substr(0, 500);
        for (int round = 0; round < 50; ++round) {
            const auto old = connect();
            old->send("GET /set/status HTTP/1.0\r\nHost: localhost\r\n\r\n");
            EXPECT_THAT(old->receiveAll(), ::testing::HasSubstr(" 200 OK\r\n")) << "and closes";
            for (const char* version :
                 {"HTTP/3.7", "HTTP/2.0", "HTTP/0.9", "HTTP/11", "http/1.1", "FTP/1.1"}) {
                const auto other = connect();
                other->send(std::string("GET /set/status ") + version + "\r\nHost: localhost\r\n\r\n");
                EXPECT_EQ(statusOf(other->receiveAll()) / 100, 4 + (version[0] == 'H' && version[5] != '1'))
                    << version;
            }
            const auto noise = connect();
            noise->send(garbage + "\r\n\r\n");
            const auto secret = connect();
            secret->send(hello);
        }
    });
}

TEST_F(HostileClients, NeverReadTheirLargeAnswers) {
    withstand(
        "answers of 10 MB that nobody reads",
        [] {
            Connections deaf;
            for (int number = 0; number < 40; ++number) {
                deaf.push_back(connect());
                deaf.back()->send(largeRequest(number));
            }
            std::this_thread::sleep_for(seconds(4));
        },
        whileAnswersAreLarge);
}

TEST_F(HostileClients, BreakConnectionsOffInTheMiddleOfAnswers) {
    withstand(
        "resets in the middle of answers",
        [] {
            for (int number = 0; number < 15; ++number) {
                const auto connection = connect();
                connection->send(largeRequest(number));
                char byte = 0;
                EXPECT_EQ(1, recv(connection->descriptor(), &byte, 1, 0));
                connection->reset();
            }
        },
        whileAnswersAreLarge);
}

}  // namespace
}  // namespace epgset::test
