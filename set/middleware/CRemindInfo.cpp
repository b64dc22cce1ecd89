#include "host/CRemindInfo.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "host/TCChannel.h"
#include "host/TCProgram.h"
#include "set/guide/Guide.h"
#include "set/middleware/Clock.h"
#include "set/text/Utf16.h"

/// A text in both of its forms, so that a request that looks at each entry converts none.
struct epgset::ReminderText {
    ReminderText(CRemindInfo::Text text, std::endian order)
        : units(std::move(text)), utf8(utf8FromUtf16(units, order)) {}

    CRemindInfo::Text units;
    std::string utf8;
};

namespace {

using SharedText = std::shared_ptr<const epgset::ReminderText>;

/// A programme that owns its texts.
struct DetachedProgramme {
    SharedText title;
    SharedText synopsis;
    epgset::Programme programme;
};

SharedText shared(CRemindInfo::Text text, std::endian order) {
    return text.empty() ? nullptr : std::make_shared<const epgset::ReminderText>(std::move(text), order);
}

const unsigned short* unitsOf(const SharedText& text) {
    static constexpr unsigned short none = 0;
    return text ? text->units.c_str() : &none;
}

std::string_view utf8Of(const SharedText& text) {
    return text ? std::string_view(text->utf8) : std::string_view();
}

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

const unsigned short* CRemindInfo::GetTitle() const {
    return unitsOf(m_title);
}

const unsigned short* CRemindInfo::Synopsis() const {
    return unitsOf(m_synopsis);
}

void CRemindInfo::SetTitle(Text bigEndianUnits) {
    m_title = shared(std::move(bigEndianUnits), std::endian::big);
}

void CRemindInfo::SetSynopsis(Text hostUnits) {
    m_synopsis = shared(std::move(hostUnits), std::endian::native);
}

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
    SetTitle(textOf(program, &TCProgram::TitleLength, &TCProgram::GetTitle));
    Text synopsis = textOf(program, &TCProgram::ExtendedTextLength, &TCProgram::GetExtendedText);
    if constexpr (std::endian::native == std::endian::little) {
        std::ranges::transform(synopsis, synopsis.begin(), swapped);
    }
    SetSynopsis(std::move(synopsis));
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
    details->title = m_title;
    details->synopsis = m_synopsis;
    details->programme.start = unixSeconds(m_startTime);
    details->programme.stop = details->programme.start + m_duration;
    details->programme.eventId = static_cast<std::uint16_t>(m_eventId);
    details->programme.title = utf8Of(m_title);
    details->programme.synopsis = epgset::Synopsis(utf8Of(m_synopsis));
    program = TCProgram(std::shared_ptr<const epgset::Programme>(details, &details->programme));
}
