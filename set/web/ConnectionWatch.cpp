#include "set/web/ConnectionWatch.h"

#include <fmt/format.h>
#include <linux/tcp.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

#include "host/Logger.h"
#include "set/metrics/Metrics.h"

namespace epgset {
namespace {

constexpr std::chrono::milliseconds lookPeriod{250};

/// How long a client that was refused may go on sending, so that it gets to read why.
constexpr std::chrono::seconds lingering{2};

/// A body or an answer that has been under way for so long is slow enough to make way for a new connection.
constexpr std::chrono::seconds slow{5};

/// Bodies up to this length are held whatever others take: so many times the connections at the most.
constexpr std::size_t shortBody = std::size_t{64} << 10U;

constexpr std::chrono::minutes warningPeriod{1};

tcp_info infoOf(int socket) {
    tcp_info info{};
    socklen_t length = sizeof info;
    if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return {};
    return info;
}

/// Whether all that will ever come over a socket has been read: the client has ended its side.
bool isAtItsEnd(int socket, const tcp_info& info) {
    constexpr int closeWait =
        8;  // TCP_CLOSE_WAIT of netinet/tcp.h, which does not go together with linux/tcp.h
    int unread = 0;
    return info.tcpi_state == closeWait && ioctl(socket, FIONREAD, &unread) == 0 && unread == 0;
}

// Made when the library is loaded: there may be no memory for it when it is needed.
const Container::Logger watchLogger = Container::Logger::logger("set/web");

/// Without memory it is not counted.
void countEnded(const char* why) {
    try {
        metrics().countEndedConnection(why);
    } catch (const std::bad_alloc&) {
        watchLogger.warning("a connection that was ended is not counted: %s", why);
    }
}

const char* reasonOf(int status) {
    return status == 408 ? "Request Timeout" : "Content Too Large";
}

}  // namespace

class ConnectionWatch::Connection {
public:
    enum class Phase {
        Waiting,  ///< for a request, or for the rest of its headers
        Body,     ///< of a request
        Turn,     ///< the answer is made
        Answer,   ///< is sent
        Stream,   ///< is sent, without an end
        Ending
    };

    Connection(int connected, const ClientAddress& client) : socket(connected), address(client) {
        enter(Phase::Waiting);
    }

    void waitForRequest() {
        enter(Phase::Waiting);
        received = infoOf(socket).tcpi_bytes_received;
        begun.reset();
    }

    void enter(Phase next) {
        phase = next;
        atItsEnd = false;
        since = Clock::now();
    }

    std::list<Connection>::iterator place;  ///< its own among all connections
    const int socket;
    const ClientAddress address;
    Phase phase = Phase::Waiting;
    Clock::time_point since;
    std::uint64_t received = 0;              ///< over the socket when it began to wait
    std::optional<Clock::time_point> begun;  ///< while it waits: when the first byte was seen to have come
    bool atItsEnd = false;                   ///< while more is waited for, nothing more can come
    std::size_t bodyBytes = 0;               ///< held of long bodies
    const void* answer = nullptr;            ///< the body that is sent
};

using Phase = ConnectionWatch::Connection::Phase;

ConnectionWatch::ConnectionWatch(const ConnectionLimits& limits, bool canTell)
    : limits_(limits), canTell_(canTell), thread_([this] { run(); }) {}

ConnectionWatch::~ConnectionWatch() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

ConnectionWatch::Connection* ConnectionWatch::open(int socket, const sockaddr* address) {
    std::list<Connection> made;
    Connection& added = made.emplace_back(socket, clientAddressOf(address));
    const std::lock_guard lock(mutex_);
    added.place = made.begin();  // which goes with it from list to list
    ++perAddress_[added.address];
    ++open_;
    connections_.splice(connections_.end(), made);
    makeRoom(added);
    if (connections_.size() == 1) changed_.notify_all();
    return &added;
}

const ClientAddress& ConnectionWatch::clientOf(const Connection& connection) {
    return connection.address;
}

void ConnectionWatch::close(Connection* connection) {
    const std::lock_guard lock(mutex_);
    dropBody(*connection);
    forget(*connection);
    bodyBytes_ -= connection->bodyBytes;
    connections_.erase(connection->place);
}

void ConnectionWatch::makeRoom(Connection& newcomer) {
    const bool crowdedAddress = perAddress_[newcomer.address] > limits_.connectionsPerAddress;
    if (!crowdedAddress && open_ <= limits_.connections) return;
    const auto now = Clock::now();
    Connection* const waiting = longestWaiting(newcomer, crowdedAddress, now);
    end(waiting != nullptr ? *waiting : newcomer, "room", SHUT_RDWR);
    if (lastWarning_ == Clock::time_point() || now - lastWarning_ >= warningPeriod) {
        lastWarning_ = now;
        watchLogger.warning("connections are ended beyond the limit of %u, %u of one address",
                            limits_.connections, limits_.connectionsPerAddress);
    }
}

ConnectionWatch::Connection* ConnectionWatch::longestWaiting(const Connection& newcomer, bool ofItsAddress,
                                                             Clock::time_point now) {
    const auto mayGo = [&](const Connection& connection) {
        if (&connection == &newcomer || (ofItsAddress && connection.address != newcomer.address))
            return false;
        const bool isSlow = now - connection.since > slow;
        return connection.phase == Phase::Waiting ||
               (isSlow && (connection.phase == Phase::Body || connection.phase == Phase::Answer));
    };
    const auto rank = [&](const Connection& connection) {
        return std::tuple(perAddress_[connection.address], connection.phase == Phase::Waiting,
                          now - connection.since);
    };
    Connection* chosen = nullptr;
    for (Connection& connection : connections_) {
        if (mayGo(connection) && (chosen == nullptr || rank(connection) > rank(*chosen)))
            chosen = &connection;
    }
    return chosen;
}

bool ConnectionWatch::headEnds(Connection& connection, std::size_t bodyBytes) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Phase::Ending) return true;
    connection.enter(Phase::Body);
    if (bodyBytes <= shortBody) return true;
    if (bodyBytes_ + bodyBytes > limits_.bodyMemory) return false;
    bodyBytes_ += bodyBytes;
    connection.bodyBytes = bodyBytes;
    return true;
}

