// Middleware channels, programmes and reminders as the service's texts and records.
#include <strings.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextBuilder.h"
#include "host/ResponseDocument.h"

const AntennaRow antennaTable[antennaRowCount] = {
    {0, 2, "AIR"},       {1, 4, "CABLE"},          {2, 6, "POD"},
    {3, 7, "SATELLITE"}, {4, 8, "FREESAT"},        {5, 9, "CANALDIGITALSAT"},
    {6, 10, "TIVUSAT"},  {7, 11, "CD_TVV"},        {8, 14, "ASTRA_HD_PLUS"},
    {9, 15, "TNTSAT"},   {10, 16, "DIGITAL_PLUS"}, {11, 17, "CYFRA_PLUS"},
    {12, 18, "DSMART"},  {13, 19, "DIGITURK"},     {19, 22, "CI_OP_1"},
    {20, 23, "CI_OP_2"}, {22, 12, "BS"},           {23, 13, "CS"},
};

namespace {

constexpr int lastTvMode = 23;
constexpr int lastServiceType = 7;
constexpr const char* channelsPath = "/ws/epg2/channels";

struct ServiceTypeRow {
    unsigned char value;
    const char* name;
};

constexpr ServiceTypeRow serviceTypeTable[] = {
    {0, "ALL"},  {1, "TV"},       {2, "RADIO"},    {3, "OTHER"},
    {4, "FREE"}, {5, "SCRAMBLE"}, {6, "SEARCHED"}, {7, "ANALOG"},
};

struct DayName {
    int bit;
    const char* name;
};

constexpr DayName dayNames[] = {{1, "SUN"},  {2, "MON"},  {4, "TUE"}, {8, "WED"},
                                {16, "THU"}, {32, "FRI"}, {64, "SAT"}};

constexpr int weekdayBits = 62;
constexpr int weekendBits = 65;

/// Fetches a middleware text of `length` bytes and converts it; null when there is none.
template <typename Object>
char* readMiddlewareText(const Object* object, int length, int (Object::*read)(void*, int) const) {
    if (length < 1) return nullptr;
    // Most texts fit a buffer on the stack. The buffer stays ours either way: a text of one byte is no
    // text, and the conversion would leave it behind.
    alignas(unsigned short) unsigned char local[512];
    const std::size_t bytes = static_cast<std::size_t>(length) + 1;
    const HeapBlock block(bytes > sizeof local ? std::malloc(bytes) : nullptr);
    if (bytes > sizeof local && !block) return nullptr;
    void* const buffer = block ? block.get() : local;
    std::memset(buffer, 0, bytes);
    (object->*read)(buffer, length);
    return t_change_ZorviStr_to_UTF8(buffer, length, 0);
}

int absolute(int value) {
    return value < 0 && value != INT_MIN ? -value : value;
}

/// The names of the set days, joined by "|".
std::string manualDays(int days) {
    std::string names;
    for (const DayName& day : dayNames) {
        if ((days & day.bit) == 0) continue;
        if (!names.empty()) names += '|';
        names += day.name;
    }
    return names;
}

int unitCount(const unsigned short* units) {
    int count = 0;
    while (units[count] != 0)
        ++count;
    return count;
}

}  // namespace

// Antennas and types ----------------------------------------------------------------------------------

char* t_get_name_from_tvmode(int tvmode) {
    if (antennaTable[antennaRowCount - 1].tvmode != lastTvMode)
        adapterLogger.warning(
            "#### WebServer's EPG service should be updated! TV mode list is changed! ####");
    for (const AntennaRow& row : antennaTable)
        if (row.tvmode == tvmode) return t_alloc_copy(row.name);
    return nullptr;
}

int t_get_srctype_from_tvmode(int tvmode) {
    for (const AntennaRow& row : antennaTable)
        if (row.tvmode == tvmode) return row.sourceType;
    return -1;
}

int t_get_tvmode_from_name(const char* name) {
    if (name == nullptr) return -1;
    for (const AntennaRow& row : antennaTable)
        if (strcasecmp(row.name, name) == 0) return row.tvmode;
    return -1;
}

char* t_get_schedule_status_str(CReminder::RESERVE_TYPE type) {
    switch (static_cast<int>(type)) {
        case 0:
            return t_alloc_copy("VIEW");
        case 1:
        case 2:
        case 6:
        case 7:
        case 9:
        case 10:
            return t_alloc_copy("RECORD");
        case 3:
            return t_alloc_copy("RECORDING");
        default:
            return t_alloc_copy("NONE");
    }
}

