#include "set/recorder/StorageSpace.h"

#include <sys/statvfs.h>

#include <system_error>

namespace epgset {

std::optional<std::uint64_t> freeBytes(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::path existing = std::filesystem::absolute(folder, error);
    if (error) return std::nullopt;
    while (!std::filesystem::exists(existing, error) && existing.has_relative_path())
        existing = existing.parent_path();
    struct statvfs status {};
    if (::statvfs(existing.c_str(), &status) != 0) return std::nullopt;
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

}  // namespace epgset
