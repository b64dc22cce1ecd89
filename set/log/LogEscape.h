// Turns a log message into the text of one line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace epgset {

/// `message` as one printable line of at most `maxBytes` bytes: a line break at its end is dropped,
/// other control characters, line separators and bytes that are not UTF-8 are written as escapes (\n,
/// \r, \t, else \xNN for each byte). A longer line is cut between two characters.
std::string escapedLogLine(std::string_view message, std::size_t maxBytes);

/// The same in printable ASCII alone: every other character is written as the escapes of its bytes.
std::string asciiLogLine(std::string_view message, std::size_t maxBytes);

}  // namespace epgset
