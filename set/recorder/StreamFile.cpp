#include "set/recorder/StreamFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "set/files/FileWriting.h"
#include "set/recorder/Recordings.h"

namespace epgset {

StreamFile::StreamFile(std::filesystem::path path, std::error_code& error)
    : path_(std::move(path)),
      file_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0666)) {
    error = file_ ? std::error_code() : systemError();
    if (file_) ::flock(file_.get(), LOCK_EX | LOCK_NB);  // a file system without locks records all the same
}

std::error_code StreamFile::append(std::string_view bytes) {
    std::size_t written = 0;
    const auto error = writeAll(file_.get(), bytes, written);
    bytes_ += written;
    recordings().countBytes(written);
    return error;
}

std::error_code StreamFile::sync() {
    return ::fdatasync(file_.get()) == 0 ? std::error_code() : systemError();
}

bool isBeingWritten(const std::filesystem::path& streamFile) {
    const FileDescriptor file(::open(streamFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file && ::flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

}  // namespace epgset
