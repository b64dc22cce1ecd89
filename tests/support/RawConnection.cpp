#include "tests/support/RawConnection.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <memory>
#include <stdexcept>

namespace epgset::test {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// Appends what arrives before `deadline` to `text`; false when nothing did, or the end.
bool receiveSome(int socket, std::string& text, SteadyClock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - SteadyClock::now());
    pollfd wait{socket, POLLIN, 0};
    if (left.count() <= 0 || poll(&wait, 1, static_cast<int>(left.count())) <= 0) return false;
    std::array<char, 65536> buffer{};
    const ssize_t count = recv(socket, buffer.data(), buffer.size(), 0);
    if (count <= 0) return false;
    text.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

void bindTo(int socket, const std::string& address) {
    sockaddr_in own{};
    own.sin_family = AF_INET;
    if (inet_pton(AF_INET, address.c_str(), &own.sin_addr) != 1 ||
        bind(socket, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) {
        throw std::runtime_error("cannot connect from " + address);
    }
}

}  // namespace

RawConnection::RawConnection(const std::string& url, const std::string& from) {
    const auto begin = url.find("//") + 2;
    const auto end = url.find('/', begin);
    const auto colon = url.rfind(':', end);
    const std::string host = url.substr(begin, colon - begin);
    const std::string port = url.substr(colon + 1, end - colon - 1);

    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0)
        throw std::runtime_error("no address " + url);
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(list, &freeaddrinfo);
    socket_ = socket(list->ai_family, list->ai_socktype | SOCK_CLOEXEC, list->ai_protocol);
    if (!from.empty()) bindTo(socket_, from);
    if (socket_ < 0 || connect(socket_, list->ai_addr, list->ai_addrlen) != 0) {
        throw std::runtime_error("cannot connect to " + url);
    }
}

RawConnection::~RawConnection() {
    if (socket_ >= 0) close(socket_);
}

bool RawConnection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void RawConnection::endSending() {
    shutdown(socket_, SHUT_WR);
}

void RawConnection::reset() {
    const linger none{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    close(socket_);
    socket_ = -1;
}

std::string RawConnection::receiveAll(std::chrono::milliseconds limit) {
    const auto deadline = SteadyClock::now() + limit;
    std::string text;
    while (receiveSome(socket_, text, deadline)) {
    }
    return text;
}

std::string RawConnection::receiveUntil(std::string_view mark) {
    const auto deadline = SteadyClock::now() + std::chrono::seconds(20);
    std::string text;
    while (!text.ends_with(mark) && receiveSome(socket_, text, deadline)) {
    }
    return text;
}

int statusOf(std::string_view answer) {
    constexpr std::string_view version = "HTTP/1.1 ";
    int status = 0;
    if (answer.starts_with(version)) {
        std::from_chars(answer.data() + version.size(), answer.data() + answer.size(), status);
    }
    return status;
}

}  // namespace epgset::test
