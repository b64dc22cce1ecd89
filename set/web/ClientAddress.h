// Where a client connects from.
#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstring>

namespace epgset {

/// An IPv6 address, or an IPv4 one in its last four bytes; zeros for anything else.
using ClientAddress = std::array<unsigned char, 16>;

inline ClientAddress clientAddressOf(const sockaddr* address) {
    ClientAddress bytes{};
    if (address != nullptr && address->sa_family == AF_INET) {
        sockaddr_in version4{};
        std::memcpy(&version4, address, sizeof version4);
        std::memcpy(bytes.data() + 12, &version4.sin_addr, 4);
    } else if (address != nullptr && address->sa_family == AF_INET6) {
        sockaddr_in6 version6{};
        std::memcpy(&version6, address, sizeof version6);
        std::memcpy(bytes.data(), &version6.sin6_addr, bytes.size());
    }
    return bytes;
}

}  // namespace epgset
