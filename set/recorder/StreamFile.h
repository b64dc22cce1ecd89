// The file that a stream is recorded into.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "set/files/FileDescriptor.h"

namespace epgset {

/// A new file that only grows. While it is open it is locked, so that another set can tell that it is still
/// being written. Used by one thread.
class StreamFile {
public:
    /// Creates the file, which must not exist.
    StreamFile(std::filesystem::path path, std::error_code& error);

    /// Appends the bytes, or on an error as many of them as there is room for.
    std::error_code append(std::string_view bytes);

    /// Brings everything to the disk.
    std::error_code sync();

    void close() { file_.close(); }

    std::uint64_t bytes() const { return bytes_; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    FileDescriptor file_;
    std::uint64_t bytes_ = 0;
};

/// Whether a set is writing that file.
bool isBeingWritten(const std::filesystem::path& streamFile);

}  // namespace epgset
