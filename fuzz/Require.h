// The assertion of the targets.
#pragma once

#include <string_view>

namespace epgfuzz {

/// Prints what does not hold, with the value that shows it, and aborts.
[[noreturn]] void fail(std::string_view what, std::string_view shown = "");

/// Ends the process unless `holds`. `what` says what should.
inline void require(bool holds, std::string_view what, std::string_view shown = "") {
    if (!holds) fail(what, shown);
}

}  // namespace epgfuzz
