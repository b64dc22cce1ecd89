#include "set/recorder/RecordingRepair.h"

#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "host/Logger.h"
#include "set/recorder/LocalTimeText.h"
#include "set/recorder/NoteFile.h"
#include "set/recorder/RecordingFiles.h"
#include "set/recorder/RecordingNote.h"

namespace epgset {
namespace {

namespace fs = std::filesystem;

/// No note is longer.
constexpr std::uintmax_t maximumNoteBytes = 1 << 20;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/recorder");
    return logger;
}

/// The note of a recording that is said to run; null for any other file.
rapidjson::Document runningNote(const fs::path& path) {
    rapidjson::Document note;
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error)) ||
        fs::file_size(path, error) > maximumNoteBytes)
        return note;
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    note.Parse(text.data(), text.size());
    const bool ours = !note.HasParseError() && note.IsObject() && note.HasMember("schedule_id") &&
                      note.HasMember("state") && note["state"].IsString() &&
                      std::string_view(note["state"].GetString()) == recording_state::recording;
    if (!ours) note.SetNull();
    return note;
}

void setMember(rapidjson::Document& note, const char* key, rapidjson::Value value) {
    auto& memory = note.GetAllocator();
    if (note.HasMember(key)) {
        note[key] = value;
    } else {
        note.AddMember(rapidjson::Value(key, memory), value, memory);
    }
}

void setText(rapidjson::Document& note, const char* key, const std::string& text) {
    setMember(note, key, rapidjson::Value(text.c_str(), note.GetAllocator()));
}

/// What is known of a stream that nobody ended: how long it is, and when it was last written to.
void tellOf(const fs::path& stream, rapidjson::Document& note) {
    struct stat status {};
    const bool there = ::stat(stream.c_str(), &status) == 0;
    setText(note, "state", recording_state::interrupted);
    setText(note, "reason", there ? "the set went down" : "the set went down, and the file is gone");
    setMember(note, "bytes",
              rapidjson::Value(there ? static_cast<std::uint64_t>(status.st_size) : std::uint64_t{0}));
    if (there) setText(note, "end", localIsoTime(status.st_mtime));
}

void repair(const fs::path& path) {
    rapidjson::Document note = runningNote(path);
    fs::path stream = path;
    stream.replace_extension(streamExtension);
    if (note.IsNull() || isBeingWritten(stream)) return;
    tellOf(stream, note);
    rapidjson::StringBuffer text;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> json(text);
    json.SetIndent(' ', 2);
    note.Accept(json);
    for (const char* const extension : {NoteFile::spareExtension, NoteFile::replacementExtension}) {
        std::error_code error;
        fs::remove(path.string() + extension, error);
    }
    if (const auto error = replaceFile(path, std::string(text.GetString(), text.GetSize()) + "\n")) {
        log().error("%s still says that it is being recorded: %s", path.string(), error.message());
    } else {
        log().warning("%s was interrupted when the set went down", stream.string());
    }
}

}  // namespace

void repairRecordings(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        if (entry->path().extension() == noteExtension) repair(entry->path());
    }
    if (error && error != std::errc::no_such_file_or_directory)
        log().error("%s cannot be looked through: %s", folder.string(), error.message());
}

}  // namespace epgset
