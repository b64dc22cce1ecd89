// How many files the process may have open.
#pragma once

#include <cstddef>

namespace epgset {

/// Sees to it that `count` files may be open for `option`, besides some for all else. Throws StartError,
/// which names the option, where they may not.
void allowOpenFiles(std::size_t count, const char* option);

}  // namespace epgset
