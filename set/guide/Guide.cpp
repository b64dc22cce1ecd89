#include "set/guide/Guide.h"

#include <algorithm>
#include <tuple>

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

const Channel* Guide::find(int tvMode, int major, int minor) const {
    const auto ofMode = channelsOf(tvMode);
    const auto found = std::partition_point(ofMode.begin(), ofMode.end(), [&](const Channel& channel) {
        return std::tuple<int, int>(channel.major, channel.minor) < std::tie(major, minor);
    });
    if (found == ofMode.end() || found->major != major || found->minor != minor) return nullptr;
    return &*found;
}

}  // namespace epgset
