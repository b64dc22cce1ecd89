#include "set/uri/UriText.h"

namespace epgset {
namespace {

/// The value of a hexadecimal digit, -1 for any other character.
int hexDigit(char character) noexcept {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<std::size_t> decodeUriText(std::string_view text, PlusSign plusSign, char* out) noexcept {
    std::size_t written = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        char character = text[at];
        if (character == '%' && text.size() - at > 2) {
            const int high = hexDigit(text[at + 1]);
            const int low = hexDigit(text[at + 2]);
            if (high >= 0 && low >= 0) {
                character = static_cast<char>(high * 16 + low);
                at += 2;
            }
        } else if (character == '+' && plusSign == PlusSign::Blank) {
            character = ' ';
        }
        if (character == '\0') return std::nullopt;
        out[written++] = character;
    }
    return written;
}

}  // namespace epgset