void ConnectionWatch::requestEnds(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase != Phase::Ending) connection.enter(Phase::Turn);
}

void ConnectionWatch::bodyIsGone(Connection& connection) {
    const std::lock_guard lock(mutex_);
    bodyBytes_ -= std::exchange(connection.bodyBytes, 0);
}

void ConnectionWatch::answerBegins(Connection& connection, const std::shared_ptr<const std::string>& body) {
    const std::lock_guard lock(mutex_);
    if (connection.phase == Phase::Ending) return;
    connection.enter(Phase::Answer);
    if (body->empty()) return;
    auto& [bytes, senders] = answers_[body->data()];
    connection.answer = body->data();
    if (++senders > 1) return;
    bytes = body->size();
    answerBytes_ += bytes;
    makeAnswersFit(connection);
}

void ConnectionWatch::makeAnswersFit(const Connection& newest) {
    while (answerBytes_ > limits_.answerMemory) {
        Connection* oldest = nullptr;
        for (Connection& connection : connections_) {
            if (&connection == &newest || connection.answer == nullptr) continue;
            if (oldest == nullptr || connection.since < oldest->since) oldest = &connection;
        }
        if (oldest == nullptr) return;
        end(*oldest, "memory", SHUT_RDWR);
    }
}

void ConnectionWatch::streamBegins(Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (connection.phase != Phase::Ending) connection.enter(Phase::Stream);
}

void ConnectionWatch::answerEnds(Connection& connection) {
    const std::lock_guard lock(mutex_);
    dropBody(connection);
    bodyBytes_ -= std::exchange(connection.bodyBytes, 0);
    if (connection.phase != Phase::Ending) connection.waitForRequest();
}

void ConnectionWatch::dropBody(Connection& connection) {
    const auto held = answers_.find(std::exchange(connection.answer, nullptr));
    if (held == answers_.end() || --held->second.second > 0) return;
    answerBytes_ -= held->second.first;
    answers_.erase(held);
}

void ConnectionWatch::refuse(Connection& connection, int status) {
    const std::lock_guard lock(mutex_);
    if (connection.phase != Phase::Ending) tell(connection, status, "length");
}

bool ConnectionWatch::isEnding(const Connection& connection) const {
    const std::lock_guard lock(mutex_);
    return connection.phase == Phase::Ending;
}

// Nobody else writes to the socket now: the request is not whole, so that there is no answer to it.
void ConnectionWatch::tell(Connection& connection, int status, const char* why) {
    if (canTell_) {
        // There may be no memory for a string.
        std::array<char, 128> answer;
        const auto written = fmt::format_to_n(
            answer.data(), answer.size(), "HTTP/1.1 {} {}\r\nConnection: close\r\nContent-Length: 0\r\n\r\n",
            status, reasonOf(status));
        static_cast<void>(send(connection.socket, answer.data(), written.size, MSG_DONTWAIT | MSG_NOSIGNAL));
    }
    end(connection, why, canTell_ ? SHUT_WR : SHUT_RDWR);
}

void ConnectionWatch::end(Connection& connection, const char* why, int how) {
    if (connection.phase == Phase::Ending) return;
    dropBody(connection);
    forget(connection);
    connection.enter(Phase::Ending);
    shutdown(connection.socket, how);
    countEnded(why);
}

/// One that is being ended has been counted out.
void ConnectionWatch::forget(const Connection& connection) {
    if (connection.phase == Phase::Ending) return;
    --open_;
    const auto count = perAddress_.find(connection.address);
    if (--count->second == 0) perAddress_.erase(count);
}

void ConnectionWatch::run() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        if (connections_.empty()) {
            changed_.wait(lock);
        } else {
            changed_.wait_for(lock, lookPeriod);
        }
        look(Clock::now());
    }
}

void ConnectionWatch::look(Clock::time_point now) {
    for (Connection& connection : connections_)
        look(connection, now);
}

void ConnectionWatch::look(Connection& connection, Clock::time_point now) {
    const auto age = now - connection.since;
    switch (connection.phase) {
        case Phase::Waiting:
        case Phase::Body:
            lookAtRequest(connection, now);
            break;
        case Phase::Answer:
            if (age > limits_.answerTime) end(connection, "answer", SHUT_RDWR);
            break;
        case Phase::Ending:
            if (age > lingering) shutdown(connection.socket, SHUT_RDWR);
            break;
        case Phase::Turn:
        case Phase::Stream:
            break;
    }
}

void ConnectionWatch::lookAtRequest(Connection& connection, Clock::time_point now) {
    const tcp_info info = infoOf(connection.socket);
    const bool inBody = connection.phase == Phase::Body;
    if (!inBody && !connection.begun && info.tcpi_bytes_received > connection.received)
        connection.begun = now;
    if (inBody && now - connection.since > limits_.bodyTime) {
        tell(connection, 408, "body");
    } else if (!inBody && connection.begun && now - *connection.begun > limits_.headTime) {
        tell(connection, 408, "head");
    } else if (!isAtItsEnd(connection.socket, info)) {
        connection.atItsEnd = false;
    } else if (std::exchange(connection.atItsEnd, true)) {
        // The library does not always see it: it waits for an event that it has had together with the last
        // bytes.
        shutdown(connection.socket, SHUT_RDWR);
    }
}

}  // namespace epgset
