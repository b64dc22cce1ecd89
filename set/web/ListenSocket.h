// A socket that listens.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace epgset {

/// Why an address or port cannot be listened on.
class ListenError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A TCP socket that is bound and listens. Connections wait in it until somebody accepts them.
class ListenSocket {
public:
    /// Listens on a numeric IPv4 or IPv6 address or a host name; port 0 takes a free one. Throws
    /// ListenError, which names address and port.
    ListenSocket(const std::string& address, std::uint16_t port);
    ~ListenSocket();
    ListenSocket(ListenSocket&& other) noexcept;
    ListenSocket& operator=(ListenSocket&&) = delete;

    int descriptor() const { return descriptor_; }

    /// Hands the descriptor over to the caller, who closes it.
    int release();

    /// "http://ADDRESS:PORT/" with the numeric address and the port in use, or "https://...".
    std::string url(bool secure = false) const;

private:
    int descriptor_ = -1;
};

}  // namespace epgset
