// How long the texts of a guide may be.
#pragma once

#include <cstddef>
#include <string_view>

namespace epgset {

// A statement that puts a row into the plug-in's table has to stay well below the database's bound of an SQL
// text, 1 MiB: one that is longer does not compile, and the table is never filled. Real texts stay far below
// these bounds.

/// Of titles and of names of channels, in bytes.
constexpr std::size_t kLongestName = 4096;

/// Of synopses, in bytes.
constexpr std::size_t kLongestSynopsis = 65536;

/// The beginning of a UTF-8 text that is at most `limit` bytes long and ends with a whole character and no
/// blank; the text itself where it is no longer than that.
std::string_view cutToLimit(std::string_view text, std::size_t limit);

}  // namespace epgset
