// What names a channel to the middleware.
#pragma once

#include "host/Export.h"

/// Names one channel of the line-up: its source type and its number, which are unique together.
class HOST_API TCChannelKey {
public:
    TCChannelKey() = default;
    TCChannelKey(int sourceType, short major, short minor, int place = 0)
        : m_sourceType(sourceType), m_major(major), m_minor(minor), m_place(place) {}
    TCChannelKey(const TCChannelKey&) = default;
    TCChannelKey& operator=(const TCChannelKey&) = default;
    virtual ~TCChannelKey();

    int SourceType() const { return m_sourceType; }
    short Major() const { return m_major; }
    short Minor() const { return m_minor; }

    /// Where the channel stood in the line-up when the key was made: where to look for it first.
    int Place() const { return m_place; }

private:
    int m_sourceType = -1;
    short m_major = 0;
    short m_minor = 0;
    int m_place = 0;
};
