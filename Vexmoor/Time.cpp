// Times: UNIX seconds, the middleware's local seconds, ISO 8601 texts.
#include <chrono>
#include <cstdlib>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextBuilder.h"
#include "host/AppTV.h"
#include "host/CTimerUtil.h"

namespace {

constexpr std::size_t iso8601Bytes = 26;
constexpr int secondsOfDaylightSaving = 3600;

/// Zone offset in seconds, daylight saving left aside.
int zoneOffset() {
    int unused = 0;
    int minutes = 0;
    g_pAppTV->GetTimeZone(&unused, &minutes);
    return minutes * 60;
}

int daylightSavingOffset() {
    return CTimerUtil::FlagDST() != 0 ? secondsOfDaylightSaving : 0;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Walks a text that ends at a NUL, which is never passed.
class TextCursor {
public:
    explicit TextCursor(const char* text) : m_text(text) {}

    char current() const { return *m_text; }

    void skip() {
        if (*m_text != '\0') ++m_text;
    }

    /// Reads exactly `count` digits.
    bool readDigits(int count, int& value) {
        value = 0;
        for (int i = 0; i < count; ++i, ++m_text) {
            if (!isDigit(*m_text)) return false;
            value = value * 10 + (*m_text - '0');
        }
        return true;
    }

    /// Reads up to two digits; 0 without any.
    int readUpToTwoDigits() {
        int value = 0;
        for (int i = 0; i < 2 && isDigit(*m_text); ++i, ++m_text)
            value = value * 10 + (*m_text - '0');
        return value;
    }

private:
    const char* m_text;
};

/// Reads the zone designator, which is mandatory: seconds east of UTC.
bool readZone(TextCursor& cursor, long long& offset) {
    const char designator = cursor.current();
    offset = 0;
    if (designator == 'Z' || designator == 'z') return true;
    // A blank is what "+" becomes in a decoded query.
    if (designator != '+' && designator != ' ' && designator != '-') return false;
    cursor.skip();
    const int hours = cursor.readUpToTwoDigits();
    if (cursor.current() == ':') cursor.skip();
    const int minutes = cursor.readUpToTwoDigits();
    offset = 3600LL * hours + 60LL * minutes;
    if (designator == '-') offset = -offset;
    return true;
}

/// Days since 1970-01-01 by the four-year rule alone, on purpose: right from 1901 to 2099. `month` is 1
/// to 12.
long long daysSinceEpoch(int year, int month, int day) {
    static constexpr int daysBefore[12] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    long long days = 365LL * year - 719050 + daysBefore[month - 1] + day - 1;
    days += (year + 3) / 4 - 493;  // (year - 1969) / 4, rounded down
    if (year % 4 == 0 && month >= 3) ++days;
    return days;
}

struct CalendarTime {
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

/// Breaks seconds since 1970 down by the rules of UTC. gmtime_r would end in 2038 where the C library's times
/// have 32 bits.
CalendarTime calendarTime(long long seconds) {
    // The calendar repeats every 400 years; that of the standard library ends with the year 32767.
    constexpr long long cycle = 146097LL * 86400;
    const std::chrono::sys_seconds time{std::chrono::seconds{seconds % cycle}};
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date{midnight};
    const int second = static_cast<int>((time - midnight).count());
    return {.year = static_cast<int>(static_cast<int>(date.year()) + 400 * (seconds / cycle)),
            .month = static_cast<int>(static_cast<unsigned>(date.month())),
            .day = static_cast<int>(static_cast<unsigned>(date.day())),
            .hour = second / 3600,
            .minute = second / 60 % 60,
            .second = second % 60};
}

}  // namespace

char* t_get_ISO8601_from_UNIX(long long unixTime) {
    const int zone = zoneOffset();
    // The clock's digits hold the daylight-saving hour, the printed offset does not, on purpose.
    const CalendarTime local = calendarTime(unixTime + zone + daylightSavingOffset());
    const int absolute = std::abs(zone);
    TextBuilder text(iso8601Bytes);
    text.add(local.year, 4).add("-").add(local.month, 2).add("-").add(local.day, 2);
    text.add("T").add(local.hour, 2).add(":").add(local.minute, 2).add(":").add(local.second, 2);
    text.add(zone < 0 ? "-" : "+").add(absolute / 3600, 2).add(":").add(absolute % 3600 / 60, 2);
    return text.release();
}

long long t_get_UNIX_from_ISO8601(const char* text) {
    if (text == nullptr) return -1;
    TextCursor cursor(text);
    static constexpr int widths[6] = {4, 2, 2, 2, 2, 2};
    int fields[6] = {};
    for (int i = 0; i < 6; ++i) {
        if (i > 0) cursor.skip();  // a separator, whatever it is
        if (!cursor.readDigits(widths[i], fields[i])) return -1;
    }
    const auto [year, month, day, hour, minute, second] = fields;
    long long offset = 0;
    if (!readZone(cursor, offset)) return -1;  // a fraction of a second is refused here
    if (month < 1 || month > 12) return -1;
    return daysSinceEpoch(year, month, day) * 86400 + 3600LL * hour + 60LL * minute + second - offset;
}

long long t_get_time_offset() {
    return static_cast<long long>(zoneOffset()) + daylightSavingOffset();
}

long long t_get_current_UNIX_time() {
    const long long first = static_cast<long long>(CTimerUtil::GetCurrentEpochTime()) - t_get_time_offset();
    const HeapText text(t_get_ISO8601_from_UNIX(first));
    adapterLogger.error("Current Time (U) : %s", text.get());
    return static_cast<long long>(CTimerUtil::GetCurrentEpochTime()) - t_get_time_offset();
}

int t_is_user_scheduling_allowed() {
    return 1;
}
