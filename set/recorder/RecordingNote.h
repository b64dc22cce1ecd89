// What is told about a recording in the file beside it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace epgset {

/// How a recording stands or has ended, by the words that are in its note.
namespace recording_state {
constexpr const char* recording = "recording";
constexpr const char* ended = "ended";              ///< its time or its source was over
constexpr const char* stopped = "stopped";          ///< by the user
constexpr const char* removed = "removed";          ///< its entry was removed
constexpr const char* replaced = "replaced";        ///< its entry was given another time or channel
constexpr const char* interrupted = "interrupted";  ///< the set went down
constexpr const char* failed = "failed";            ///< the reason says of what
}  // namespace recording_state

/// Times are UNIX seconds.
struct RecordingNote {
    std::string channelId;  ///< as the service's clients read it
    std::string channelNumber;
    std::string channelName;
    unsigned long scheduleUid = 0;
    std::string title;
    std::string synopsis;
    std::int64_t plannedStart = 0;
    std::int64_t plannedEnd = 0;
    std::optional<std::int64_t> start;  ///< nothing: it never began
    std::optional<std::int64_t> end;    ///< nothing: it has not ended
    std::string file;                   ///< its name in the folder; empty: there is none
    std::uint64_t bytes = 0;
    std::string state = recording_state::recording;
    std::string reason;         ///< why it ended so; empty: nothing to say
    unsigned breaks = 0;        ///< how often the source had to be opened again
    std::string latestTrouble;  ///< of the source; empty: none
};

/// The note as a JSON document that people can read. Invalid UTF-8 becomes U+FFFD.
std::string noteText(const RecordingNote& note);

}  // namespace epgset
