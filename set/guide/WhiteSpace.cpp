#include "set/guide/WhiteSpace.h"

#include <algorithm>

namespace epgset {
namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

std::string withCollapsedSpace(std::string_view text) {
    std::string collapsed;
    collapsed.reserve(text.size());
    for (auto at = text.begin();;) {
        const auto word = std::find_if_not(at, text.end(), isSpace);
        if (word == text.end()) return collapsed;
        at = std::find_if(word, text.end(), isSpace);
        if (!collapsed.empty()) collapsed += ' ';
        collapsed.append(word, at);
    }
}

}  // namespace epgset
