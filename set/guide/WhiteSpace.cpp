#include "set/guide/WhiteSpace.h"

#include <cstddef>
#include <cstdint>

#include "set/text/ByteWords.h"

namespace epgset {
namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether the text is collapsed for certain, as most are. Looks at pairs of neighbours, eight at a time.
bool isCollapsed(std::string_view text) {
    constexpr std::size_t step = wordBytes;
    if (text.size() <= step || isSpace(text.front()) || isSpace(text.back())) return false;
    const auto isClean = [](const char* at) {
        const std::uint64_t word = wordAt(at);
        return (controlBytes(word) | (bytesThatAre(' ', word) & bytesThatAre(' ', wordAt(at + 1)))) == 0;
    };
    const char* const last = text.data() + text.size() - step - 1;
    for (const char* at = text.data(); at < last; at += step)
        if (!isClean(at)) return false;
    return isClean(last);
}

}  // namespace

std::string withCollapsedSpace(std::string_view text) {
    if (isCollapsed(text)) return std::string(text);
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
