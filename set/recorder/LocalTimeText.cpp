#include "set/recorder/LocalTimeText.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <ctime>

#include "set/text/IsoTime.h"

namespace epgset {
namespace {

/// Epoch for a time that the calendar of the C library does not reach.
std::tm wallClockAt(std::int64_t unixSeconds) {
    const std::time_t time = unixSeconds;
    std::tm parts{};
    if (localtime_r(&time, &parts) == nullptr) {
        const std::time_t epoch = 0;
        localtime_r(&epoch, &parts);
    }
    return parts;
}

}  // namespace

std::string localIsoTime(std::int64_t unixSeconds) {
    const std::tm parts = wallClockAt(unixSeconds);
    return isoTime(parts, parts.tm_gmtoff);
}

std::string localFileTime(std::int64_t unixSeconds) {
    return fmt::format("{:%Y-%m-%d %H-%M}", wallClockAt(unixSeconds));
}

}  // namespace epgset
