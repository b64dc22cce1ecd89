#include <algorithm>
#include <array>

#include "fuzz/Target.h"

namespace epgfuzz {
namespace {

constexpr std::array table = {
    Target{"request", fuzzRequest},
    Target{"schedule-body", fuzzScheduleBody},
    Target{"query-parameters", fuzzQueryParameters},
    Target{"client-sql", fuzzClientSql},
    Target{"times", fuzzTimes},
    Target{"utf8-to-utf16", fuzzUtf8ToUtf16},
    Target{"utf16-to-utf8", fuzzUtf16ToUtf8},
    Target{"device-description", fuzzDeviceDescription},
    Target{"xmltv", fuzzXmltv},
    Target{"lineup", fuzzLineup},
    Target{"document", fuzzDocument},
};

}  // namespace

std::span<const Target> targets() {
    return table;
}

const Target* findTarget(std::string_view name) {
    const auto* const found =
        std::ranges::find_if(table, [name](const Target& target) { return target.name == name; });
    return found == table.end() ? nullptr : found;
}

}  // namespace epgfuzz
