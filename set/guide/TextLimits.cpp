#include "set/guide/TextLimits.h"

namespace epgset {

std::string_view cutToLimit(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return text;
    const auto continuesCharacter = [&](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80;
    };
    std::size_t length = limit;
    while (length > 0 && continuesCharacter(length))
        --length;
    text = text.substr(0, length);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

}  // namespace epgset
