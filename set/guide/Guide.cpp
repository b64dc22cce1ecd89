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

const Channel* Guide::find(int tvMode, int major, int minor, std::size_t guess) const {
    const std::uint64_t wanted = channelNumber(tvMode, major, minor);
    if (guess >= numbers_.size() || numbers_[guess] != wanted) {
        const auto found = std::lower_bound(numbers_.begin(), numbers_.end(), wanted);
        if (found == numbers_.end() || *found != wanted) return nullptr;
        guess = static_cast<std::size_t>(found - numbers_.begin());
    }
    const Channel& channel = channels_[guess];
    return channel.tvMode == tvMode && channel.major == major && channel.minor == minor ? &channel : nullptr;
}

}  // namespace epgset
