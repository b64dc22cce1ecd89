// The escapes of a URI's text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace epgset {

/// What a "+" stands for: a blank in a query, itself in a path.
enum class PlusSign { Itself, Blank };

/// Writes the decoded text to `out`, which has room for `text.size()` bytes, and answers how many it
/// wrote. An escape that is not "%" and two hexadecimal digits stays as it stands. Nothing when the
/// text holds a NUL, encoded or not: a text that ends in a NUL could not carry it.
std::optional<std::size_t> decodeUriText(std::string_view text, PlusSign plusSign, char* out) noexcept;

}  // namespace epgset
