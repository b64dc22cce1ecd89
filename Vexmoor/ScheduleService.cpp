// The schedule service: reading and changing the set's reminders and recordings.
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextBuilder.h"
#include "Vexmoor/TextCompare.h"
#include "host/AppTV.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "host/ResponseDocument.h"

namespace {

constexpr const char* locationPath = "/ws/epg/schedules";  // without the "2" of the other paths, on purpose
constexpr int allEntries = 2;  // the kind of entries asked for, the middleware's number
constexpr int invalidTvMode = -1;

enum Force { KeepConflict = 0, ReplaceConflict = 1, CheckOverlap = 2 };

bool isSupported(const char* method, std::initializer_list<const char*> supported) {
    if (std::any_of(supported.begin(), supported.end(),
                    [method](const char* name) { return isText(method, name); }))
        return true;
    adapterLogger.warning("t_channels_id does not support %s method", method);  // shared by all handlers
    return false;
}

bool isWord(const char* text, const char* word) {
    return text != nullptr && strcasecmp(text, word) == 0;
}

/// The status that refuses a body, 0 for one that may be parsed.
int refuseBody(const char* body) {
    if (t_validateSchedData(body) != 0) return 400;
    if (t_validateSchedDataRecord(body) != 0) return 403;
    return 0;
}

void storeLocation(char** location, const char* id) {
    if (location == nullptr || id == nullptr) return;
    *location = TextBuilder(std::strlen(id) + 19).add(locationPath).add("/").add(id).release();
}

void replaceId(ws_epg_schedule& record, CRemindInfo& entry) {
    const HeapText previous(record.id);
    record.id = t_get_schedule_id(&entry);
}

/// Writes the entries that overlap `entry`.
int answerOverlaps(void* node, CReminder& store, const CRemindInfo& entry) {
    std::vector<CRemindInfo> overlapping;
    store.GetOverlappingRemindItems(entry, overlapping);
    adapterLogger.warning("getting overlapped %d", static_cast<int>(overlapping.size()));
    t_output_reminds(node, overlapping);
    return 200;
}

void deleteConflict(CReminder& store, const CRemindInfo& conflict) {
    store.DeleteRemindItemByUid(conflict.UID());
    adapterLogger.debug("=== Remind Duplicated. Previous is removed (%ld) ===", conflict.UID());
}

// A programme's schedule -----------------------------------------------------------------------------

int answerProgramSchedule(void* node, CReminder& store, TCProgram& program, TCChannel& channel,
                          CRemindInfo& entry) {
    if (store.FindRemindItemFromProgram(program, entry)) {
        const ScheduleRecord record(t_create_schedule(&entry, &channel));
        t_output_schedule(node, record.get());
    } else {
        TARNO_rdoc_add_UTF8(node, "type", "NONE");
        TARNO_rdoc_add_UTF8(node, "status", "NONE");
    }
    return 200;
}

int clearProgramSchedule(CReminder& store, TCProgram& program, CRemindInfo& entry) {
    if (store.FindRemindItemFromProgram(program, entry) && store.UserDeleteRemindItemByUid(entry.UID()) != 0)
        adapterLogger.debug("=== Remind Set 'NONE'. OK ===");
    else
        adapterLogger.debug("=== Remind Set 'NONE'. Ignored ===");
    return 200;
}

/// What the programme's times allow: 0 to book it, else the status that answers the request. A view of
/// what is on now changes the channel at once and stores nothing.
int checkProgramTimes(const TCProgram& program, const TCChannel& channel, const char* status) {
    const long long start = program.StartTime();
    const long long end = program.EndTime();
    const long long now = t_get_current_UNIX_time();
    if (end < start) {
        adapterLogger.warning("Invalid time. start time bigger than end time. (start:%lld > end:%lld)", start,
                              end);
        return 404;
    }
    if (start <= now && now <= end) {
        if (isWord(status, "RECORD")) {
            adapterLogger.warning(
                "Invalid time. recording time overlappted (start:%lld <= curr:%lld <= end:%lld)", start, now,
                end);
            return 404;
        }
        adapterLogger.debug(
            "View time is overlapped. Instant channel change (start:%lld <= curr:%lld <= end:%lld)", start,
            now, end);
        if (g_pAppWindow != nullptr) g_pAppWindow->ChangeChannel(channel.Major(), channel.Minor());
        return 200;
    }
    if (end < now) {
        adapterLogger.warning("Invalid time. already passed (end:%lld <= curr:%lld)", end, now);
        return 404;
    }
    return 0;
}

void prepareEntry(CRemindInfo& entry, const TCProgram& program, const ws_epg_schedule& record) {
    entry.Initialise();
    const bool isSeries = isWord(record.repeat, "SERIES");
    if (isWord(record.status, "VIEW")) {
        if (isSeries) adapterLogger.warning("Timer Viewing does not support series scheduling");
        entry.SetTimerViewing(program);
    } else if (isSeries) {
        entry.Set(program, CReminder::RESERVE_SERIES, 0);
    } else {
        entry.SetRecording(program);
    }
}

/// Books a programme as the record asks.
int bookProgram(void* node, CReminder& store, const TCProgram& program, ws_epg_schedule& record,
                CRemindInfo& entry, CRemindInfo& conflict, char** location) {
    prepareEntry(entry, program, record);
    if (record.force == CheckOverlap) return answerOverlaps(node, store, entry);
    if (store.ExistSameTimeRemindItem(entry, conflict)) {
        if (record.force == KeepConflict) {
            adapterLogger.error("=== Remind Duplicated. Confliction ===");
            return 409;
        }
        deleteConflict(store, conflict);
    }
    if (!store.AddRemindItem(entry, 0)) {
        adapterLogger.debug("=== Remind Set '%s'. FAIL!! (pid:%d sch_id:%ld) ===", record.status,
                            entry.EventId(), entry.UID());
        return 200;  // not an error status, on purpose
    }
    adapterLogger.debug("=== Remind Set '%s'. OK (pid:%d sch_id:%ld) ===", record.status, entry.EventId(),
                        entry.UID());
    replaceId(record, entry);
    storeLocation(location, record.id);
    return 201;
}

// A manual schedule ----------------------------------------------------------------------------------

/// What filling a manual entry came to.
enum class InputResult { Filled, ChannelChanged, Invalid };

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
InputResult checkManualTimes(const ws_epg_schedule& request, const TCChannel& channel, int major,
                             long long start, long long end) {
    const long long now = t_get_current_UNIX_time();
    if (end < start) {
        adapterLogger.error("Invalid time. start time bigger than end time. (start:%lld > end:%lld)", start,
                            end);
        return InputResult::Invalid;
    }
    if (start <= now && now <= end) {
        if (isWord(request.status, "RECORD")) {
            adapterLogger.error(
                "Invalid time. recording time overlappted (start:%lld <= curr:%lld <= end:%lld)", start, now,
                end);
            return InputResult::Invalid;
        }
        adapterLogger.error(
            "View time is overlapped. Instant channel change (start:%lld <= curr:%lld <= end:%lld)", start,
            now, end);
        if (g_pAppWindow != nullptr) g_pAppWindow->ChangeChannel(major, channel.Minor());
        return InputResult::ChannelChanged;
    }
    if (now >= end) {
        adapterLogger.error("Invalid time. already passed (end:%lld <= curr:%lld)", end, now);
        return InputResult::Invalid;
    }
    return InputResult::Filled;
}

InputResult fillManualEntry(ws_epg_schedule& request, CRemindInfo& entry) {
    if (!hasRequiredFields(request)) return InputResult::Invalid;
    if (!isWord(request.status, "RECORD") && !isWord(request.status, "VIEW")) {
        adapterLogger.error("Invalid status:%s", request.status);
        return InputResult::Invalid;
    }
    const ChannelNumber number = takeChannelNumber(request.channel_num);
    int channelType = -1;
    const std::unique_ptr<TCChannel> channel = requestedChannel(request, number, channelType);
    if (!channel) return InputResult::Invalid;
    long long start = 0;
    long long end = 0;
    if (!readLocalTime(request.start, "Invalid start time : %s", start) ||
        !readLocalTime(request.end, "Invalid end time : %s", end))
        return InputResult::Invalid;
    const InputResult times = checkManualTimes(request, *channel, number.major, start, end);
    if (times != InputResult::Filled) return times;
    int days = 0;
    const int repeat = t_get_repeat_type(request.repeat, &days);
    if (repeat == CReminder::REPEAT_INVALID) {
        adapterLogger.error("Invalid repeat : %s", request.repeat);
        return InputResult::Invalid;
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
    return InputResult::Filled;
}

enum ManualResult { Done = 0, Conflict = 1, InputError = -1 };

ManualResult addManualEntry(CReminder& store, ws_epg_schedule& request, CRemindInfo& entry) {
    CRemindInfo conflict;
    if (store.ExistSameTimeRemindItem(entry, conflict)) {
        if (request.force == KeepConflict) {
            adapterLogger.error("=== Remind Duplicated. Confliction ===");
            return Conflict;
        }
        deleteConflict(store, conflict);
    }
    if (store.AddRemindItem(entry, 0)) {
        adapterLogger.debug("=== Add Remind '%s'. OK (sch_id:%ld) ===", request.status, entry.UID());
        replaceId(request, entry);
    } else {
        adapterLogger.error("AddRemindItem Fail!");
    }
    return Done;
}

}  // namespace

int t_programs_id_schedule(void* node, const char* method, const char* program_id, char* body, int body_len,
                           char** location) {
    adapterLogger.trace("t_programs_id_schedule");
    CRemindInfo entry;
    CRemindInfo conflict;
    CReminder* store = CReminder::GetInstance();
    if (store == nullptr) return 404;
    if (!isSupported(method, {"GET", "PUT", "POST", "DELETE"})) return 404;
    TCChannel* foundChannel = nullptr;
    const std::unique_ptr<TCProgram> program(t_get_cached_program_by_id(program_id, &foundChannel));
    const std::unique_ptr<TCChannel> channel(foundChannel);
    if (!program || !channel) {
        adapterLogger.warning("t_programs_id found no %s", program_id);
        return 404;
    }
    if (isText(method, "GET")) return answerProgramSchedule(node, *store, *program, *channel, entry);

    if (t_is_user_scheduling_allowed() == 0) return 403;
    const bool isDelete = isText(method, "DELETE");
    if (!isDelete)
        if (const int refused = refuseBody(body)) return refused;
    const ScheduleRecord record(t_prase_schedule_data(body, body_len));
    if (!isDelete) {
        if (!record || record->status == nullptr) {
            adapterLogger.error("=== No 'status(type)' parmeter ===");
            return 404;
        }
        if (!isWord(record->status, "NONE") && !isWord(record->status, "RECORD") &&
            !isWord(record->status, "VIEW")) {
            adapterLogger.error("=== 'status(type)' must be 'NONE' or 'RECORD' or 'VIEW'. Input was '%s' ===",
                                record->status);
            return 404;
        }
    }
    if (isDelete || isWord(record->status, "NONE")) return clearProgramSchedule(*store, *program, entry);
    if (const int answered = checkProgramTimes(*program, *channel, record->status)) return answered;
    return bookProgram(node, *store, *program, *record, entry, conflict, location);
}

int t_schedules(void* node, const char* method, TARNO_rstr_uri_query_st* /*query*/, char* body, int body_len,
                char** location) {
    adapterLogger.trace("t_schedules");
    CReminder* store = CReminder::GetInstance();
    if (store == nullptr) return 204;  // this handler's failures are no error statuses, on purpose
    if (!isSupported(method, {"GET", "POST"})) return 204;
    if (isText(method, "GET")) {
        adapterLogger.warning("GET all schedules");
        int count = 0;
        std::vector<CRemindInfo> entries;
        const bool got = store->GetRemindItemByType(count, entries, allEntries);
        if (!got || static_cast<int>(entries.size()) != count) {
            adapterLogger.error("GetRemindItemByType fail (%d,%d)", count, static_cast<int>(entries.size()));
            return 204;
        }
        t_output_reminds(node, entries);
        return 200;
    }

    if (t_is_user_scheduling_allowed() == 0) return 403;
    if (const int refused = refuseBody(body)) return refused;
    const ScheduleRecord record(t_prase_schedule_data(body, body_len));
    if (!record) {
        adapterLogger.warning("schedule data parsing failed");
        return 204;
    }
    if (record->force == CheckOverlap) {
        CRemindInfo entry;
        switch (fillManualEntry(*record, entry)) {
            case InputResult::Filled:
                return answerOverlaps(node, *store, entry);
            case InputResult::ChannelChanged: {  // nothing was filled: nothing overlaps it
                std::vector<CRemindInfo> none;
                t_output_reminds(node, none);
                return 200;
            }
            case InputResult::Invalid:
                adapterLogger.warning("overlapped queried but data setting failed");
                return 204;
        }
    }
    switch (t_set_manual_schedule(record.get(), 0, 0)) {
        case Done:
            storeLocation(location, record->id);
            return 201;
        case Conflict:
            adapterLogger.error("EPG schedule conflict");
            return 409;
        default:
            adapterLogger.error("Manual Remind Set Failed");
            return 204;
    }
}

int t_schedules_id(void* node, const char* method, const char* schedule_id, char* body, int body_len) {
    adapterLogger.trace("t_schedules_id");
    if (!isSupported(method, {"GET", "PUT", "DELETE"})) return 404;
    TCChannel* foundChannel = nullptr;
    const std::unique_ptr<CRemindInfo> entry(t_get_cached_schedule_by_id(schedule_id, &foundChannel));
    const std::unique_ptr<TCChannel> channel(foundChannel);
    if (!entry) {
        adapterLogger.warning("t_schedules_id found no %s", schedule_id);
        return 404;
    }
    if (isText(method, "GET")) {
        const ScheduleRecord record(t_create_schedule(entry.get(), channel.get()));
        return t_output_schedule(node, record.get()) == 0 ? 200 : 404;
    }

    if (t_is_user_scheduling_allowed() == 0) return 403;
    const unsigned long uid = entry->UID();
    if (isText(method, "DELETE")) {
        CReminder* store = CReminder::GetInstance();
        if (store != nullptr && store->DeleteRemindItemByUid(uid) == 1) return 200;
        adapterLogger.error("DeleteRemindItemByUid failed (uid:%d)", static_cast<int>(uid));
        return 404;
    }
    if (const int refused = refuseBody(body)) return refused;
    const ScheduleRecord record(t_prase_schedule_data(body, body_len));
    if (!record) return 404;
    if (t_set_manual_schedule(record.get(), 1, uid) == Done) return 200;
    adapterLogger.error("Manual Remind Set Failed");
    return 404;
}

int t_set_manual_schedule_input(ws_epg_schedule* request, CRemindInfo* info) {
    if (request == nullptr || info == nullptr) return -1;
    return fillManualEntry(*request, *info) == InputResult::Invalid ? -1 : 0;
}

int t_set_manual_schedule(ws_epg_schedule* request, int update, unsigned long uid) {
    CReminder* store = CReminder::GetInstance();
    if (request == nullptr || store == nullptr) return InputError;
    CRemindInfo entry;
    switch (fillManualEntry(*request, entry)) {
        case InputResult::Invalid:
            return InputError;
        case InputResult::ChannelChanged:
            return Done;  // the view is on: there is nothing to store
        case InputResult::Filled:
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

void t_output_reminds(void* node, std::vector<CRemindInfo>& list) {
    void* items = TARNO_rdoc_create_object(node);
    if (items == nullptr) return;
    TARNO_rdoc_add_object(node, "items", items);
    for (CRemindInfo& entry : list) {
        const int tvmode = TCChannel::GetTVMode(entry.ChannelType());
        const std::unique_ptr<TCChannel> channel(
            t_get_cached_channel_by_num(tvmode, entry.Major(), entry.Minor()));
        if (!channel) {
            adapterLogger.warning("No channel exists %d %d %d", entry.ChannelType(), entry.Major(),
                                  entry.Minor());
            continue;
        }
        const ScheduleRecord record(t_create_schedule(&entry, channel.get()));
        if (!record) return;
        void* row = TARNO_rdoc_create_object(node);
        if (row == nullptr) return;
        TARNO_rdoc_add_object(items, nullptr, row);
        t_output_schedule(row, record.get());
    }
}
