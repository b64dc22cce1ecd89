#include "set/log/ErrorStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <utility>

namespace epgset {
namespace {

constexpr std::chrono::milliseconds patience{200};
constexpr int restPerWait = 9;  // as long as it was waited

bool isWritable(int descriptor, std::chrono::milliseconds limit = {}) {
    pollfd wait{descriptor, POLLOUT, 0};
    return poll(&wait, 1, static_cast<int>(limit.count())) == 1 && (wait.revents & POLLOUT) != 0;
}

}  // namespace

ErrorStream::~ErrorStream() {
    if (own_ >= 0) close(own_);
}

// The status flags of standard error are shared with whoever else has it open, a shell for one. So they stay
// as they are, and what can be opened once more is.
void ErrorStream::follow() {
    struct stat now {};
    if (fstat(STDERR_FILENO, &now) != 0) {
        kind_ = Kind::None;
        return;
    }
    if (kind_ != Kind::None && now.st_dev == device_ && now.st_ino == inode_) return;
    device_ = now.st_dev;
    inode_ = now.st_ino;
    rest_.clear();
    stuck_ = false;
    if (const int before = std::exchange(own_, -1); before >= 0) close(before);
    if (S_ISREG(now.st_mode)) {
        kind_ = Kind::File;
    } else if (S_ISSOCK(now.st_mode)) {
        kind_ = Kind::Socket;
    } else {
        kind_ = Kind::Other;
        own_ = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    }
}

std::size_t ErrorStream::tryToWrite(std::string_view bytes) const {
    ssize_t count = 0;
    if (kind_ == Kind::Socket) {
        count = send(STDERR_FILENO, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    } else if (kind_ == Kind::File) {
        count = ::write(STDERR_FILENO, bytes.data(), bytes.size());
    } else if (own_ >= 0) {
        count = ::write(own_, bytes.data(), bytes.size());
    } else if (kind_ == Kind::Other && isWritable(STDERR_FILENO)) {
        // A pipe that is writable takes so much at once.
        count = ::write(STDERR_FILENO, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
    }
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool ErrorStream::waitForRoom() {
    const auto begun = std::chrono::steady_clock::now();
    if (kind_ == Kind::None || kind_ == Kind::File || stuck_ || begun < nextWait_) return false;
    stuck_ = !isWritable(own_ >= 0 ? own_ : STDERR_FILENO, patience);
    const auto ended = std::chrono::steady_clock::now();
    nextWait_ = ended + restPerWait * (ended - begun);
    return !stuck_;
}

std::size_t ErrorStream::writeSome(std::string_view bytes) {
    std::size_t count = tryToWrite(bytes);
    if (count == 0 && waitForRoom()) count = tryToWrite(bytes);
    if (count > 0) stuck_ = false;
    return count;
}

bool ErrorStream::writeRest() {
    while (!rest_.empty()) {
        const std::size_t count = writeSome(rest_);
        if (count == 0) return false;
        rest_.erase(0, count);
    }
    return true;
}

bool ErrorStream::write(std::string_view line) {
    follow();
    if (!writeRest()) return false;
    const std::size_t count = writeSome(line);
    if (count == 0) return false;
    rest_ = line.substr(count);
    writeRest();
    return true;
}

}  // namespace epgset
