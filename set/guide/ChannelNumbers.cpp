#include "set/guide/ChannelNumbers.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "set/guide/WhiteSpace.h"

namespace epgset {
namespace {

constexpr int kHighest = std::numeric_limits<std::int16_t>::max();

bool isNumber(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// The parts of a number before and after its separator; nothing for another form.
std::optional<std::pair<std::string_view, std::string_view>> split(std::string_view text) {
    const auto separator = text.find_first_of("-.");
    const std::string_view major = text.substr(0, separator);
    if (!isNumber(major)) return std::nullopt;
    if (separator == std::string_view::npos) return std::pair(major, std::string_view("0"));
    const std::string_view minor = text.substr(separator + 1);
    if (!isNumber(minor)) return std::nullopt;
    return std::pair(major, minor);
}

std::optional<std::int16_t> inRange(std::string_view digits, int lowest) {
    int value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc() || value < lowest || value > kHighest) return std::nullopt;
    return static_cast<std::int16_t>(value);
}

}  // namespace

std::optional<ChannelNumber> readChannelNumber(std::string_view text) {
    const auto parts = split(text);
    if (!parts) return std::nullopt;
    const auto major = inRange(parts->first, 1);
    const auto minor = inRange(parts->second, 0);
    if (!major || !minor) return std::nullopt;
    return ChannelNumber{*major, *minor};
}

bool hasNumberForm(std::string_view text) {
    return split(text).has_value();
}

std::string channelName(const std::vector<std::string>& displayNames, const std::string& id) {
    const auto found = std::find_if(displayNames.begin(), displayNames.end(), [](const std::string& name) {
        return !name.empty() && !hasNumberForm(name);
    });
    return found == displayNames.end() ? withCollapsedSpace(id) : *found;
}

bool NumberPlan::take(int tvMode, ChannelNumber number) {
    return taken_[tvMode].insert(number).second;
}

std::optional<ChannelNumber> NumberPlan::takeLowestFree(int tvMode) {
    int& lowest = lowest_.try_emplace(tvMode, 1).first->second;
    for (; lowest <= kHighest; ++lowest) {
        const ChannelNumber number{static_cast<std::int16_t>(lowest), 0};
        if (take(tvMode, number)) return number;
    }
    return std::nullopt;
}

}  // namespace epgset
