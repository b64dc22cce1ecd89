// A file without a folder.
#pragma once

#include <filesystem>
#include <string_view>

#include "set/files/FileDescriptor.h"

namespace epgfuzz {

/// Holds a text for whoever opens files by their path.
class MemoryFile {
public:
    /// Throws std::system_error.
    explicit MemoryFile(std::string_view content);

    /// Valid while the object lives.
    std::filesystem::path path() const;

private:
    epgset::FileDescriptor descriptor_;
};

}  // namespace epgfuzz