char* t_get_channel_service_type(TCChannel* channel) {
    if (channel == nullptr) return nullptr;
    constexpr std::size_t rows = sizeof serviceTypeTable / sizeof serviceTypeTable[0];
    if (serviceTypeTable[rows - 1].value != lastServiceType)
        adapterLogger.warning("#### WebServer's Channel Service Type must be updated! Enum is changed! ####");
    const auto type = static_cast<unsigned char>(channel->ServiceType());
    for (const ServiceTypeRow& row : serviceTypeTable)
        if (row.value == type) return t_alloc_copy(row.name);
    return t_alloc_copy("UNKNOWN");
}

// Channels --------------------------------------------------------------------------------------------

char* t_get_channel_id(int tvmode, short major, short minor) {
    TextBuilder id(20);
    id.add("cid-").add(tvmode, 3).add("-").add(major);
    if (minor > 0) id.add("-").add(minor);
    return id.release();
}

char* t_get_channel_num(TCChannel* channel) {
    if (channel == nullptr) return nullptr;
    TextBuilder number(12);
    number.add(channel->Major());
    if (channel->Minor() >= 1) number.add("-").add(channel->Minor());
    return number.release();
}

char* t_get_channel_path(TCChannel* channel) {
    if (channel == nullptr) return nullptr;
    const HeapText id(t_get_channel_id(channel->TvMode(), channel->Major(), channel->Minor()));
    if (!id) return nullptr;
    return TextBuilder(std::strlen(id.get()) + 19).add(channelsPath).add("/").add(id.get()).release();
}

char* t_get_channel_name(TCChannel* channel) {
    if (channel == nullptr) return nullptr;
    return readMiddlewareText(channel, channel->GetChannelNameLength(), &TCChannel::GetChannelName);
}

// Programmes ------------------------------------------------------------------------------------------

char* t_get_program_id2(int tvmode, int major, int minor, int event_id) {
    TextBuilder id(programIdBytes);
    id.add("pid-").add(tvmode, 3).add("-").add(major).add("-").add(absolute(minor)).add("-").add(event_id);
    return id.release();
}

char* t_get_program_id(TCChannel* channel, TCProgram* program) {
    if (channel == nullptr || program == nullptr) return nullptr;
    return t_get_program_id2(channel->TvMode(), channel->Major(), channel->Minor(), program->EventId());
}

char* t_get_program_name(TCProgram* program) {
    if (program == nullptr) return nullptr;
    return readMiddlewareText(program, program->TitleLength(), &TCProgram::GetTitle);
}

char* t_get_program_sysnopsis(TCProgram* program) {
    if (program == nullptr) return nullptr;
    return readMiddlewareText(program, program->ExtendedTextLength(), &TCProgram::GetExtendedText);
}

char* t_get_program_scrambled(TCChannel* channel, TCProgram* program) {
    const bool scrambled = (channel != nullptr && channel->FlagScrambled() != 0) ||
                           (program != nullptr && program->FreeCAMode() != 0);
    return t_alloc_copy(scrambled ? "true" : "false");
}

char* t_get_program_category(TCProgram* /*program*/) {
    return nullptr;
}

char* t_get_program_attributes(TCProgram* /*program*/) {
    return nullptr;
}

char** t_get_program_series(TCProgram* program) {
    if (program == nullptr) return nullptr;
    TCProgram::TTSeriesItem item;
    if (program->GetSeriesInfo(item, 0) != 1) return nullptr;
    HeapText title(t_change_ZorviStr_to_UTF8(item.title.data(), static_cast<int>(item.title.size()), 0));
    auto** series = static_cast<char**>(std::calloc(1, sizeof(char*)));
    if (series != nullptr) series[0] = title.release();
    return series;
}

