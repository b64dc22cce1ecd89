#include "host/CTimerUtil.h"

#include "set/middleware/Clock.h"

// Local seconds are a 32-bit count: what lies beyond is cut off, as in the televisions' own clock.
std::uint32_t CTimerUtil::GetCurrentEpochTime() {
    const epgset::Clock& clock = epgset::clock();
    return static_cast<std::uint32_t>(clock.now() + clock.localOffset());
}

int CTimerUtil::FlagDST() {
    return epgset::clock().daylightSaving() ? 1 : 0;
}
