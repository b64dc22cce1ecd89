// The two files of a recording: the stream and the note beside it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "set/recorder/NoteFile.h"
#include "set/recorder/RecordingNote.h"
#include "set/recorder/StreamFile.h"

namespace epgset {

/// The extensions of the two.
constexpr const char* streamExtension = ".ts";
constexpr const char* noteExtension = ".json";

/// Files that bear the same name, which no other files had.
struct RecordingFiles {
    NoteFile note;
    std::optional<StreamFile> stream;  ///< always there but for a recording that never began
};

/// Creates the files of a recording in a folder, which is made where it is missing. Where the name is taken,
/// a number is put behind it. `note` is what is written at first; its `file` is set to the stream's name, or
/// stays empty where there is to be no stream. Nothing on an error.
std::optional<RecordingFiles> createRecordingFiles(const std::filesystem::path& folder,
                                                   const std::string& name, bool withStream,
                                                   RecordingNote& note, std::error_code& error);

}  // namespace epgset
