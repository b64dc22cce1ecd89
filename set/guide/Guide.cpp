#include "set/guide/Guide.h"

#include <algorithm>

#include "set/guide/ChannelOrder.h"

namespace epgset {

std::span<const Channel> Guide::channelsOf(int tvMode) const {
    const auto wanted = modeRank(tvMode);
    const auto first = std::partition_point(channels_.begin(), channels_.end(), [&](const Channel& channel) {
        return modeRank(channel.tvMode) < wanted;
    });
    const auto last = std::partition_point(first, channels_.end(),
                                           [&](const Channel& channel) { return channel.tvMode == tvMode; });
    return {first, last};
}

// One search over all channels and not one within channelsOf(), and ranks only where modes differ: this runs
// for each channel on each request.
const Channel* Guide::find(int tvMode, int major, int minor) const {
    const auto wantedRank = modeRank(tvMode);
    const auto found = std::partition_point(channels_.begin(), channels_.end(), [&](const Channel& channel) {
        if (channel.tvMode != tvMode) return modeRank(channel.tvMode) < wantedRank;
        return channel.major != major ? channel.major < major : channel.minor < minor;
    });
    if (found == channels_.end() || found->tvMode != tvMode) return nullptr;
    return found->major == major && found->minor == minor ? &*found : nullptr;
}

}  // namespace epgset
