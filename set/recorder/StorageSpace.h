// Room on the set's storage device.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace epgset {

/// Bytes that may still be written to the file system of a folder, or where the folder is not there yet, of
/// the one that it would be made in. Nothing when that cannot be told.
std::optional<std::uint64_t> freeBytes(const std::filesystem::path& folder);

}  // namespace epgset
