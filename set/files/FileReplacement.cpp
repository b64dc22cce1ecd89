#include "set/files/FileReplacement.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <functional>
#include <system_error>

#include "set/files/FileDescriptor.h"
#include "set/files/FileWriting.h"

namespace epgset {
namespace {

[[noreturn]] void fail() {
    throw std::system_error(systemError());
}

void writeWhole(int descriptor, std::string_view text) {
    std::size_t written = 0;
    if (const std::error_code error = writeAll(descriptor, text, written)) throw std::system_error(error);
}

void copyWhole(int from, int to) {
    std::array<char, 65536> buffer{};
    off_t position = 0;
    for (;;) {
        const ssize_t read = ::pread(from, buffer.data(), buffer.size(), position);
        if (read < 0 && errno == EINTR) continue;
        if (read < 0) fail();
        if (read == 0) return;
        writeWhole(to, {buffer.data(), static_cast<std::size_t>(read)});
        position += read;
    }
}

void replace(const std::filesystem::path& path, const std::function<void(int file)>& write) {
    std::filesystem::path fresh = path;
    fresh += ".new";
    {
        const FileDescriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
        if (file.get() < 0) fail();
        write(file.get());
        if (::fsync(file.get()) != 0) fail();
    }
    if (::rename(fresh.c_str(), path.c_str()) != 0) fail();
    const FileDescriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() < 0 || ::fsync(folder.get()) != 0) fail();
}

}  // namespace

void replaceWholeFile(const std::filesystem::path& path, std::string_view text) {
    replace(path, [text](int file) { writeWhole(file, text); });
}

void replaceWholeFile(const std::filesystem::path& path, int descriptor) {
    replace(path, [descriptor](int file) { copyWhole(descriptor, file); });
}

}  // namespace epgset
