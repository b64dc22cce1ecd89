#include "set/files/FileWriting.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "set/files/FileDescriptor.h"

namespace epgset {

std::error_code writeAll(int descriptor, std::string_view bytes, std::size_t& written) {
    written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count > 0) {
            written += static_cast<std::size_t>(count);
        } else if (count == 0) {
            return std::make_error_code(std::errc::io_error);
        } else if (errno != EINTR) {
            return systemError();
        }
    }
    return {};
}

void syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened) ::fsync(opened.get());
}

std::error_code systemError() {
    return {errno, std::generic_category()};
}

bool isFull(const std::error_code& error) {
    return error == std::errc::no_space_on_device || error.value() == EDQUOT;
}

}  // namespace epgset
