#include "set/recorder/RecordingFiles.h"

#include <utility>

#include "set/files/FileWriting.h"

namespace epgset {
namespace {

constexpr int maximumNumber = 99'999;

bool isTaken(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::symlink_status(path, error).type() != std::filesystem::file_type::not_found;
}

/// Nothing, without an error, where the name is taken.
std::optional<RecordingFiles> create(const std::filesystem::path& folder, const std::string& name,
                                     bool withStream, RecordingNote& note, std::error_code& error) {
    const auto streamPath = folder / (name + streamExtension);
    const auto notePath = folder / (name + noteExtension);
    if (isTaken(streamPath) || isTaken(notePath)) return std::nullopt;
    std::optional<StreamFile> stream;
    if (withStream) {
        stream.emplace(streamPath, error);
        note.file = name + streamExtension;
    }
    if (!error) {
        NoteFile noteFile(notePath, noteText(note), error);
        if (!error) return RecordingFiles{std::move(noteFile), std::move(stream)};
        if (stream) std::filesystem::remove(streamPath);
    }
    if (error == std::errc::file_exists) error.clear();  // somebody else was faster
    return std::nullopt;
}

}  // namespace

std::optional<RecordingFiles> createRecordingFiles(const std::filesystem::path& folder,
                                                   const std::string& name, bool withStream,
                                                   RecordingNote& note, std::error_code& error) {
    error.clear();
    std::filesystem::create_directories(folder, error);
    if (error) return std::nullopt;
    for (int number = 1; number <= maximumNumber; ++number) {
        const std::string numbered = number == 1 ? name : name + " " + std::to_string(number);
        if (auto files = create(folder, numbered, withStream, note, error)) {
            syncFolder(folder);
            return files;
        }
        if (error) return std::nullopt;
    }
    error = std::make_error_code(std::errc::file_exists);
    return std::nullopt;
}

}  // namespace epgset
