// The adapter: free functions between the television middleware and the service.
//
// Texts that a function hands out are NUL-terminated heap texts, which the receiver releases with free
// (HeapText holds them); null means "no value". Objects that a lookup hands out are new and owned by
// the caller; null when none matches. Nothing here keeps state, and nothing throws but std::bad_alloc.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "host/CCSortedList.h"
#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "host/Logger.h"
#include "host/TCChannel.h"
#include "host/TCObjectSortedList.h"
#include "host/TCProgram.h"
#include "host/Uri.h"

/// The adapter's one logger, "Vexmoor/EpgSQLPluginVexmoorUtil".
extern const Container::Logger adapterLogger;

// Text ------------------------------------------------------------------------------------------------

/// A copy of `text`; null for null.
char* t_alloc_copy(const char* text);

/// The decimal number that `text` begins with, 0 without one, cut to an int.
int t_read_int(const char* text);

/// Converts up to `src_units` UTF-16 units in host order (negative: up to the NUL) into `dst`, which is
/// always terminated and never holds part of a character. Answers the bytes written, the terminator
/// not counted; -1 for a null buffer or `dst_bytes` below 1.
int t_conv_UTF16_to_UTF8(const unsigned short* src, int src_units, char* dst, int dst_bytes);

/// The reverse, with lengths in bytes of `src` and units of `dst`. Bytes that make no character are
/// skipped or end the text.
int t_conv_UTF8_to_UTF16(const char* src, int src_bytes, unsigned short* dst, int dst_units);

/// The first line of a middleware text (big-endian UTF-16) as UTF-8; null for none. The handle is left
/// in host order, and freed when `free_handle` is non-zero and there was a text to convert.
char* t_change_ZorviStr_to_UTF8(void* handle, int length_in_bytes, int free_handle);

/// A middleware text of at most 511 units, zero-terminated in a block of 1024 bytes; null for null.
char* t_change_UTF8_to_ZorviStr(const char* text);

// Time ------------------------------------------------------------------------------------------------

/// "%04d-%02d-%02dT%02d:%02d:%02d%c%02d:%02d" of UNIX seconds in the set's zone. The digits hold the
/// daylight-saving hour, the printed offset does not.
char* t_get_ISO8601_from_UNIX(long long unixTime);

/// UNIX seconds of an ISO 8601 text; -1 for one that cannot be read.
long long t_get_UNIX_from_ISO8601(const char* text);

/// Middleware time less UNIX time, in seconds: zone and daylight saving.
long long t_get_time_offset();

/// Current UNIX time.
long long t_get_current_UNIX_time();

/// Whether the user may schedule: always 1.
int t_is_user_scheduling_allowed();

// Mapping ---------------------------------------------------------------------------------------------

/// One reception mode: the middleware's number, its source type, and the service's word for it.
struct AntennaRow {
    int tvmode;
    int sourceType;
    const char* name;
};

constexpr int antennaRowCount = 18;

/// The reception modes, in the order in which the service walks them.
extern const AntennaRow antennaTable[antennaRowCount];

/// One programme as the import consumes it. Texts are owned by the record and may be null.
struct ws_epg_program {
    char* program_id;
    char* name;
    char* source_path;
    char* channel_name;
    char* channel_num;
    char* antenna;
    char* start;           ///< ISO 8601
    char* end;             ///< ISO 8601
    char* scrambled;       ///< "true" or "false"
    char* category;        ///< always null
    char* attributes;      ///< always null
    char** series;         ///< one text, or null
    long long start_time;  ///< UNIX seconds
    int sort_key;          ///< 1000 * major + |minor|
};

/// One reminder or recording. Texts are owned by the record and may be null.
struct ws_epg_schedule {
    char* id;
    char* name;
    char* status;
    char* channel_num;
    char* channel_name;
    char* antenna;
    char* synopsis;
    char* start;  ///< ISO 8601
    char* end;    ///< ISO 8601
    char* repeat;
    char* source_path;
    char* storage_path;
    char* recent_record_path;
    char* method;
    char* program_id;
    int force;  ///< 0 to 2; set by the request parser alone
};

char* t_get_name_from_tvmode(int tvmode);
int t_get_srctype_from_tvmode(int tvmode);     ///< -1 for an unknown mode
int t_get_tvmode_from_name(const char* name);  ///< ignoring case; -1 for null or an unknown name
char* t_get_schedule_status_str(CReminder::RESERVE_TYPE type);
char* t_get_channel_service_type(TCChannel* channel);

/// "cid-%03d-%d-%d", the minor number left out when it is not above 0.
char* t_get_channel_id(int tvmode, short major, short minor);
/// "7", or "7-2" with a minor number.
char* t_get_channel_num(TCChannel* channel);
/// "/ws/epg2/channels/" and the identifier.
char* t_get_channel_path(TCChannel* channel);
char* t_get_channel_name(TCChannel* channel);

/// Bytes of a programme's identifier with its NUL; a longer one is cut.
inline constexpr std::size_t programIdBytes = 26;

/// "pid-%03d-%d-%d-%d"; the minor number stands there always, without its sign.
char* t_get_program_id2(int tvmode, int major, int minor, int event_id);
char* t_get_program_id(TCChannel* channel, TCProgram* program);
char* t_get_program_name(TCProgram* program);
char* t_get_program_sysnopsis(TCProgram* program);  // spelled so
char* t_get_program_scrambled(TCChannel* channel, TCProgram* program);
char* t_get_program_category(TCProgram* program);    ///< always null
char* t_get_program_attributes(TCProgram* program);  ///< always null
char** t_get_program_series(TCProgram* program);     ///< a heap array of one heap text, or null

