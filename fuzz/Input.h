// Cutting an input into its parts, so that seeds can be written by hand.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace epgfuzz {

/// Cuts what stands before the first `separator` off the front of `rest`, and answers it; all of it without
/// one.
inline std::string_view takeUpTo(std::string_view& rest, std::string_view separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view taken = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + separator.size());
    return taken;
}

/// The pieces between lines of "====", `most` at the most.
inline std::vector<std::string_view> pieces(std::string_view input, std::size_t most) {
    std::vector<std::string_view> all;
    do {
        all.push_back(takeUpTo(input, "\n====\n"));
    } while (!input.empty() && all.size() < most);
    return all;
}

/// Up to the first NUL, as C reads a text.
inline std::string_view upToNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

}  // namespace epgfuzz
