// The channels of many numbers, found together.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "host/TCChannel.h"

/// The digital channels of some numbers, as t_get_cached_channel_by_num finds each of them, from one walk
/// through the channels of each mode instead of one for each number.
///
/// What a walk has to report is left to t_get_cached_channel_by_num: a walk ends at the first key without a
/// digital channel, and nothing is logged.
class CachedChannels {
public:
    struct Number {
        int tvmode;
        int major;
        int minor;  ///< 0 matches any
    };

    explicit CachedChannels(const std::vector<Number>& numbers);

    /// The channel of one of the numbers, by its place among them; null where the walk did not meet it. Owned
    /// here, and the same object for numbers that are the same channel's.
    TCChannel* of(std::size_t number) const { return m_found[number]; }

private:
    void walk(int tvmode, const std::vector<Number>& numbers);

    std::vector<std::unique_ptr<TCChannel>> m_channels;
    std::vector<TCChannel*> m_found;  ///< by number
};
