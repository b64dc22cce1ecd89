// The HTTP server.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "set/web/ConnectionLimits.h"
#include "set/web/ListenSocket.h"
#include "set/web/WebHandler.h"

namespace epgset {

/// Serves HTTP on a socket, with a few threads of its own for the connections and one for the requests
/// that are answered in turn. It reads each request whole before it is handed over.
///
/// A body is kept up to maximumRequestBody. A longer one is read to its end and thrown away, so that the
/// client gets to read its answer; when it states a length beyond Limits::statedBody, or waits to be told to
/// go on, it is answered unread. One in chunks that goes beyond Limits::chunkedBody is answered 413, a long
/// one that there is no memory for 503. What clients may take otherwise, ConnectionWatch sees to.
class HttpServer {
public:
    struct Limits : ConnectionLimits {
        std::chrono::seconds idleTime{30};        ///< a connection that is silent for so long is closed
        std::size_t headMemory = 64U << 10U;      ///< of a connection, for request line and headers, in bytes
        std::uint64_t statedBody = 16ULL << 20U;  ///< longest stated length of a body that is read, in bytes
        std::uint64_t chunkedBody = 64ULL << 20U;  ///< longest body in chunks that is read, in bytes
        std::string certificate;                   ///< PEM, with `key`: HTTPS is served; empty: HTTP
        std::string key;                           ///< PEM
    };

    /// How many connections may be open at a time for a moment: some more than the limit, which are ended for
    /// others or for themselves.
    static unsigned openFiles(const Limits& limits) {
        return limits.connections + limits.connections / 4 + 64;
    }

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
