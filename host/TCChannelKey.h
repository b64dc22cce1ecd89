// What names a channel to the middleware.
#pragma once

#include "host/Export.h"

/// Names one channel of the line-up: its source type and its number, which are unique together.
class HOST_API TCChannelKey {
public:
    TCChannelKey() = default;
    TCChannelKey(int sourceType, short major, short minor)
        : m_sourceType(sourceType), m_major(major), m_minor(minor) {}
    TCChannelKey(const TCChannelKey&) = default;
    TCChannelKey& operator=(const TCChannelKey&) = default;
    virtual ~TCChannelKey();

    int SourceType() const { return m_sourceType; }
    short Major() const { return m_major; }
    short Minor() const { return m_minor; }

private:
    int m_sourceType = -1;
    short m_major = 0;
    short m_minor = 0;
};
