// The middleware's clock.
#pragma once

#include <cstdint>

#include "host/Export.h"

/// The middleware's clock counts local seconds: UNIX time plus the zone offset plus the
/// daylight-saving hour. May be called from any thread.
class HOST_API CTimerUtil {
public:
    /// The current time in local seconds.
    static std::uint32_t GetCurrentEpochTime();

    /// Non-zero while daylight saving is in force.
    static int FlagDST();
};
