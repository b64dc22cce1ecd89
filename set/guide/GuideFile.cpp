#include "set/guide/GuideFile.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "set/guide/GuideError.h"

namespace epgset {
namespace {

constexpr unsigned kBufferBytes = 64 * 1024;

bool isWrittenTo(int pipe, std::chrono::milliseconds patience) {
    pollfd waiting{pipe, POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(patience.count())) > 0 && (waiting.revents & POLLIN) != 0;
}

gzFile handle(void* file) {
    return static_cast<gzFile>(file);
}

std::string systemMessage(int error) {
    return std::generic_category().message(error);
}

}  // namespace

void GuideFile::Closer::operator()(void* file) const {
    gzclose(handle(file));
}

GuideFile::GuideFile(const std::filesystem::path& path, std::string name, std::chrono::milliseconds patience)
    : name_(std::move(name)) {
    // Opening a pipe that nobody writes to would never come back.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) throw GuideError(name_, 0, "cannot be opened: " + systemMessage(errno));
    struct stat status {};
    const bool known = ::fstat(descriptor, &status) == 0;
    if (known && S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        throw GuideError(name_, 0, "is a folder, not a guide");
    }
    if (known && S_ISREG(status.st_mode) && status.st_size == 0) {
        ::close(descriptor);
        throw GuideError(name_, 0, "is empty");
    }
    if (known && S_ISFIFO(status.st_mode) && !isWrittenTo(descriptor, patience)) {
        ::close(descriptor);
        throw GuideError(name_, 0, "is a pipe that nobody writes to");
    }
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    file_.reset(gzdopen(descriptor, "rb"));
    if (!file_) {
        ::close(descriptor);
        throw GuideError(name_, 0, "cannot be read: out of memory");
    }
    gzbuffer(handle(file_.get()), kBufferBytes);
}

int GuideFile::read(char* buffer, int size) {
    if (!failure_.empty()) return -1;
    const int got = gzread(handle(file_.get()), buffer, static_cast<unsigned>(size));
    if (got > 0) return got;
    int code = Z_OK;
    const char* const message = gzerror(handle(file_.get()), &code);
    if (code == Z_BUF_ERROR) {
        failure_ = "the compressed data end too early";
    } else if (code == Z_ERRNO) {
        failure_ = "cannot be read: " + systemMessage(errno);
    } else if (got < 0) {
        failure_ = std::string("the compressed data are damaged: ") + message;
    }
    return failure_.empty() ? 0 : -1;
}

bool GuideFile::readToEnd() {
    std::array<char, 4096> rest{};
    int got = 0;
    do {
        got = read(rest.data(), static_cast<int>(rest.size()));
    } while (got > 0);
    return got == 0;
}

}  // namespace epgset
