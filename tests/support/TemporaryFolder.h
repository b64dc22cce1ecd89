// A folder of a test's own.
#pragma once

#include <filesystem>
#include <string_view>

namespace epgset::test {

/// A new empty folder, removed with all that is in it when the object goes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file into the folder and answers its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path path_;
};

}  // namespace epgset::test
