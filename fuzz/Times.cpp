// Texts that state a point in time.
#include <array>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "fuzz/Input.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "set/guide/XmltvTime.h"
#include "set/middleware/ManualClock.h"
#include "set/text/IsoTime.h"

namespace epgfuzz {
namespace {

// The service counts leap years by the four-year rule, on purpose: it is right from 1901 to 2099.
constexpr long long firstRight = -2'177'452'800;  // 1901-01-01T00:00:00Z
constexpr long long endOfRight = 4'102'444'800;   // 2100-01-01T00:00:00Z
constexpr long long day = 86400;

struct Zone {
    int minutesEast;
    bool daylightSaving;
};
constexpr std::array zones = {Zone{0, false}, Zone{330, false}, Zone{-210, false}, Zone{60, true}};

/// The clock in use, while it lives.
class ClockInUse {
public:
    ClockInUse() { epgset::useClock(&clock); }
    ~ClockInUse() { epgset::useClock(nullptr); }
    ClockInUse(const ClockInUse&) = delete;
    ClockInUse& operator=(const ClockInUse&) = delete;

    epgset::ManualClock clock{0};
};

void checkIso(const std::string& text) {
    const long long time = t_get_UNIX_from_ISO8601(text.c_str());
    ClockInUse set;
    for (const Zone& zone : zones) {
        set.clock.setZone(zone.minutesEast, zone.daylightSaving);
        const HeapText written(t_get_ISO8601_from_UNIX(time));
        if (time - day < firstRight || time + day >= endOfRight) continue;
        require(std::string_view(written.get()).size() == 25, "a time is written in 25 characters",
                written.get());
        // The digits hold the hour of daylight saving and the offset does not, on purpose.
        const long long expected = time + (zone.daylightSaving ? 3600 : 0);
        require(t_get_UNIX_from_ISO8601(written.get()) == expected, "a time that is written is read the same",
                text + " as " + written.get());
    }
}

void checkXmltv(const std::string& text) {
    const auto time = epgset::readXmltvTime(text);
    if (!time) return;
    const std::time_t seconds = *time;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char written[32] = {};
    strftime(written, sizeof written, "%Y%m%d%H%M%S +0000", &parts);
    require(epgset::readXmltvTime(written) == time, "a guide's time that is written is read the same", text);
    if (seconds >= endOfRight) return;
    require(t_get_UNIX_from_ISO8601(epgset::isoTime(parts, 0).c_str()) == seconds,
            "the set's time texts are read by the plug-in", text);
}

}  // namespace

void fuzzTimes(std::string_view input) {
    const std::string text(upToNul(input));
    checkIso(text);
    checkXmltv(text);
}

}  // namespace epgfuzz
