#include "set/epghost/GuideWatch.h"

#include <sys/stat.h>

#include <utility>

namespace epgset {

GuideWatch::GuideWatch(std::vector<std::filesystem::path> files)
    : files_(std::move(files)), known_(look()), last_(known_) {}

bool GuideWatch::changed() {
    std::vector<Stamp> now = look();
    const bool settled = now == last_;
    last_ = std::move(now);
    if (!settled || last_ == known_) return false;
    known_ = last_;
    return true;
}

void GuideWatch::markKnown() {
    known_ = last_ = look();
}

GuideWatch::Stamp GuideWatch::stampOf(const std::filesystem::path& file) {
    struct stat status {};
    // A pipe has no state that could change: whoever feeds one asks for a reload.
    if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return {true,           status.st_dev,         status.st_ino,
            status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::vector<GuideWatch::Stamp> GuideWatch::look() const {
    std::vector<Stamp> stamps;
    stamps.reserve(files_.size());
    for (const std::filesystem::path& file : files_)
        stamps.push_back(stampOf(file));
    return stamps;
}

}  // namespace epgset
