// What the system counts of a socket.
#pragma once

#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstddef>

namespace epgset::test {

/// Whether the system says how many bytes a socket has received, by which the server sees that a head has begun;
/// qemu, when it runs a program, does not.
inline bool countsReceivedBytes() {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    tcp_info info{};
    socklen_t length = sizeof info;
    const bool told = getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &length) == 0;
    close(socket);
    return told && length >= offsetof(tcp_info, tcpi_bytes_received) + sizeof info.tcpi_bytes_received;
}

}  // namespace epgset::test
