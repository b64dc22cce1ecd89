#include "set/recorder/RecordingName.h"

#include "set/recorder/LocalTimeText.h"
#include "set/text/Utf8.h"

namespace epgset {
namespace {

/// A channel's name may not take the title's place.
constexpr std::size_t maximumChannelBytes = 80;

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isDisliked(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 || code == 0x7F ||
           std::string_view("/\\:*?\"<>|").find(byte) != std::string_view::npos;
}

/// Whether a character of U+0080 to U+009F begins at `at`: control characters too.
bool isHighControl(std::string_view text, std::size_t at) {
    return text[at] == '\xC2' && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '.'))
        text.remove_suffix(1);
    return text;
}

/// The text cut to so many bytes, between two characters.
std::string_view cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && isContinuation(text[bytes]))
        --bytes;
    return text.substr(0, bytes);
}

std::string namePart(std::string_view raw) {
    const std::string text = repairedUtf8(raw);
    std::string part;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool high = isHighControl(text, at);
        part += high || isDisliked(text[at]) ? '_' : text[at];
        if (high) ++at;
    }
    part = withoutBlanks(part);
    if (!part.empty() && part.front() == '.') part.front() = '_';
    return part;
}

}  // namespace

std::string recordingName(std::int64_t plannedStart, std::string_view channel, std::string_view title) {
    std::string name = localFileTime(plannedStart);
    const std::string channelPart = namePart(channel);
    name.append(" ").append(cut(channelPart, maximumChannelBytes)).append(" ").append(namePart(title));
    return std::string(withoutBlanks(cut(name, maximumRecordingNameBytes)));
}

}  // namespace epgset
