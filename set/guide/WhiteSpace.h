// The white space of texts.
#pragma once

#include <string>
#include <string_view>

namespace epgset {

/// `text` without white space (blank, tab, line breaks) around it, and one blank for each run of it inside.
std::string withCollapsedSpace(std::string_view text);

}  // namespace epgset