ws_epg_program* t_create_program(TCChannel* channel, TCProgram* program) {
    if (channel == nullptr || program == nullptr) return nullptr;
    ProgramRecord record(static_cast<ws_epg_program*>(std::calloc(1, sizeof(ws_epg_program))));
    if (!record) return nullptr;
    record->program_id = t_get_program_id(channel, program);
    record->name = t_get_program_name(program);
    record->source_path = t_get_channel_path(channel);
    record->channel_name = t_get_channel_name(channel);
    record->channel_num = t_get_channel_num(channel);
    record->antenna = t_get_name_from_tvmode(channel->TvMode());
    record->start = t_get_ISO8601_from_UNIX(static_cast<std::uint32_t>(program->StartTime()));
    record->end = t_get_ISO8601_from_UNIX(static_cast<std::uint32_t>(program->EndTime()));
    record->scrambled = t_get_program_scrambled(channel, program);
    record->category = t_get_program_category(program);
    record->attributes = t_get_program_attributes(program);
    record->series = t_get_program_series(program);
    record->start_time = program->StartTime();
    record->sort_key = 1000 * channel->Major() + absolute(channel->Minor());
    return record.release();
}

void t_delete_program(ws_epg_program* program) {
    if (program == nullptr) return;
    for (char* text : {program->program_id, program->name, program->source_path, program->channel_name,
                       program->channel_num, program->antenna, program->start, program->end,
                       program->scrambled, program->category, program->attributes})
        std::free(text);
    if (program->series != nullptr) std::free(program->series[0]);
    std::free(program->series);
    std::free(program);
}

// Schedules -------------------------------------------------------------------------------------------

char* t_get_schedule_id(CRemindInfo* info) {
    if (info == nullptr) return nullptr;
    return TextBuilder(18).add("sch_id_").add(static_cast<int>(info->UID())).release();
}

char* t_get_schedule_name(CRemindInfo* info) {
    if (info == nullptr) return nullptr;
    const unsigned short* title = info->GetTitle();
    const int units = title == nullptr ? 0 : unitCount(title);
    if (units == 0) return nullptr;
    const std::size_t bytes = (static_cast<std::size_t>(units) + 1) * sizeof(unsigned short);
    const HeapBlock block(std::malloc(bytes));
    if (!block) return nullptr;
    std::memcpy(block.get(), title, bytes);
    return t_change_ZorviStr_to_UTF8(block.get(), static_cast<int>(bytes), 0);
}

char* t_get_schedule_synopsis(CRemindInfo* info) {
    if (info == nullptr) return nullptr;
    const unsigned short* synopsis = info->Synopsis();
    if (synopsis == nullptr) return t_alloc_copy("");
    // One and a half bytes a unit, on purpose: a text of many accents is cut at a character.
    const int bytes = static_cast<int>(static_cast<long long>(unitCount(synopsis)) * 3 / 2) + 1;
    HeapText text(static_cast<char*>(std::malloc(static_cast<std::size_t>(bytes))));
    if (!text) return nullptr;
    t_conv_UTF16_to_UTF8(synopsis, -1, text.get(), bytes);
    return text.release();
}

char* t_get_schedule_repeat(CRemindInfo* info) {
    if (info == nullptr) return nullptr;
    if (info->ReserveType() == CReminder::RESERVE_SERIES) return t_alloc_copy("SERIES");
    switch (static_cast<int>(info->RepeatType())) {
        case CReminder::REPEAT_ONCE:
            return t_alloc_copy("ONCE");
        case CReminder::REPEAT_EVERYDAY:
            return t_alloc_copy("EVERYDAY");
        case CReminder::REPEAT_WEEKDAYS:
            return t_alloc_copy("MON|TUE|WED|THU|FRI");
        case CReminder::REPEAT_WEEKEND:
            return t_alloc_copy("SAT|SUN");
        case CReminder::REPEAT_MANUAL:
            return t_alloc_copy(manualDays(info->ManualRepeat()).c_str());
        default:
            return nullptr;
    }
}

int t_get_repeat_type(const char* text, int* days) {
    *days = 0;
    if (text == nullptr) return CReminder::REPEAT_INVALID;
    if (strcasecmp(text, "ONCE") == 0) return CReminder::REPEAT_ONCE;
    if (strcasecmp(text, "EVERYDAY") == 0) return CReminder::REPEAT_EVERYDAY;
    for (const DayName& day : dayNames)
        if (strcasestr(text, day.name) != nullptr) *days |= day.bit;
    switch (*days) {
        case 0:
            return CReminder::REPEAT_INVALID;
        case weekdayBits:
            return CReminder::REPEAT_WEEKDAYS;
        case weekendBits:
            return CReminder::REPEAT_WEEKEND;
        default:
            return CReminder::REPEAT_MANUAL;  // all seven days too
    }
}

