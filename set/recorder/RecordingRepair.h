// Recordings that a set which was killed has left behind.
#pragma once

#include <filesystem>

namespace epgset {

/// Tells in the notes of a folder that those recordings were interrupted which a set left behind as running,
/// with what their files hold; those that a set is still writing are left alone. What cannot be read or
/// written is logged.
void repairRecordings(const std::filesystem::path& folder);

}  // namespace epgset
