#include "bench/LoopbackSocket.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace epgbench {
namespace {

int checked(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
    return result;
}

}  // namespace

LoopbackSocket::LoopbackSocket() {
    const int listening = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    checked(bind(listening, generic, length), "bind");
    checked(listen(listening, 1), "listen");
    checked(getsockname(listening, generic, &length), "getsockname");
    writing_ = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    checked(connect(writing_, generic, length), "connect");
    reading_ = checked(accept(listening, nullptr, nullptr), "accept");
    close(listening);
    reader_ = std::thread([this] {
        std::array<char, 65536> dropped{};
        while (read(reading_, dropped.data(), dropped.size()) > 0) {
        }
    });
}

LoopbackSocket::~LoopbackSocket() {
    close(writing_);
    reader_.join();
    close(reading_);
}

void LoopbackSocket::write(const std::string& bytes) const {
    for (std::string_view left = bytes; !left.empty();)
        left.remove_prefix(static_cast<std::size_t>(
            checked(static_cast<int>(send(writing_, left.data(), left.size(), MSG_NOSIGNAL)), "send")));
}

}  // namespace epgbench
