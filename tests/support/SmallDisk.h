// A disk that is soon full.
#pragma once

#include <sys/mount.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace epgset {

/// Mounts a small file system in memory over a folder as long as it lives, where the test may do that.
class SmallDisk {
public:
    SmallDisk(std::filesystem::path folder, std::uint64_t bytes) : folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
        const std::string options = "size=" + std::to_string(bytes);
        mounted_ = ::mount("tmpfs", folder_.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) ::umount2(folder_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Whether there is such a disk; else the folder is one like any other.
    bool mounted() const { return mounted_; }

private:
    const std::filesystem::path folder_;
    bool mounted_ = false;
};

}  // namespace epgset
