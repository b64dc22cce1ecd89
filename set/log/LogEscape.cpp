#include "set/log/LogEscape.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <iterator>

namespace epgset {
namespace {

bool isControl(utf8proc_int32_t codePoint) {
    constexpr utf8proc_int32_t lineSeparator = 0x2028;
    constexpr utf8proc_int32_t paragraphSeparator = 0x2029;
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == lineSeparator ||
           codePoint == paragraphSeparator;
}

bool isNotPrintableAscii(utf8proc_int32_t codePoint) {
    return codePoint < 0x20 || codePoint >= 0x7F;
}

void appendEscape(std::string& line, std::string_view bytes) {
    for (const char byte : bytes) {
        switch (byte) {
            case '\n':
                line += "\\n";
                break;
            case '\r':
                line += "\\r";
                break;
            case '\t':
                line += "\\t";
                break;
            default:
                fmt::format_to(std::back_inserter(line), "\\x{:02X}", static_cast<unsigned char>(byte));
        }
    }
}

/// The line, with escapes for what is not UTF-8 and for the characters that need one.
std::string escaped(std::string_view message, std::size_t maxBytes,
                    bool (*needsEscape)(utf8proc_int32_t codePoint)) {
    if (message.ends_with('\n')) message.remove_suffix(1);
    if (message.ends_with('\r')) message.remove_suffix(1);

    std::string line;
    while (!message.empty() && line.size() < maxBytes) {
        utf8proc_int32_t codePoint = -1;
        const utf8proc_ssize_t read =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(message.data()),
                             static_cast<utf8proc_ssize_t>(message.size()), &codePoint);
        const std::size_t length = read > 0 ? static_cast<std::size_t>(read) : 1;
        const std::size_t before = line.size();
        if (read <= 0 || needsEscape(codePoint)) {
            appendEscape(line, message.substr(0, length));
        } else {
            line.append(message, 0, length);
        }
        if (line.size() > maxBytes) {
            line.resize(before);
            break;
        }
        message.remove_prefix(length);
    }
    return line;
}

}  // namespace

std::string escapedLogLine(std::string_view message, std::size_t maxBytes) {
    return escaped(message, maxBytes, isControl);
}

std::string asciiLogLine(std::string_view message, std::size_t maxBytes) {
    return escaped(message, maxBytes, isNotPrintableAscii);
}

}  // namespace epgset
