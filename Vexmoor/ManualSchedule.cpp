// Manual bookings: a request for a channel and a span of time turned into an entry of the reminder store.
#include "Vexmoor/ManualSchedule.h"

#include <cstring>
#include <memory>

#include "Vexmoor/ReminderBooking.h"
#include "Vexmoor/TextCompare.h"
#include "host/AppTV.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"

namespace {

constexpr int invalidTvMode = -1;

bool hasRequiredFields(const ws_epg_schedule& request) {
    struct Required {
        const char* text;
        const char* message;
    };
    const Required fields[] = {
        {request.status, "status is required"},   {request.channel_num, "channel_num is required"},
        {request.antenna, "antenna is required"}, {request.start, "start is required"},
        {request.end, "end is required"},         {request.repeat, "repeat is required"},
    };
    for (const Required& field : fields) {
        if (field.text != nullptr && field.text[0] != '\0') continue;
        adapterLogger.error(field.message);
        return false;
    }
    return true;
}

/// The number of a channel_num text, which is cut at its first '-'.
struct ChannelNumber {
    int major = 0;
    int minor = 0;
};

ChannelNumber takeChannelNumber(char* text) {
    ChannelNumber number;
    if (char* const hyphen = std::strchr(text, '-')) {
        *hyphen = '\0';
        number.minor = t_read_int(hyphen + 1);
    }
    number.major = t_read_int(text);
    return number;
}

/// The channel that a request names, and its digital channel type; null, logged, for none.
std::unique_ptr<TCChannel> requestedChannel(const ws_epg_schedule& request, const ChannelNumber& number,
                                            int& channelType) {
    const int tvmode = t_get_tvmode_from_name(request.antenna);
    if (tvmode == invalidTvMode) {
        adapterLogger.error("Invalid antenna:%s", request.antenna);
        return nullptr;
    }
    channelType = TCChannel::GetDigitalChType(tvmode);
    if (channelType == -1) {
        adapterLogger.error("Unconvertable TV mode :%s,%d", request.antenna, tvmode);
        return nullptr;
    }
    std::unique_ptr<TCChannel> channel(t_get_cached_channel_by_num(tvmode, number.major, number.minor));
    if (!channel)
        adapterLogger.error("No channel mode:%d major:%d minor:%d", tvmode, number.major, number.minor);
    return channel;
}

/// Middleware time of a request's time text. Invalid is what sums up to -1, on purpose: an unreadable text
/// is caught only while the offset is 0.
bool readLocalTime(const char* text, const char* message, long long& time) {
    time = t_get_UNIX_from_ISO8601(text) + t_get_time_offset();
    if (time != -1) return true;
    adapterLogger.error(message, text);
    return false;
}

/// Compares a manual schedule's local times with UNIX now, on purpose.
ManualInput checkManualTimes(const ws_epg_schedule& request, const TCChannel& channel, int major,
                             long long start, long long end) {
    const long long now = t_get_current_UNIX_time();
    if (end < start) {
        adapterLogger.error("Invalid time. start time bigger than end time. (start:%lld > end:%lld)", start,
                            end);
        return ManualInput::Invalid;
    }
    if (start <= now && now <= end) {
        if (isWord(request.status, "RECORD")) {
            adapterLogger.error(
                "Invalid time. recording time overlappted (start:%lld <= curr:%lld <= end:%lld)", start, now,
                end);
            return ManualInput::Invalid;
        }
        adapterLogger.error(
            "View time is overlapped. Instant channel change (start:%lld <= curr:%lld <= end:%lld)", start,
            now, end);
        if (g_pAppWindow != nullptr) g_pAppWindow->ChangeChannel(major, channel.Minor());
        return ManualInput::ChannelChanged;
    }
    if (now >= end) {
        adapterLogger.error("Invalid time. already passed (end:%lld <= curr:%lld)", end, now);
        return ManualInput::Invalid;
    }
    return ManualInput::Filled;
}

ManualResult addManualEntry(CReminder& store, ws_epg_schedule& request, CRemindInfo& entry) {
    CRemindInfo conflict;
    if (!makeRoom(store, entry, request.force, conflict)) return Conflict;
    if (store.AddRemindItem(entry, 0)) {
        adapterLogger.debug("=== Add Remind '%s'. OK (sch_id:%ld) ===", request.status, entry.UID());
        replaceId(request, entry);
    } else {
        adapterLogger.error("AddRemindItem Fail!");
    }
    return Done;
}

}  // namespace

ManualInput fillManualEntry(ws_epg_schedule& request, CRemindInfo& entry) {
    if (!hasRequiredFields(request)) return ManualInput::Invalid;
    if (!isWord(request.status, "RECORD") && !isWord(request.status, "VIEW")) {
        adapterLogger.error("Invalid status:%s", request.status);
        return ManualInput::Invalid;
    }
    const ChannelNumber number = takeChannelNumber(request.channel_num);
    int channelType = -1;
    const std::unique_ptr<TCChannel> channel = requestedChannel(request, number, channelType);
    if (!channel) return ManualInput::Invalid;
    long long start = 0;
    long long end = 0;
    if (!readLocalTime(request.start, "Invalid start time : %s", start) ||
        !readLocalTime(request.end, "Invalid end time : %s", end))
        return ManualInput::Invalid;
    const ManualInput times = checkManualTimes(request, *channel, number.major, start, end);
    if (times != ManualInput::Filled) return times;
    int days = 0;
    const int repeat = t_get_repeat_type(request.repeat, &days);
    if (repeat == CReminder::REPEAT_INVALID) {
        adapterLogger.error("Invalid repeat : %s", request.repeat);
        return ManualInput::Invalid;
    }
    entry.Initialise();
    entry.SetCreationMethod(CReminder::CREATED_MANUALLY);
    entry.SetReserveType(isWord(request.status, "RECORD") ? CReminder::RESERVE_RECORD
                                                          : CReminder::RESERVE_VIEW);
    entry.Set(static_cast<short>(number.major), channel->Minor(), channel->PTC(), channelType,
              channel->ProgramNumber());
    entry.SetStartTime(start);
    entry.SetDuration(end - start);
    entry.SetRepeat(static_cast<CReminder::REMINDER_REPEAT_TYPE>(repeat), days);
    return ManualInput::Filled;
}

int t_set_manual_schedule_input(ws_epg_schedule* request, CRemindInfo* info) {
    if (request == nullptr || info == nullptr) return -1;
    return fillManualEntry(*request, *info) == ManualInput::Invalid ? -1 : 0;
}

int t_set_manual_schedule(ws_epg_schedule* request, int update, unsigned long uid) {
    CReminder* store = CReminder::GetInstance();
    if (request == nullptr || store == nullptr) return InputError;
    CRemindInfo entry;
    switch (fillManualEntry(*request, entry)) {
        case ManualInput::Invalid:
            return InputError;
        case ManualInput::ChannelChanged:
            return Done;  // the view is on: there is nothing to store
        case ManualInput::Filled:
            break;
    }
    adapterLogger.trace("Scheduling parameter condition PASSED!!!!");
    if (update == 0) return addManualEntry(*store, *request, entry);
    if (store->UpdateRemindItemByUid(uid, entry, 0, 1))
        adapterLogger.debug("=== Update Remind '%s'. OK (sch_id:%ld) ===", request->status, uid);
    else
        adapterLogger.error("UpdateRemindItemByUid Fail!");
    return Done;  // also when the store refused: the log alone tells
}
