// One entry of the middleware's reminder store.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "host/CReminder.h"
#include "host/Export.h"

namespace epgset {
struct ReminderText;
}

/// Bases of the middleware's data classes.
class IData {
public:
    IData() = default;
    IData(const IData&) = default;
    IData& operator=(const IData&) = default;
    virtual ~IData() = default;
};

class CData : public IData {};

/// One reminder or recording, a value that is copied freely: copies share the texts. Times are the
/// middleware's local seconds.
class HOST_API CRemindInfo : public CData {
public:
    /// UTF-16 code units.
    using Text = std::basic_string<unsigned short>;

    CRemindInfo() = default;
    CRemindInfo(const CRemindInfo&) = default;
    CRemindInfo& operator=(const CRemindInfo&) = default;
    ~CRemindInfo() override;

    /// Makes the entry empty.
    void Initialise() { *this = CRemindInfo(); }

    unsigned long UID() const { return m_uid; }
    int ChannelType() const { return m_channelType; }
    short Major() const { return m_major; }
    short Minor() const { return m_minor; }
    std::uint16_t PTC() const { return m_ptc; }
    std::uint16_t ProgramNumber() const { return m_programNumber; }
    int EventId() const { return m_eventId; }
    CReminder::RESERVE_TYPE ReserveType() const { return m_reserveType; }
    CReminder::REMINDER_REPEAT_TYPE RepeatType() const { return m_repeatType; }
    int ManualRepeat() const { return m_manualRepeat; }  ///< day bits: SUN 1, MON 2, to SAT 64
    CReminder::CREATION_TYPE CreationMethod() const { return m_creationMethod; }
    std::uint32_t StartTime() const { return m_startTime; }
    std::uint32_t Duration() const { return m_duration; }

    /// The title, NUL-terminated, its units in big-endian byte order; empty for an entry that was not
    /// made from a programme. Owned by the entry.
    const unsigned short* GetTitle() const;

    /// The synopsis, NUL-terminated, its units in host byte order. Owned by the entry.
    const unsigned short* Synopsis() const;

    /// Makes this an entry for a programme, with a copy of its title, synopsis, event id, times and
    /// channel: to view it, to record it, or of another type (`reserved` is 0).
    void SetTimerViewing(const TCProgram& program);
    void SetRecording(const TCProgram& program);
    void Set(const TCProgram& program, int reserveType, int reserved);

    /// Fills `program` with the entry's event id, times and texts.
    void CopyDetailsInto(TCProgram& program) const;

    void SetUid(unsigned long uid) { m_uid = uid; }
    void SetEventId(int eventId) { m_eventId = eventId; }
    void SetReserveType(CReminder::RESERVE_TYPE type) { m_reserveType = type; }
    void SetRepeat(CReminder::REMINDER_REPEAT_TYPE type, int days) {
        m_repeatType = type;
        m_manualRepeat = days;
    }
    void SetCreationMethod(CReminder::CREATION_TYPE method) { m_creationMethod = method; }

    /// What the middleware's 32 bits cannot count becomes the nearest that they can, so that a store meets
    /// a time that it refuses and not one that has wrapped.
    void SetStartTime(long long localSeconds) { m_startTime = count(localSeconds); }
    void SetDuration(long long seconds) { m_duration = count(seconds); }
    void Set(short major, short minor, std::uint16_t ptc, int channelType, std::uint16_t programNumber) {
        m_major = major;
        m_minor = minor;
        m_ptc = ptc;
        m_channelType = channelType;
        m_programNumber = programNumber;
    }
    void SetTitle(Text bigEndianUnits);
    void SetSynopsis(Text hostUnits);

private:
    static std::uint32_t count(long long seconds) {
        return static_cast<std::uint32_t>(
            std::clamp<long long>(seconds, 0, std::numeric_limits<std::uint32_t>::max()));
    }

    unsigned long m_uid = 0;
    int m_channelType = -1;
    short m_major = 0;
    short m_minor = 0;
    std::uint16_t m_ptc = 0;
    std::uint16_t m_programNumber = 0;
    int m_eventId = 0;
    CReminder::RESERVE_TYPE m_reserveType = CReminder::RESERVE_VIEW;
    CReminder::REMINDER_REPEAT_TYPE m_repeatType = CReminder::REPEAT_ONCE;
    int m_manualRepeat = 0;
    CReminder::CREATION_TYPE m_creationMethod = CReminder::CREATED_FROM_EPG;
    std::uint32_t m_startTime = 0;
    std::uint32_t m_duration = 0;
    std::shared_ptr<const epgset::ReminderText> m_title;  ///< null when empty, as the synopsis is
    std::shared_ptr<const epgset::ReminderText> m_synopsis;
};
