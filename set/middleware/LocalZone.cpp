#include "set/middleware/LocalZone.h"

#include <ctime>
#include <optional>

namespace epgset {

namespace {

constexpr long hour = 3600;
constexpr std::int64_t month = 30LL * 24 * hour;

std::optional<std::tm> brokenDown(std::int64_t unixSeconds) {
    const auto time = static_cast<std::time_t>(unixSeconds);
    std::tm parts{};
    if (localtime_r(&time, &parts) == nullptr) return std::nullopt;
    return parts;
}

/// The zone's offset in seconds when it is not shifted, as close to that time as can be found within a year;
/// nothing for a zone that is shifted all year.
std::optional<long> unshiftedOffsetNear(std::int64_t unixSeconds) {
    for (int months = 1; months <= 12; ++months) {
        for (const std::int64_t step : {month, -month}) {
            const auto parts = brokenDown(unixSeconds + months * step);
            if (parts && parts->tm_isdst <= 0) return parts->tm_gmtoff;
        }
    }
    return std::nullopt;
}

}  // namespace

ZoneOffset localZoneAt(std::int64_t unixSeconds) {
    const auto parts = brokenDown(unixSeconds);
    if (!parts) return {};
    const long offset = parts->tm_gmtoff;
    bool ahead = parts->tm_isdst > 0;
    if (ahead) {
        const auto unshifted = unshiftedOffsetNear(unixSeconds);
        ahead = !unshifted || offset > *unshifted;
    }
    const long standard = ahead ? offset - hour : offset;
    return {static_cast<int>(standard / 60), ahead};
}

}  // namespace epgset
