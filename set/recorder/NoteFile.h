// The file that holds a recording's note.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "set/files/FileDescriptor.h"

namespace epgset {

/// A note that is replaced as a whole, so that a reader and a power cut find the old one or the new one.
/// Room for the last one is kept on the disk from the beginning: a full disk is told about too. Used by one
/// thread at a time.
class NoteFile {
public:
    /// What the set writes beside a note before it takes the note's place.
    static constexpr const char* spareExtension = ".new";
    static constexpr const char* replacementExtension = ".tmp";

    /// Writes the first note into a file that must not exist. On an error, which a disk without room for the
    /// last note is too, there is none.
    NoteFile(std::filesystem::path path, std::string_view text, std::error_code& error);
    NoteFile(NoteFile&&) = default;
    NoteFile& operator=(NoteFile&&) = delete;
    ~NoteFile();

    /// Replaces the note while the recording goes on.
    std::error_code replace(std::string_view text);

    /// Replaces it for the last time, in the room that was kept for that.
    std::error_code finish(std::string_view text);

    const std::filesystem::path& path() const { return path_; }

private:
    std::error_code keepRoom(std::size_t bytes);

    std::filesystem::path path_;
    FileDescriptor spare_;  ///< none where the file system keeps no room, and after the end
};

/// Replaces a file by one with that content, by way of a second file beside it.
std::error_code replaceFile(const std::filesystem::path& path, std::string_view content);

}  // namespace epgset
