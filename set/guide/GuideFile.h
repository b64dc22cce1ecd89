// The bytes of a guide file, gzip undone.
#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace epgset {

/// A guide file opened for reading. Whether it is compressed is told by its content, not by its name.
class GuideFile {
public:
    /// How long a pipe may take to give its first byte: as a download may that is written into it.
    static constexpr std::chrono::milliseconds pipePatience{60'000};

    /// `name` is what messages call it. Throws GuideError when the file cannot be opened, is a folder, is
    /// empty or is a pipe that gives nothing in time.
    GuideFile(const std::filesystem::path& path, std::string name,
              std::chrono::milliseconds patience = pipePatience);

    /// Reads up to `size` bytes; fewer only before the end. Answers how many, 0 at the end and -1 when the
    /// rest cannot be read, failure() then says why.
    int read(char* buffer, int size);

    /// Reads on to the end, so that the checksum of compressed data is looked at. False as read()'s -1.
    bool readToEnd();

    /// What read() failed of; empty while nothing did.
    const std::string& failure() const { return failure_; }

    /// What messages call it.
    const std::string& name() const { return name_; }

private:
    struct Closer {
        void operator()(void* file) const;
    };

    std::string name_;
    std::string failure_;
    std::unique_ptr<void, Closer> file_;  ///< a gzFile
};

}  // namespace epgset
