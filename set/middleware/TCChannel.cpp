#include "host/TCChannel.h"

#include <atomic>
#include <bit>
#include <span>
#include <utility>

#include "set/guide/Guide.h"
#include "set/memory/MemoryShortage.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/Television.h"
#include "set/text/Utf16.h"

namespace {

/// How many allocations still succeed; negative while there is no fault.
std::atomic<int> allocationsLeft{-1};

/// Whether the fault lets one more allocation through.
bool mayAllocate() {
    int left = allocationsLeft.load(std::memory_order_relaxed);
    while (left > 0 && !allocationsLeft.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
    }
    return left != 0;
}

}  // namespace

void epgset::failChannelAllocationsAfter(int allocations) {
    allocationsLeft.store(allocations, std::memory_order_relaxed);
}

TCChannel::TCChannel(std::shared_ptr<const epgset::Channel> channel) : m_channel(std::move(channel)) {}

TCChannel::~TCChannel() = default;

void* TCChannel::operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    void* const block = mayAllocate() ? ::operator new(bytes, std::nothrow) : nullptr;
    if (block == nullptr) epgset::noteMemoryShortage();
    return block;
}

void* TCChannel::operator new(std::size_t bytes) {
    if (!mayAllocate()) throw std::bad_alloc();
    return ::operator new(bytes);
}

void TCChannel::operator delete(void* object) noexcept {
    ::operator delete(object);
}

void TCChannel::operator delete(void* object, const std::nothrow_t&) noexcept {
    ::operator delete(object);
}

int TCChannel::TvMode() const {
    return m_channel ? m_channel->tvMode : -1;
}

short TCChannel::Major() const {
    return m_channel ? m_channel->major : short{0};
}

short TCChannel::Minor() const {
    return m_channel ? m_channel->minor : short{0};
}

int TCChannel::FlagDigital() const {
    return m_channel && m_channel->digital ? 1 : 0;
}

int TCChannel::FlagScrambled() const {
    return m_channel && m_channel->scrambled ? 1 : 0;
}

int TCChannel::ServiceType() const {
    return m_channel ? m_channel->serviceType : 0;
}

std::uint16_t TCChannel::PTC() const {
    return m_channel ? m_channel->ptc : std::uint16_t{0};
}

std::uint16_t TCChannel::ProgramNumber() const {
    return m_channel ? m_channel->programNumber : std::uint16_t{0};
}

int TCChannel::GetChannelNameLength() const {
    return m_channel ? static_cast<int>(2 * epgset::utf16Length(m_channel->name)) : 0;
}

int TCChannel::GetChannelName(void* buffer, int bytes) const {
    if (!m_channel || !buffer || bytes <= 0) return 0;
    const std::span room(static_cast<unsigned char*>(buffer), static_cast<std::size_t>(bytes));
    return static_cast<int>(epgset::utf16FromUtf8(m_channel->name, std::endian::big, room));
}

void TCChannel::MarkBit() {
    m_templateType = -1;
}

// The line-up holds no channel that is hidden, so neither mark leaves one out.
void TCChannel::SetHideGuide(int /*hidden*/) {}

void TCChannel::SetHidden(int /*hidden*/) {}

void TCChannel::SetType(int sourceType) {
    m_templateType = sourceType;
}

int TCChannel::GetDigitalChType(int tvMode) {
    const int mode = epgset::receptionModeByTvMode(tvMode);
    return mode < 0 ? -1 : epgset::receptionModes()[static_cast<std::size_t>(mode)].sourceType;
}

int TCChannel::GetTVMode(int channelType) {
    const int mode = epgset::receptionModeBySourceType(channelType);
    return mode < 0 ? -1 : epgset::receptionModes()[static_cast<std::size_t>(mode)].tvMode;
}
