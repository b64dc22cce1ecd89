#include "set/guide/WhiteSpace.h"

namespace epgset {

std::string withCollapsedSpace(std::string_view text) {
    std::string collapsed;
    collapsed.reserve(text.size());
    bool pending = false;
    for (const char c : text) {
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            pending = !collapsed.empty();
            continue;
        }
        if (pending) collapsed += ' ';
        pending = false;
        collapsed += c;
    }
    return collapsed;
}

}  // namespace epgset