/// A new record of a channel's programme; null for a null argument or without memory.
ws_epg_program* t_create_program(TCChannel* channel, TCProgram* program);
void t_delete_program(ws_epg_program* program);

/// "sch_id_%d" of the UID.
char* t_get_schedule_id(CRemindInfo* info);
char* t_get_schedule_name(CRemindInfo* info);
char* t_get_schedule_synopsis(CRemindInfo* info);
char* t_get_schedule_repeat(CRemindInfo* info);
char* t_get_schedule_storage_path(CRemindInfo* info);  ///< always null
char* t_get_schedule_recent_path(CRemindInfo* info);   ///< always null
char* t_get_schedule_method(CRemindInfo* info);
char* t_get_schedule_program_id(TCChannel* channel, CRemindInfo* info);

/// The repeat type of a text, CReminder::REPEAT_INVALID when it names none; `*days` receives the day
/// bits that it names.
int t_get_repeat_type(const char* text, int* days);

/// A new record of a reminder; null for a null argument or without memory.
ws_epg_schedule* t_create_schedule(CRemindInfo* info, TCChannel* channel);
void t_delete_schedule(ws_epg_schedule* schedule);

/// Adds the record's members to a document object. Answers 0, or -1 for a null argument.
int t_output_schedule(void* node, ws_epg_schedule* schedule);

struct DeleteProgram {
    void operator()(ws_epg_program* program) const { t_delete_program(program); }
};
using ProgramRecord = std::unique_ptr<ws_epg_program, DeleteProgram>;

struct DeleteSchedule {
    void operator()(ws_epg_schedule* schedule) const { t_delete_schedule(schedule); }
};
using ScheduleRecord = std::unique_ptr<ws_epg_schedule, DeleteSchedule>;

// Lookups ---------------------------------------------------------------------------------------------

/// The keys of all cached channels of a mode, positioned at the first, and their number; null and 0
/// when there are none.
TCObjectSortedList* t_get_cached_channel_key_list(int tvmode, int* count);

/// The first digital channel of that number; minor 0 matches any minor.
TCChannel* t_get_cached_channel_by_num(int tvmode, int major, int minor);

/// The digital channel whose identifier is `channel_id`.
TCChannel* t_get_cached_channel_by_id(const char* channel_id);

/// The programmes of a channel between two UNIX times; 0 or less for no limit, an end before the start for
/// four hours from the start. Null when there are none.
CCSortedList* t_get_cached_program_list(TCChannel* channel, long long start, long long end);

/// The programme whose identifier is `program_id`, and its channel when `channel` is not null.
TCProgram* t_get_cached_program_by_id(const char* program_id, TCChannel** channel);

/// The reminder whose identifier is `schedule_id`, and its channel when `channel` is not null.
CRemindInfo* t_get_cached_schedule_by_id(const char* schedule_id, TCChannel** channel);

// Schedule requests -----------------------------------------------------------------------------------

/// Checks a request body as text: 0 when it passes, -1 otherwise.
int t_validateSchedData(const char* body);

/// -1 for a body that asks for a recording on a set that cannot record, and for null; else 0.
int t_validateSchedDataRecord(const char* body);

/// 1 when the set can record now, else 0.
int t_checkForRecordingCapability();

/// A new record of a body, which is cut up in place; null, logged, for one that cannot be parsed. The
/// name is spelled so.
ws_epg_schedule* t_prase_schedule_data(char* body, int length);

// Services: each answers the HTTP status and writes its members into `node` ---------------------------

/// One programme's schedule. `*location`, where there is one, receives a heap text on 201.
int t_programs_id_schedule(void* node, const char* method, const char* program_id, char* body, int body_len,
                           char** location);

/// All schedules, and adding one by hand.
int t_schedules(void* node, const char* method, TARNO_rstr_uri_query_st* query, char* body, int body_len,
                char** location);

/// One schedule.
int t_schedules_id(void* node, const char* method, const char* schedule_id, char* body, int body_len);

/// Fills a manual entry from a request, whose channel number is cut up in place: 0 when it is filled, or
/// when the view was begun at once and nothing is; -1 for a request that is refused, logged.
int t_set_manual_schedule_input(ws_epg_schedule* request, CRemindInfo* info);

/// Adds a manual entry, or replaces that of `uid` when `update` is not 0: 0 done, 1 conflict, -1 refused.
int t_set_manual_schedule(ws_epg_schedule* request, int update, unsigned long uid);

/// Writes entries as a list under "items"; those without a channel are left out.
void t_output_reminds(void* node, std::vector<CRemindInfo>& list);

int t_recordingAvailable(void* node, const char* method);
int t_recordingSpec(void* node, const char* method);
int t_recordStop(void* node, const char* method, TARNO_rstr_uri_query_st* query);
int t_antennas(void* node, const char* method);
int t_UPnP_Info(void* root, const char* method);

/// Scrapes a device description, which is changed in place; always 0.
int t_UPnP_Info_parse_and_output(void* root, char* text);

// Holders of middleware lists -------------------------------------------------------------------------

/// Destroys a middleware list with the objects that it still holds.
struct DestroyList {
    template <typename List>
    void operator()(List* list) const {
        list->Destroy();
        std::default_delete<List>()(list);
    }
};
using ChannelKeyList = std::unique_ptr<TCObjectSortedList, DestroyList>;
using ProgramList = std::unique_ptr<CCSortedList, DestroyList>;

/// Logged when a cached key leads to no digital channel.
constexpr const char* noDigitalChannelMessage =
    "======= g_pAppTV->ExistChannel( pKey,  pChannel ) or pChannel->FlagDigital() Failed! ============";
