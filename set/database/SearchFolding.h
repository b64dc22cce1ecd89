// Texts as a search compares them.
#pragma once

#include <string>
#include <string_view>

namespace epgset {

/// Adds `text` to `folded` as it is compared: case folded, accents taken off. Bytes that are not UTF-8 stay
/// as they are.
void appendFolded(std::string& folded, std::string_view text);

/// The same as a text of its own.
std::string foldedForSearch(std::string_view text);

}  // namespace epgset
