// Writing to files.
#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace epgset {

/// Writes all bytes; on an error `written` tells how many got through.
std::error_code writeAll(int descriptor, std::string_view bytes, std::size_t& written);

/// Brings a folder's entries to the disk, as far as its file system can.
void syncFolder(const std::filesystem::path& folder);

/// The error of the system call that has just failed.
std::error_code systemError();

/// Whether there is no more room for the user on the disk.
bool isFull(const std::error_code& error);

}  // namespace epgset
