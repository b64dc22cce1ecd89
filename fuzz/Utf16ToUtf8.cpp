// The middleware's UTF-16 to UTF-8: by the set, and by the plug-in's adapter. The first byte bounds the
// buffer, the rest are units, the high byte first; a last byte alone does not count.
#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "set/text/Utf16.h"
#include "set/text/Utf8.h"

namespace epgfuzz {
namespace {

using Units = std::vector<unsigned short>;

bool isHigh(unsigned short unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLow(unsigned short unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// Whether every surrogate has its partner.
bool isWellFormed(const Units& units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (isLow(units[i])) return false;
        if (isHigh(units[i]) && (++i == units.size() || !isLow(units[i]))) return false;
    }
    return true;
}

Units unitsOf(std::string_view bytes) {
    Units units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units.push_back(static_cast<unsigned short>(static_cast<unsigned char>(bytes[i]) << 8 |
                                                    static_cast<unsigned char>(bytes[i + 1])));
    units.shrink_to_fit();  // so that reading on is seen
    return units;
}

void checkSet(const Units& units) {
    const std::string text = epgset::utf8FromUtf16(units, std::endian::native);
    require(epgset::isCleanUtf8(text), "the text is valid", text);
    Units swapped = units;
    for (unsigned short& unit : swapped)
        unit = static_cast<unsigned short>(unit << 8 | unit >> 8);
    require(epgset::utf8FromUtf16(swapped, std::endian::big) == text, "the order of bytes changes nothing");
    if (!isWellFormed(units)) return;
    require(epgset::utf16Length(text) == units.size(), "a text takes as many units as it had", text);
    std::vector<unsigned char> back(2 * units.size());
    epgset::utf16FromUtf8(text, std::endian::native, back);
    require(units.empty() || std::memcmp(back.data(), units.data(), back.size()) == 0,
            "the units come back as they were", text);
}

void checkAdapter(Units units, std::size_t room) {
    const int count = static_cast<int>(units.size());
    std::vector<char> bounded(room + 1);
    const int few =
        t_conv_UTF16_to_UTF8(units.data(), count, bounded.data(), static_cast<int>(bounded.size()));
    if (units.data() == nullptr) {
        require(few == -1, "no text is refused");
        return;
    }
    require(few >= 0 && few < static_cast<int>(bounded.size()), "what is written fits");
    require(bounded[static_cast<std::size_t>(few)] == '\0', "it is terminated");

    std::vector<char> whole(3 * units.size() + 1);
    const int all = t_conv_UTF16_to_UTF8(units.data(), count, whole.data(), static_cast<int>(whole.size()));
    require(all >= few, "more room holds no less");
    require(std::equal(bounded.begin(), bounded.begin() + few, whole.begin()),
            "a small buffer holds the beginning");
    units.erase(std::ranges::find(units, 0), units.end());  // the adapter ends at a NUL
    if (!isWellFormed(units)) return;
    const std::string text(whole.data(), static_cast<std::size_t>(all));
    require(text == epgset::utf8FromUtf16(units, std::endian::native), "the adapter and the set agree", text);
}

/// The first line of a text in the middleware's order of bytes, which may end anywhere.
void checkMiddlewareText(std::string_view bytes) {
    if (bytes.empty()) return;
    void* const handle = std::malloc(bytes.size());
    require(handle != nullptr, "there is memory");
    std::memcpy(handle, bytes.data(), bytes.size());
    const HeapBlock owned(handle);
    const HeapText line(t_change_ZorviStr_to_UTF8(handle, static_cast<int>(bytes.size()), 0));
    require((line == nullptr) == (bytes.size() < 2), "a text that is not empty is converted");
    if (line == nullptr) return;
    require(std::strpbrk(line.get(), "\r\n") == nullptr, "it is one line", line.get());
}

}  // namespace

void fuzzUtf16ToUtf8(std::string_view input) {
    if (input.empty()) return;
    const auto room = static_cast<unsigned char>(input.front());
    const std::string_view bytes = input.substr(1);
    const Units units = unitsOf(bytes);
    checkSet(units);
    checkAdapter(units, room);
    checkMiddlewareText(bytes);
}

}  // namespace epgfuzz
