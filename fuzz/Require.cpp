#include "fuzz/Require.h"

#include <cstdio>
#include <cstdlib>

namespace epgfuzz {

void fail(std::string_view what, std::string_view shown) {
    std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
    if (!shown.empty()) std::fprintf(stderr, "%.*s\n", static_cast<int>(shown.size()), shown.data());
    std::abort();
}

}  // namespace epgfuzz
