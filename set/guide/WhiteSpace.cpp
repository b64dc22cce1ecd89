#include "set/guide/WhiteSpace.h"

#include <cstddef>

namespace epgset {
namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

std::string withCollapsedSpace(std::string_view text) {
    std::string collapsed(text.size(), '\0');
    char* end = collapsed.data();
    bool apart = false;  // from the word before
    for (const char c : text) {
        if (isSpace(c)) {
            apart = end != collapsed.data();
            continue;
        }
        if (apart) *end++ = ' ';
        apart = false;
        *end++ = c;
    }
    collapsed.resize(static_cast<std::size_t>(end - collapsed.data()));
    return collapsed;
}

}  // namespace epgset
