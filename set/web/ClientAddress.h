// Where a client connects from.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace epgset {

/// An IPv6 address, or an IPv4 one in its last four bytes; zeros for anything else.
using ClientAddress = std::array<unsigned char, 16>;

inline ClientAddress clientAddressOf(const sockaddr* address) {
    ClientAddress bytes{};
    const auto* const given = reinterpret_cast<const unsigned char*>(address);
    if (address != nullptr && address->sa_family == AF_INET) {
        std::memcpy(bytes.data() + 12, given + offsetof(sockaddr_in, sin_addr), 4);
    } else if (address != nullptr && address->sa_family == AF_INET6) {
        std::memcpy(bytes.data(), given + offsetof(sockaddr_in6, sin6_addr), bytes.size());
    }
    return bytes;
}

}  // namespace epgset
