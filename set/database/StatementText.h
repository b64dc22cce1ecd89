// Finds one's way in a text of several SQL statements.
#pragma once

#include <cstddef>
#include <string_view>

namespace epgset {

/// Where the next statement begins in what is left of an SQL text: past blanks, comments and ";". The
/// text's length when nothing follows.
std::size_t nextStatement(std::string_view sql);

}  // namespace epgset
