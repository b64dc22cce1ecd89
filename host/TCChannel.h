// A channel of the middleware's line-up.
#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "host/Export.h"

namespace epgset {
struct Channel;
}

/// One channel. A new one is empty: the middleware fills it, or it is prepared as a template that says
/// which channels are asked for. Names are UTF-16 in big-endian byte order. A copy shares what the
/// original was filled with.
class HOST_API TCChannel {
public:
    TCChannel() = default;
    explicit TCChannel(std::shared_ptr<const epgset::Channel> channel);
    TCChannel(const TCChannel&) = default;
    TCChannel& operator=(const TCChannel&) = default;
    TCChannel(TCChannel&&) = default;
    TCChannel& operator=(TCChannel&&) = default;
    virtual ~TCChannel();

    /// Middleware objects come from the middleware's own allocator; null when it has no memory.
    static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept;
    static void* operator new(std::size_t bytes);
    static void operator delete(void* object) noexcept;
    static void operator delete(void* object, const std::nothrow_t&) noexcept;

    int TvMode() const;                   ///< reception mode; -1 when empty
    short Major() const;                  ///< major number
    short Minor() const;                  ///< minor number; 0 or less: none
    int FlagDigital() const;              ///< non-zero for a digital channel
    int FlagScrambled() const;            ///< non-zero for a scrambled channel
    int ServiceType() const;              ///< the low byte counts: 0 ALL to 7 ANALOG
    std::uint16_t PTC() const;            ///< physical transmission channel
    std::uint16_t ProgramNumber() const;  ///< number of the service in its transport stream

    /// What the channel was filled with; null when empty. For the middleware itself.
    const epgset::Channel* SourceChannel() const { return m_channel.get(); }

    /// Length of the name in bytes; below 1 when there is none.
    virtual int GetChannelNameLength() const;

    /// Copies the name into `buffer`, at most `bytes` bytes, and answers how many were copied.
    virtual int GetChannelName(void* buffer, int bytes) const;

    // Preparing a template: which channels AppTV::GetChannelKeyList is asked for.
    void MarkBit();                              ///< begins a template: only what is set from now on counts
    void SetHideGuide(int hidden);               ///< 0: channels that the guide does not hide
    void SetHidden(int hidden);                  ///< 0: channels that the user did not hide
    void SetType(int sourceType);                ///< channels of this source type
    int Type() const { return m_templateType; }  ///< the source type set by SetType; -1 when none was

    /// The digital channel type of a reception mode; -1 when it has none.
    static int GetDigitalChType(int tvMode);

    /// The reception mode of a channel type; -1 when it has none.
    static int GetTVMode(int channelType);

private:
    std::shared_ptr<const epgset::Channel> m_channel;
    int m_templateType = -1;
};
