#include "set/middleware/ChannelTexts.h"

#include <fmt/compile.h>
#include <fmt/format.h>

namespace epgset {

std::string channelIdText(int tvMode, int major, int minor) {
    return minor > 0 ? fmt::format(FMT_COMPILE("cid-{:03}-{}-{}"), tvMode, major, minor)
                     : fmt::format(FMT_COMPILE("cid-{:03}-{}"), tvMode, major);
}

std::string channelNumberText(int major, int minor) {
    return minor > 0 ? fmt::format(FMT_COMPILE("{}-{}"), major, minor)
                     : fmt::format(FMT_COMPILE("{}"), major);
}

std::string scheduleIdText(unsigned long uid) {
    return fmt::format("sch_id_{}", uid);
}

}  // namespace epgset
