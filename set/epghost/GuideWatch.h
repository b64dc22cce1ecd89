// Sees that the files of a guide have changed.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace epgset {

/// Looks at files from time to time, which works on any file system. Used by one thread.
class GuideWatch {
public:
    /// How often changed() is to be asked: a change is told after two looks at the most.
    static constexpr std::chrono::milliseconds period{1000};

    /// The files as they are now count as known.
    explicit GuideWatch(std::vector<std::filesystem::path> files);

    /// Whether a file has changed, come or gone since it was known, and has stayed the same since the last
    /// call, so that whoever writes it has done. All count as known then.
    bool changed();

    /// The files as they are now count as known: they are about to be read for another reason.
    void markKnown();

private:
    /// What tells one state of a file from another.
    struct Stamp {
        bool there = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;

        bool operator==(const Stamp&) const = default;
    };

    static Stamp stampOf(const std::filesystem::path& file);
    std::vector<Stamp> look() const;

    std::vector<std::filesystem::path> files_;
    std::vector<Stamp> known_;
    std::vector<Stamp> last_;
};

}  // namespace epgset
