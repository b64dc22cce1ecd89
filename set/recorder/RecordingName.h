// How the files of a recording are named.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace epgset {

/// A name has at most so many bytes, which leaves room in the 255 of a file system for a number and for the
/// longest extension.
constexpr std::size_t maximumRecordingNameBytes = 236;

/// "YYYY-MM-DD HH-MM CHANNEL TITLE" without an extension, the time by the wall clock of the process's TZ.
/// What file systems dislike becomes "_": control characters, / \ : * ? " < > | and a dot that begins the
/// channel or the title; dots and blanks at an end are dropped. Valid UTF-8 whatever comes in.
std::string recordingName(std::int64_t plannedStart, std::string_view channel, std::string_view title);

}  // namespace epgset
