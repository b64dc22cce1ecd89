#include "set/middleware/ChannelTexts.h"

#include <fmt/format.h>

namespace epgset {

std::string channelIdText(int tvMode, int major, int minor) {
    return fmt::format("cid-{:03}-{}", tvMode, channelNumberText(major, minor));
}

std::string channelNumberText(int major, int minor) {
    return minor > 0 ? fmt::format("{}-{}", major, minor) : fmt::format("{}", major);
}

std::string scheduleIdText(unsigned long uid) {
    return fmt::format("sch_id_{}", uid);
}

}  // namespace epgset
