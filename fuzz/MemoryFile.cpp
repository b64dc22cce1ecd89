#include "fuzz/MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace epgfuzz {

MemoryFile::MemoryFile(std::string_view content) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    while (descriptor_ && !content.empty()) {
        const ssize_t written = write(descriptor_.get(), content.data(), content.size());
        if (written <= 0) break;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    if (!content.empty()) throw std::system_error(errno, std::generic_category(), "a file in memory");
}

std::filesystem::path MemoryFile::path() const {
    return "/proc/self/fd/" + std::to_string(descriptor_.get());
}

}  // namespace epgfuzz
