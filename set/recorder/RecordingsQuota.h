// How much the recordings may hold.
#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>

namespace epgset {

/// The files of a folder and of those below it, bytes all in all.
std::uint64_t bytesOfFolder(const std::filesystem::path& folder);

/// A bound to what a folder holds. Files that others remove from it make room. Used by any thread.
class RecordingsQuota {
public:
    /// `maximum` 0: no bound.
    RecordingsQuota(std::filesystem::path folder, std::uint64_t maximum);

    /// Whether so many bytes may be added; they then count at once. wrote() is to follow in either case of
    /// their being written.
    bool take(std::uint64_t bytes);

    /// Bytes that take() granted are in their file, or will not come.
    void wrote(std::uint64_t bytes);

    /// Has the folder looked at again before the next bytes are granted.
    void lookAgain();

    std::uint64_t maximum() const { return maximum_; }

private:
    const std::filesystem::path folder_;
    const std::uint64_t maximum_;
    std::mutex mutex_;
    std::optional<std::uint64_t> held_;  ///< guarded by mutex_; nothing: not known
    std::uint64_t underWay_ = 0;         ///< guarded by mutex_; granted and not in a file yet
};

}  // namespace epgset
