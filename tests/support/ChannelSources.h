// The channel source records that the host hands out.
#pragma once

#include <functional>

#include "host/ChannelSource.h"

namespace epgtest {

/// While it lives, sees the channel source records that are made and deleted. One at a time. A program that
/// uses it compiles ChannelSources.cpp in.
class ChannelSources {
public:
    ChannelSources();
    ~ChannelSources();
    ChannelSources(const ChannelSources&) = delete;
    ChannelSources& operator=(const ChannelSources&) = delete;

    /// Changes each record before it is handed out; its texts are heap texts of the record's own.
    std::function<void(ws_epg_channel_source& record)> change;

    bool none = false;  ///< no record is made: null is handed out
    int made = 0;
    int deleted = 0;  ///< null is not counted
};

}  // namespace epgtest
