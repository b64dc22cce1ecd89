#include "host/CRemindInfo.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <string>

#include "host/TCChannel.h"
#include "host/TCProgram.h"
#include "set/guide/Guide.h"
#include "set/middleware/Clock.h"
#include "set/text/Utf16.h"

namespace {

/// A programme that owns its texts.
struct DetachedProgramme {
    std::string title;
    std::string synopsis;
    epgset::Programme programme;
};

unsigned short swapped(unsigned short unit) {
    return static_cast<unsigned short>(unit << 8 | unit >> 8);
}

using TextLength = int (TCProgram::*)() const;
using TextCopy = int (TCProgram::*)(void* buffer, int bytes) const;

/// A text of a programme, its units in big-endian byte order.
CRemindInfo::Text textOf(const TCProgram& program, TextLength length, TextCopy copy) {
    const int bytes = (program.*length)();
    if (bytes < 2) return {};
    CRemindInfo::Text text(static_cast<std::size_t>(bytes) / 2, 0);
    const int copied = (program.*copy)(text.data(), bytes);
    text.resize(static_cast<std::size_t>(copied) / 2);
    return text;
}

std::int64_t localSeconds(std::uint32_t unixSeconds) {
    return std::int64_t{unixSeconds} + epgset::clock().localOffset();
}

/// What 32 bits cannot count becomes the nearest that they can.
std::uint32_t unixSeconds(std::uint32_t localSeconds) {
    const std::int64_t seconds = std::int64_t{localSeconds} - epgset::clock().localOffset();
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(seconds, 0, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

CRemindInfo::~CRemindInfo() = default;

void CRemindInfo::SetTimerViewing(const TCProgram& program) {
    Set(program, CReminder::RESERVE_VIEW, 0);
}

void CRemindInfo::SetRecording(const TCProgram& program) {
    Set(program, CReminder::RESERVE_RECORD, 0);
}

void CRemindInfo::Set(const TCProgram& program, int reserveType, int /*reserved*/) {
    Initialise();
    m_reserveType = static_cast<CReminder::RESERVE_TYPE>(reserveType);
    m_eventId = program.EventId();
    SetStartTime(localSeconds(program.StartTime()));
    m_duration = program.EndTime() > program.StartTime() ? program.EndTime() - program.StartTime() : 0;
    m_title = textOf(program, &TCProgram::TitleLength, &TCProgram::GetTitle);
    m_synopsis = textOf(program, &TCProgram::ExtendedTextLength, &TCProgram::GetExtendedText);
    if constexpr (std::endian::native == std::endian::little) {
        std::ranges::transform(m_synopsis, m_synopsis.begin(), swapped);
    }
    if (const epgset::Channel* channel = program.SourceChannel()) {
        m_channelType = TCChannel::GetDigitalChType(channel->tvMode);
        m_major = channel->major;
        m_minor = channel->minor;
        m_ptc = channel->ptc;
        m_programNumber = channel->programNumber;
    }
}

void CRemindInfo::CopyDetailsInto(TCProgram& program) const {
    const auto details = std::make_shared<DetachedProgramme>();
    details->title = epgset::utf8FromUtf16(m_title, std::endian::big);
    details->synopsis = epgset::utf8FromUtf16(m_synopsis, std::endian::native);
    details->programme.start = unixSeconds(m_startTime);
    details->programme.stop = details->programme.start + m_duration;
    details->programme.eventId = static_cast<std::uint16_t>(m_eventId);
    details->programme.title = details->title;
    details->programme.synopsis = epgset::Synopsis(details->synopsis);
    program = TCProgram(std::shared_ptr<const epgset::Programme>(details, &details->programme));
}
