#include "set/recorder/RecordingsQuota.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace epgset {

namespace fs = std::filesystem;

std::uint64_t bytesOfFolder(const fs::path& folder) {
    std::uint64_t sum = 0;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code gone;  // a file may go while the folder is looked at
        if (entry->symlink_status(gone).type() != fs::file_type::regular) continue;
        const std::uintmax_t size = entry->file_size(gone);
        if (!gone) sum += size;
    }
    return sum;
}

RecordingsQuota::RecordingsQuota(fs::path folder, std::uint64_t maximum)
    : folder_(std::move(folder)), maximum_(maximum) {}

bool RecordingsQuota::take(std::uint64_t bytes) {
    if (maximum_ == 0) return true;
    const std::lock_guard lock(mutex_);
    if (!held_ || *held_ + bytes > maximum_) held_ = bytesOfFolder(folder_) + underWay_;
    if (*held_ + bytes > maximum_) return false;
    *held_ += bytes;
    underWay_ += bytes;
    return true;
}

void RecordingsQuota::wrote(std::uint64_t bytes) {
    if (maximum_ == 0) return;
    const std::lock_guard lock(mutex_);
    underWay_ -= std::min(bytes, underWay_);
}

void RecordingsQuota::lookAgain() {
    const std::lock_guard lock(mutex_);
    held_.reset();
}

}  // namespace epgset
