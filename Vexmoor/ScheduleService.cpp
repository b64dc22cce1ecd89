// The schedule service: reading and changing the set's reminders and recordings.
#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/ManualSchedule.h"
#include "Vexmoor/ReminderBooking.h"
#include "Vexmoor/TextBuilder.h"
#include "Vexmoor/TextCompare.h"
#include "host/AppTV.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "host/ResponseDocument.h"

namespace {

constexpr const char* locationPath = "/ws/epg/schedules";  // without the "2" of the other paths, on purpose
constexpr int allEntries = 2;  // the kind of entries asked for, the middleware's number

bool isSupported(const char* method, std::initializer_list<const char*> supported) {
    if (std::any_of(supported.begin(), supported.end(),
                    [method](const char* name) { return isText(method, name); }))
        return true;
    adapterLogger.warning("t_channels_id does not support %s method", method);  // shared by all handlers
    return false;
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

/// Writes the entries that overlap `entry`.
int answerOverlaps(void* node, CReminder& store, const CRemindInfo& entry) {
    std::vector<CRemindInfo> overlapping;
    store.GetOverlappingRemindItems(entry, overlapping);
    adapterLogger.warning("getting overlapped %d", static_cast<int>(overlapping.size()));
    t_output_reminds(node, overlapping);
    return 200;
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
    if (!makeRoom(store, entry, record.force, conflict)) return 409;
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
            case ManualInput::Filled:
            case ManualInput::ChannelChanged:  // the entry is unfilled then, and is asked for all the same
                return answerOverlaps(node, *store, entry);
            case ManualInput::Invalid:
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
