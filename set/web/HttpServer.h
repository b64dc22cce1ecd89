// The HTTP server.
#pragma once

#include <chrono>
#include <memory>

#include "set/web/ListenSocket.h"
#include "set/web/WebHandler.h"

namespace epgset {

/// Serves HTTP on a socket, with a few threads of its own for the connections and one for the requests
/// that are answered in turn. It reads each request whole before it is handed over.
///
/// A body is kept up to maximumRequestBody. A longer one is read to its end and thrown away, so that the
/// client gets to read its answer; when it states a length beyond Limits::discard, or waits to be told to go
/// on, it is answered unread. A body that does not end within Limits::body ends the connection, whatever its
/// length.
class HttpServer {
public:
    struct Limits {
        unsigned connections = 256;            ///< open at a time
        unsigned connectionsPerAddress = 128;  ///< of them from one client address
        std::chrono::seconds idle{30};         ///< a connection that is silent for so long is closed
        std::chrono::seconds body{60};         ///< a body that takes longer ends its connection
        std::uint64_t discard = 16ULL << 20U;  ///< longest stated length of a body that is read, in bytes
        std::string certificate;               ///< PEM, with `key`: HTTPS is served; empty: HTTP
        std::string key;                       ///< PEM
    };

    /// Starts serving. The handler must outlive the server. Throws ListenError.
    HttpServer(ListenSocket socket, WebHandler& handler, const Limits& limits);
    HttpServer(ListenSocket socket, WebHandler& handler);

    /// Ends the request that is being answered and answers those that wait 503, then closes everything.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

private:
    class Connections;
    std::unique_ptr<Connections> connections_;
};

}  // namespace epgset
