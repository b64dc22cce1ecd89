// The folder that the set keeps its state in.
#pragma once

#include <filesystem>
#include <string>

namespace epgset {

/// Owns a state folder: no two sets use one at a time. A folder that does not exist is owned only once it
/// has been created, so that a start that fails leaves nothing behind.
class StateFolder {
public:
    /// Takes the folder over when it exists. Throws StartError when another set has it, when it is no folder
    /// that can be written to, or when it cannot be created. Writes nothing.
    explicit StateFolder(std::filesystem::path folder);
    ~StateFolder();
    StateFolder(const StateFolder&) = delete;
    StateFolder& operator=(const StateFolder&) = delete;

    /// Creates the folder, readable for its owner only, and takes it over, where that is still to be done.
    /// Throws StartError.
    void create();

    const std::filesystem::path& path() const { return folder_; }

private:
    void lock();

    const std::filesystem::path folder_;
    int descriptor_ = -1;  ///< the open folder, which carries the lock
};

}  // namespace epgset
