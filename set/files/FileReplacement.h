// Files that are replaced whole.
#pragma once

#include <filesystem>
#include <string_view>

namespace epgset {

/// Puts a file of that text in the place of `path`, on disk, at once or not at all. Throws std::system_error,
/// whose code says why.
void replaceWholeFile(const std::filesystem::path& path, std::string_view text);

/// The same with what an open file holds, from its beginning.
void replaceWholeFile(const std::filesystem::path& path, int descriptor);

}  // namespace epgset
