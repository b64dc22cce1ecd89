// UTF-8 to the middleware's UTF-16: by the set, and by the plug-in's adapter. The first byte bounds the
// buffer, the rest is the text.
#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "fuzz/Input.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "set/text/Utf16.h"
#include "set/text/Utf8.h"

namespace epgfuzz {
namespace {

using Units = std::vector<unsigned short>;

/// A copy exactly as long as the text, so that reading on is seen.
std::vector<char> exactCopy(std::string_view text) {
    std::vector<char> copy(text.begin(), text.end());
    copy.shrink_to_fit();
    return copy;
}

/// All units of a text, by the set.
Units unitsOf(std::string_view text) {
    std::vector<unsigned char> bytes(2 * epgset::utf16Length(text));
    const std::size_t written = epgset::utf16FromUtf8(text, std::endian::little, bytes);
    require(written == bytes.size(), "a text takes the room that was counted");
    Units units;
    for (std::size_t i = 0; i < written; i += 2)
        units.push_back(static_cast<unsigned short>(bytes[i] | bytes[i + 1] << 8));
    return units;
}

void checkSet(std::string_view text, std::size_t room) {
    const std::vector<char> copy = exactCopy(text);
    const std::string_view input(copy.data(), copy.size());
    const Units units = unitsOf(input);
    require(epgset::utf8FromUtf16(units, std::endian::native) == epgset::repairedUtf8(input),
            "a text comes back as it is, repaired", text);
    std::vector<unsigned char> bounded(room);
    const std::size_t written = epgset::utf16FromUtf8(input, std::endian::native, bounded);
    require(written <= room && written % 2 == 0, "what is written fits");
    for (std::size_t i = 0; i < written / 2; ++i) {
        const unsigned unit = static_cast<unsigned>(bounded[2 * i] | bounded[2 * i + 1] << 8);
        require(unit == units[i], "a small buffer holds the beginning");
    }
    const bool cutInTwo = written != 0 && (units[written / 2 - 1] & 0xFC00) == 0xD800;
    require(!cutInTwo, "no character is cut in two", text);
}

/// Whether the adapter converts all of it: planes above 3 it folds onto lower ones, on purpose.
bool isConvertible(std::string_view text) {
    return epgset::isCleanUtf8(text) &&
           std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) <= 0xF0; });
}

void checkAdapter(std::string_view text, std::size_t room) {
    if (text.empty()) return;
    const std::vector<char> copy = exactCopy(text);
    const int length = static_cast<int>(copy.size());
    Units bounded(room + 1);
    const int few =
        t_conv_UTF8_to_UTF16(copy.data(), length, bounded.data(), static_cast<int>(bounded.size()));
    require(few >= 0 && few < static_cast<int>(bounded.size()), "what is written fits");
    require(bounded[static_cast<std::size_t>(few)] == 0, "it is terminated");

    Units whole(text.size() + 1);
    const int all = t_conv_UTF8_to_UTF16(copy.data(), length, whole.data(), static_cast<int>(whole.size()));
    require(all >= 0 && all < static_cast<int>(whole.size()), "a unit a byte is always enough");
    whole.resize(static_cast<std::size_t>(all));
    require(std::equal(whole.begin(), whole.begin() + few, bounded.begin()),
            "a small buffer holds the beginning", text);
    if (!isConvertible(text)) return;
    require(whole == unitsOf(text), "the adapter and the set agree", text);
    std::string back(3 * whole.size() + 1, '\0');
    const int bytes = t_conv_UTF16_to_UTF8(whole.data(), all, back.data(), static_cast<int>(back.size()));
    back.resize(static_cast<std::size_t>(bytes));
    require(back == text, "a text comes back as it is", text);
}

/// The middleware's form of a text, and its first line back.
void checkMiddlewareText(const std::string& text) {
    constexpr std::size_t mostUnits = 511;
    char* const handle = t_change_UTF8_to_ZorviStr(text.c_str());
    require(handle != nullptr, "a text is made");
    const Units units = unitsOf(text);
    const int bytes = static_cast<int>(2 * std::min(units.size(), mostUnits));
    const HeapBlock owned(bytes == 0 ? handle : nullptr);  // nothing to convert: not freed below
    const HeapText back(t_change_ZorviStr_to_UTF8(handle, bytes, 1));
    require((back == nullptr) == (bytes == 0), "a text that is not empty comes back");
    if (back == nullptr || units.size() > mostUnits || !isConvertible(text)) return;
    require(back.get() == text.substr(0, text.find_first_of("\r\n")), "it is the first line", text);
}

}  // namespace

void fuzzUtf8ToUtf16(std::string_view input) {
    if (input.empty()) return;
    const auto room = static_cast<unsigned char>(input.front());
    const std::string_view text = input.substr(1);
    checkSet(text, room);
    checkAdapter(upToNul(text), room);
    checkMiddlewareText(std::string(upToNul(text)));
}

}  // namespace epgfuzz
