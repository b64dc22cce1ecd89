// Times as XMLTV writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace epgset {

/// Reads "YYYYMMDDhhmmss", or a beginning of it that ends after the year, month, day, hour or minute, then
/// blanks and a zone: "+hhmm", "+hh:mm", one of the known zone names, or nothing for UTC.
/// Answers UNIX seconds; nothing for another form, a date or time that does not exist, and for times outside
/// of 0 to 2^32 - 1.
std::optional<std::uint32_t> readXmltvTime(std::string_view text);

}  // namespace epgset
