// Takes the middleware's digital channel types away.
#pragma once

namespace epgtest {

/// While it lives, no reception mode has a digital channel type. One at a time. A program that uses it
/// compiles ChannelTypes.cpp in.
class NoDigitalChannelTypes {
public:
    NoDigitalChannelTypes();
    ~NoDigitalChannelTypes();
    NoDigitalChannelTypes(const NoDigitalChannelTypes&) = delete;
    NoDigitalChannelTypes& operator=(const NoDigitalChannelTypes&) = delete;
};

}  // namespace epgtest
