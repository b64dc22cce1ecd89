#include "set/guide/XmltvTime.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>

namespace epgset {
namespace {

struct ZoneName {
    std::string_view name;
    int minutesEast;
};

constexpr std::array kZoneNames{
    ZoneName{"UTC", 0},    ZoneName{"GMT", 0},    ZoneName{"BST", 60},   ZoneName{"WET", 0},
    ZoneName{"WEST", 60},  ZoneName{"CET", 60},   ZoneName{"CEST", 120}, ZoneName{"EET", 120},
    ZoneName{"EEST", 180}, ZoneName{"MSK", 180},  ZoneName{"EST", -300}, ZoneName{"EDT", -240},
    ZoneName{"CST", -360}, ZoneName{"CDT", -300}, ZoneName{"MST", -420}, ZoneName{"MDT", -360},
    ZoneName{"PST", -480}, ZoneName{"PDT", -420}, ZoneName{"JST", 540},
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool allDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), isDigit);
}

/// The value of a few digits.
int number(std::string_view digits) {
    int value = 0;
    for (const char c : digits)
        value = value * 10 + (c - '0');
    return value;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Minutes east of UTC of a zone designator.
std::optional<int> readZone(std::string_view zone) {
    if (zone.empty()) return 0;
    if (zone[0] != '+' && zone[0] != '-') {
        const auto* const found = std::find_if(kZoneNames.begin(), kZoneNames.end(),
                                               [&](const ZoneName& row) { return row.name == zone; });
        if (found == kZoneNames.end()) return std::nullopt;
        return found->minutesEast;
    }
    const std::string_view digits = zone.substr(1);
    const bool colon = digits.size() == 5 && digits[2] == ':';
    if (!colon && digits.size() != 4) return std::nullopt;
    const std::string_view hourDigits = digits.substr(0, 2);
    const std::string_view minuteDigits = digits.substr(colon ? 3 : 2);
    if (!allDigits(hourDigits) || !allDigits(minuteDigits)) return std::nullopt;
    const int hours = number(hourDigits);
    const int minutes = number(minuteDigits);
    if (hours > 23 || minutes > 59) return std::nullopt;
    return (zone[0] == '-' ? -1 : 1) * (hours * 60 + minutes);
}

/// Seconds since 1970 of 4 to 14 digits, without a zone.
std::optional<std::int64_t> readDigits(std::string_view digits) {
    if (digits.size() < 4 || digits.size() > 14 || digits.size() % 2 != 0) return std::nullopt;
    const auto part = [&](std::size_t position, int missing) {
        return position < digits.size() ? number(digits.substr(position, 2)) : missing;
    };
    const std::chrono::year_month_day date{std::chrono::year(number(digits.substr(0, 4))),
                                           std::chrono::month(static_cast<unsigned>(part(4, 1))),
                                           std::chrono::day(static_cast<unsigned>(part(6, 1)))};
    const int hour = part(8, 0);
    const int minute = part(10, 0);
    const int second = part(12, 0);
    if (!date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
    return ((days * 24 + hour) * 60 + minute) * 60 + second;
}

}  // namespace

std::optional<std::uint32_t> readXmltvTime(std::string_view text) {
    text = trimmed(text);
    const auto digitsEnd =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
    const auto local = readDigits(text.substr(0, digitsEnd));
    const auto minutesEast = readZone(trimmed(text.substr(digitsEnd)));
    if (!local || !minutesEast) return std::nullopt;
    const std::int64_t unixSeconds = *local - std::int64_t{60} * *minutesEast;
    if (unixSeconds < 0 || unixSeconds > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return static_cast<std::uint32_t>(unixSeconds);
}

}  // namespace epgset
