// UTF-16, the form in which the middleware hands texts out.
#pragma once

#include <bit>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace epgset {

// Ill-formed input becomes U+FFFD on both ways: one for each maximal part of a UTF-8 sequence that cannot
// go on, one for each surrogate without its partner.

/// Number of UTF-16 units that the UTF-8 text takes, without a terminator.
std::size_t utf16Length(std::string_view utf8);

/// Writes the text as UTF-16 in the given byte order into `buffer`, without a terminator, and answers how
/// many bytes were written: always an even number. What does not fit is left out, and a pair of surrogates is
/// never cut in two.
std::size_t utf16FromUtf8(std::string_view utf8, std::endian order, std::span<unsigned char> buffer);

/// The UTF-8 text of UTF-16 units whose bytes stand in the given order in memory.
std::string utf8FromUtf16(std::span<const unsigned short> units, std::endian order);

}  // namespace epgset
