// Sees to it that no client takes more than its share of an HTTP server.
#pragma once

#include <sys/socket.h>

#include <condition_variable>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "set/web/ClientAddress.h"
#include "set/web/ConnectionLimits.h"

namespace epgset {

/// Knows each connection of a server and what it waits for, and ends those that take too long or too much, by
/// shutting their sockets down; whoever serves the connection then sees its end. One that waits for more
/// though its client has ended its side is ended within half a second. Used by any thread; `open` and `close`
/// of a connection come before and after all else.
class ConnectionWatch {
public:
    class Connection;

    /// `canTell`: a connection that is ended for its request may be sent a status first, which it may not
    /// where bytes are encrypted.
    ConnectionWatch(const ConnectionLimits& limits, bool canTell);
    ~ConnectionWatch();
    ConnectionWatch(const ConnectionWatch&) = delete;
    ConnectionWatch& operator=(const ConnectionWatch&) = delete;

    /// A client has connected. Where there are more than may be, one that waits is ended for it: the one that
    /// has waited longest for a request, of the address that has most connections, or of its own where that
    /// has too many. Where none waits, the new one is ended. The socket stays open until `close` has come
    /// back. Throws std::bad_alloc; the connection is not watched then.
    Connection* open(int socket, const sockaddr* address);
    void close(Connection* connection);

    static const ClientAddress& clientOf(const Connection& connection);

    /// The headers of a request have come. Answers false when there is no room for a body of `bodyBytes`: the
    /// request is to be refused then. Bodies that are short always have room.
    bool headEnds(Connection& connection, std::size_t bodyBytes);

    /// The request is whole; from now on the client waits for its answer, for as long as that takes.
    void requestEnds(Connection& connection);

    /// The request's body is no longer held.
    void bodyIsGone(Connection& connection);

    /// The answer is sent from now on; `body` is held until its end. Where answers take too much memory, the
    /// connections end whose answers have been under way for the longest.
    void answerBegins(Connection& connection, const std::shared_ptr<const std::string>& body);
    void streamBegins(Connection& connection);

    /// The answer is sent, or given up, and the next request may come.
    void answerEnds(Connection& connection);

    /// Tells the client that its request is refused, where it can be told, and ends the connection within two
    /// seconds, in which what the client still sends is to be thrown away.
    void refuse(Connection& connection, int status);

    /// Whether the connection is being ended, so that nothing may be answered any more.
    bool isEnding(const Connection& connection) const;

private:
    using Clock = std::chrono::steady_clock;
    using Body = std::pair<std::size_t, unsigned>;  ///< bytes, and how many connections send it

    void run();
    void look(Clock::time_point now);
    void look(Connection& connection, Clock::time_point now);
    void lookAtRequest(Connection& connection, Clock::time_point now);
    void makeRoom(Connection& newcomer);
    Connection* longestWaiting(const Connection& newcomer, bool ofItsAddress, Clock::time_point now);
    void makeAnswersFit(const Connection& newest);
    void tell(Connection& connection, int status, const char* why);
    void end(Connection& connection, const char* why, int how);
    void forget(const Connection& connection);
    void dropBody(Connection& connection);

    const ConnectionLimits limits_;
    const bool canTell_;
    mutable std::mutex mutex_;  ///< guards what follows
    std::condition_variable changed_;
    std::list<Connection> connections_;
    std::map<ClientAddress, unsigned> perAddress_;  ///< connections that are not being ended
    unsigned open_ = 0;                             ///< the same of all addresses
    std::size_t bodyBytes_ = 0;
    std::size_t answerBytes_ = 0;
    std::map<const void*, Body> answers_;  ///< by the body that they share
    Clock::time_point lastWarning_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace epgset
