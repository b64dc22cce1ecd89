#include "set/epghost/ServiceManager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>

#include "host/Logger.h"

namespace epgset {
namespace {

std::string messageFor(ServiceState state) {
    if (state == ServiceState::Ready) return "READY=1";
    if (state == ServiceState::Stopping) return "STOPPING=1";
    // The manager tells the answer to its request from an earlier one by the time, of the monotonic clock.
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return "RELOADING=1\nMONOTONIC_USEC=" +
           std::to_string(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

/// 0, or the error number of what failed.
int sendTo(std::string_view name, const std::string& message) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const bool abstract = name.starts_with('@');
    if (!abstract && !name.starts_with('/')) return EAFNOSUPPORT;
    if (name.size() >= sizeof address.sun_path) return ENAMETOOLONG;
    std::memcpy(address.sun_path, name.data(), name.size());
    if (abstract) address.sun_path[0] = '\0';
    const auto length =
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (abstract ? 0 : 1));

    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) return errno;
    const ssize_t sent = sendto(socket, message.data(), message.size(), MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&address), length);
    const int error = sent < 0 ? errno : 0;
    close(socket);
    return error;
}

}  // namespace

void tellServiceManager(ServiceState state) {
    const char* const name = std::getenv("NOTIFY_SOCKET");
    if (name == nullptr || name[0] == '\0') return;
    if (const int error = sendTo(name, messageFor(state)); error != 0) {
        Container::Logger::logger("set/epghost")
            .warning("the service manager cannot be told: %s: %s", std::string(name),
                     std::generic_category().message(error));
    }
}

}  // namespace epgset