char* t_get_schedule_storage_path(CRemindInfo* /*info*/) {
    return nullptr;
}

char* t_get_schedule_recent_path(CRemindInfo* /*info*/) {
    return nullptr;
}

char* t_get_schedule_method(CRemindInfo* info) {
    if (info == nullptr) return nullptr;
    switch (static_cast<int>(info->CreationMethod())) {
        case CReminder::CREATED_FROM_EPG:
            return t_alloc_copy("EPG");
        case CReminder::CREATED_MANUALLY:
            return t_alloc_copy("Manual");
        default:
            return nullptr;
    }
}

char* t_get_schedule_program_id(TCChannel* channel, CRemindInfo* info) {
    if (channel == nullptr || info == nullptr) return nullptr;
    if (info->CreationMethod() != CReminder::CREATED_FROM_EPG) return nullptr;
    return t_get_program_id2(channel->TvMode(), channel->Major(), channel->Minor(), info->EventId());
}

ws_epg_schedule* t_create_schedule(CRemindInfo* info, TCChannel* channel) {
    if (info == nullptr || channel == nullptr) return nullptr;
    ScheduleRecord record(static_cast<ws_epg_schedule*>(std::calloc(1, sizeof(ws_epg_schedule))));
    if (!record) return nullptr;
    const long long start = static_cast<long long>(info->StartTime()) - t_get_time_offset();
    record->id = t_get_schedule_id(info);
    record->name = t_get_schedule_name(info);
    record->status = t_get_schedule_status_str(info->ReserveType());
    record->channel_num = t_get_channel_num(channel);
    record->channel_name = t_get_channel_name(channel);
    record->antenna = t_get_name_from_tvmode(channel->TvMode());
    record->synopsis = t_get_schedule_synopsis(info);
    record->start = t_get_ISO8601_from_UNIX(start);
    record->end = t_get_ISO8601_from_UNIX(start + info->Duration());
    record->repeat = t_get_schedule_repeat(info);
    record->source_path = t_get_channel_path(channel);
    record->storage_path = t_get_schedule_storage_path(info);
    record->recent_record_path = t_get_schedule_recent_path(info);
    record->method = t_get_schedule_method(info);
    record->program_id = t_get_schedule_program_id(channel, info);
    return record.release();
}

void t_delete_schedule(ws_epg_schedule* schedule) {
    if (schedule == nullptr) return;
    for (char* text : {schedule->id, schedule->name, schedule->status, schedule->channel_num,
                       schedule->channel_name, schedule->antenna, schedule->synopsis, schedule->start,
                       schedule->end, schedule->repeat, schedule->source_path, schedule->storage_path,
                       schedule->recent_record_path, schedule->method, schedule->program_id})
        std::free(text);
    std::free(schedule);
}

int t_output_schedule(void* node, ws_epg_schedule* schedule) {
    if (node == nullptr || schedule == nullptr) return -1;
    TARNO_rdoc_add_UTF8(node, "id", schedule->id);
    TARNO_rdoc_add_UTF8(node, "name", schedule->name);
    TARNO_rdoc_add_UTF8(node, "type", schedule->status);  // the status word twice, on purpose
    TARNO_rdoc_add_UTF8(node, "status", schedule->status);
    TARNO_rdoc_add_UTF8(node, "channel_num", schedule->channel_num);
    TARNO_rdoc_add_UTF8(node, "channel_name", schedule->channel_name);
    TARNO_rdoc_add_UTF8(node, "antenna", schedule->antenna);
    TARNO_rdoc_add_UTF8(node, "synopsis", schedule->synopsis);
    TARNO_rdoc_add_UTF8(node, "start", schedule->start);
    TARNO_rdoc_add_UTF8(node, "end", schedule->end);
    TARNO_rdoc_add_UTF8(node, "repeat", schedule->repeat);
    TARNO_rdoc_add_UTF8(node, "source_path", schedule->source_path);
    TARNO_rdoc_add_UTF8(node, "storage_path", schedule->storage_path);
    TARNO_rdoc_add_UTF8(node, "recent_record_path", schedule->recent_record_path);
    TARNO_rdoc_add_UTF8(node, "method", schedule->method);
    TARNO_rdoc_add_UTF8(node, "program_id", schedule->program_id);
    return 0;
}
