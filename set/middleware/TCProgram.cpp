#include "host/TCProgram.h"

#include <bit>
#include <span>
#include <string_view>
#include <utility>

#include "set/guide/Guide.h"
#include "set/text/Utf16.h"

namespace {

int lengthInBytes(std::string_view text) {
    return static_cast<int>(2 * epgset::utf16Length(text));
}

int copyText(std::string_view text, void* buffer, int bytes) {
    if (!buffer || bytes <= 0) return 0;
    const std::span room(static_cast<unsigned char*>(buffer), static_cast<std::size_t>(bytes));
    return static_cast<int>(epgset::utf16FromUtf8(text, std::endian::big, room));
}

}  // namespace

TCProgram::TCProgram(std::shared_ptr<const epgset::Programme> programme, const epgset::Channel* channel)
    : m_programme(std::move(programme)), m_channel(channel) {}

TCProgram::~TCProgram() = default;

std::uint32_t TCProgram::StartTime() const {
    return m_programme ? m_programme->start : 0;
}

std::uint32_t TCProgram::EndTime() const {
    return m_programme ? m_programme->stop : 0;
}

int TCProgram::EventId() const {
    return m_programme ? m_programme->eventId : 0;
}

int TCProgram::FreeCAMode() const {
    return m_programme && m_programme->scrambled ? 1 : 0;
}

int TCProgram::TitleLength() const {
    return m_programme ? lengthInBytes(m_programme->title) : 0;
}

int TCProgram::GetTitle(void* buffer, int bytes) const {
    return m_programme ? copyText(m_programme->title, buffer, bytes) : 0;
}

int TCProgram::ExtendedTextLength() const {
    return m_programme ? lengthInBytes(m_programme->synopsis.text()) : 0;
}

int TCProgram::GetExtendedText(void* buffer, int bytes) const {
    return m_programme ? copyText(m_programme->synopsis.text(), buffer, bytes) : 0;
}

int TCProgram::GetSeriesInfo(TTSeriesItem& item, int /*reserved*/) const {
    item.title.clear();
    if (!m_programme || m_programme->series.empty()) return 0;
    item.title.resize(2 * epgset::utf16Length(m_programme->series));
    epgset::utf16FromUtf8(m_programme->series, std::endian::big, item.title);
    return 1;
}

void TCProgram::GetCRIDs(std::vector<std::string>& list, int /*type*/) const {
    list.clear();
}
