#include "set/web/ListenSocket.h"

#include <fmt/format.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace epgset {
namespace {

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressList resolve(const std::string& address, std::uint16_t port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* list = nullptr;
    const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (error != 0) {
        throw ListenError(fmt::format("cannot listen on {}: {}", address, gai_strerror(error)));
    }
    return {list, &freeaddrinfo};
}

/// A listening socket of that address; -1, with errno set, when there can be none.
int listenOn(const addrinfo& address) {
    const int type = address.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK;
    const int descriptor = socket(address.ai_family, type, address.ai_protocol);
    if (descriptor < 0) return -1;
    // Without this, connections of an earlier process that are still closing would hold the port.
    const int yes = 1;
    setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (bind(descriptor, address.ai_addr, address.ai_addrlen) == 0 && listen(descriptor, SOMAXCONN) == 0) {
        return descriptor;
    }
    const int error = errno;
    close(descriptor);
    errno = error;
    return -1;
}

}  // namespace

ListenSocket::ListenSocket(const std::string& address, std::uint16_t port) {
    const AddressList addresses = resolve(address, port);
    int error = 0;
    for (const addrinfo* entry = addresses.get(); entry != nullptr; entry = entry->ai_next) {
        descriptor_ = listenOn(*entry);
        if (descriptor_ >= 0) return;
        if (error == 0) error = errno;
    }
    throw ListenError(fmt::format("cannot listen on {} port {}: {}", address, port,
                                  std::generic_category().message(error)));
}

ListenSocket::~ListenSocket() {
    if (descriptor_ >= 0) close(descriptor_);
}

ListenSocket::ListenSocket(ListenSocket&& other) noexcept : descriptor_(other.release()) {}

int ListenSocket::release() {
    return std::exchange(descriptor_, -1);
}

std::string ListenSocket::url(bool secure) const {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    auto* address = reinterpret_cast<sockaddr*>(&storage);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    if (getsockname(descriptor_, address, &length) != 0 ||
        getnameinfo(address, length, host.data(), host.size(), port.data(), port.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
        throw ListenError("cannot tell the address that is listened on");
    }
    const char* form = storage.ss_family == AF_INET6 ? "{}://[{}]:{}/" : "{}://{}:{}/";
    return fmt::format(fmt::runtime(form), secure ? "https" : "http", host.data(), port.data());
}

}  // namespace epgset
