// One request on its way through the HTTP server.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "set/web/WebMessage.h"

namespace epgset {

/// Collects a request as it comes in. Used by one thread at a time.
class Exchange {
public:
    using Clock = std::chrono::steady_clock;

    /// `target` is what stands in the request line.
    explicit Exchange(std::string_view target);

    /// Takes the method and the headers, which are known before any of the body.
    void begin(std::string_view method, WebHeaders headers);
    bool begun() const { return begun_; }

    /// The body length that the client stated; nothing when it stated none, as for a chunked body.
    std::optional<std::uint64_t> statedLength() const { return stated_; }

    /// Whether the client waits to be told before it sends the body.
    bool clientWaits() const;

    /// Whether the body is coded in a way other than in chunks, so that its end cannot be told.
    bool codingIsUnknown() const;

    /// How many bytes of the body are kept at the most.
    std::size_t mostKept() const;

    /// The body is going to be received.
    void expectBody();

    /// Counts bytes of the body that came when nobody wanted them any more, and answers how many there were.
    std::uint64_t receivedInVain(std::uint64_t bytes) { return inVain_ += bytes; }

    /// Takes a piece of the body. Bytes beyond maximumRequestBody are only counted.
    void receive(std::string_view bytes);
    std::uint64_t received() const { return received_; }

    /// The body has ended, or is left unread: the request is whole.
    const WebRequest& finish();
    const WebRequest& request() const { return request_; }

    /// Lets go of the body, which has been read.
    void dropBody() { request_.body = std::string(); }

    /// The answer, once there is one.
    std::optional<WebResponse> response;

    /// Whether there can be none, for want of memory, so that the connection is closed.
    bool lost = false;

private:
    WebRequest request_;
    std::optional<std::uint64_t> stated_;
    std::uint64_t received_ = 0;
    std::uint64_t inVain_ = 0;
    bool begun_ = false;
};

}  // namespace epgset
