// Finding middleware objects: by number, by identifier, by time.
//
// Identifiers are not decoded: the cache is walked and each candidate's identifier compared, a programme's
// when its channel's part fits.
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "Vexmoor/ChannelWalk.h"
#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextCompare.h"
#include "host/AppTV.h"

namespace {

constexpr const char* scheduleIdPrefix = "sch_id_";
constexpr long long noEnd = 4294967295LL;
constexpr long long fourHours = 14400;

/// Reports a key without a digital channel; the walk goes on.
bool logMissing() {
    adapterLogger.error(noDigitalChannelMessage);
    return false;
}

/// Hands every digital channel of all modes, in the order of the antenna table, to `visit`, as a new object,
/// until it answers true.
template <typename Visit>
void visitAllDigitalChannels(Visit visit) {
    bool found = false;
    for (const AntennaRow& row : antennaTable) {
        int count = 0;
        const ChannelKeyList keys(t_get_cached_channel_key_list(row.tvmode, &count));
        if (!keys) continue;
        visitDigitalChannels(
            *keys,
            [&](std::unique_ptr<TCChannel>& channel) {
                found = visit(channel);
                return found;
            },
            logMissing);
        if (found) return;
    }
}

/// Whether one of the channel's programmes may have that identifier: theirs are all alike but for the event
/// id at the end. A text so long that it may have been cut does not tell.
bool mayHaveProgram(const TCChannel& channel, const char* program_id) {
    const HeapText any(t_get_program_id2(channel.TvMode(), channel.Major(), channel.Minor(), 0));
    const std::size_t length = any ? std::strlen(any.get()) : programIdBytes;
    return length + 1 >= programIdBytes || std::strncmp(any.get(), program_id, length - 1) == 0;
}

/// A copy of the channel's programme of that identifier; null when it has none.
std::unique_ptr<TCProgram> findProgram(TCChannel& channel, const char* program_id) {
    const ProgramList programs(t_get_cached_program_list(&channel, 0, 0));
    // The list is asked for all the same: the middleware is walked through channel by channel.
    if (!programs || !mayHaveProgram(channel, program_id)) return nullptr;
    for (bool more = programs->Seek(CCSortedList::First, 0); more && programs->Data() != nullptr;
         more = programs->Seek(CCSortedList::Current, 1)) {
        const HeapText id(t_get_program_id(&channel, programs->Data()));
        if (isText(id.get(), program_id))
            return std::unique_ptr<TCProgram>(new (std::nothrow) TCProgram(*programs->Data()));
        programs->Delete();
    }
    return nullptr;
}

}  // namespace

TCObjectSortedList* t_get_cached_channel_key_list(int tvmode, int* count) {
    *count = 0;
    const int sourceType = t_get_srctype_from_tvmode(tvmode);
    if (sourceType == -1) return nullptr;
    TCChannel pattern;
    pattern.MarkBit();
    pattern.SetHideGuide(0);
    pattern.SetHidden(0);
    pattern.SetType(sourceType);
    ChannelKeyList keys(new (std::nothrow) TCObjectSortedList());
    if (!keys) return nullptr;
    keys->Create();
    int found = 0;
    g_pAppTV->GetChannelKeyList(keys.get(), &pattern, &found);
    if (found == 0 || !keys->Seek(TCObjectSortedList::First, 0)) return nullptr;
    *count = found;
    return keys.release();
}

TCChannel* t_get_cached_channel_by_num(int tvmode, int major, int minor) {
    int count = 0;
    const ChannelKeyList keys(t_get_cached_channel_key_list(tvmode, &count));
    if (!keys) {
        adapterLogger.error("======= No Cached channel or Channel Scan Failed!! ============");
        return nullptr;
    }
    std::unique_ptr<TCChannel> found;
    visitDigitalChannels(
        *keys,
        [&](std::unique_ptr<TCChannel>& channel) {
            if (!isNumberAskedFor(channel->Major(), channel->Minor(), major, minor)) return false;
            found = std::move(channel);
            return true;
        },
        logMissing);
    return found.release();
}

TCChannel* t_get_cached_channel_by_id(const char* channel_id) {
    std::unique_ptr<TCChannel> found;
    if (channel_id == nullptr) return nullptr;
    visitAllDigitalChannels([&](std::unique_ptr<TCChannel>& channel) {
        const HeapText id(t_get_channel_id(channel->TvMode(), channel->Major(), channel->Minor()));
        if (!isText(id.get(), channel_id)) return false;
        found = std::move(channel);
        return true;
    });
    return found.release();
}

CCSortedList* t_get_cached_program_list(TCChannel* channel, long long start, long long end) {
    if (channel == nullptr) return nullptr;
    if (start <= 0) start = 0;
    if (end <= 0) end = noEnd;
    if (end < start) end = start + fourHours;
    ProgramList programs(new (std::nothrow) CCSortedList());
    if (!programs) return nullptr;
    programs->Create();
    if (g_pAppTV->GetProgramList(programs.get(), channel, start, end - start) != 1) return nullptr;
    return programs.release();
}

TCProgram* t_get_cached_program_by_id(const char* program_id, TCChannel** channel) {
    if (channel != nullptr) *channel = nullptr;
    if (program_id == nullptr) return nullptr;
    std::unique_ptr<TCProgram> found;
    visitAllDigitalChannels([&](std::unique_ptr<TCChannel>& candidate) {
        found = findProgram(*candidate, program_id);
        if (!found) return false;
        if (channel != nullptr) *channel = candidate.release();
        return true;
    });
    return found.release();
}

CRemindInfo* t_get_cached_schedule_by_id(const char* schedule_id, TCChannel** channel) {
    if (channel != nullptr) *channel = nullptr;
    CReminder* reminder = CReminder::GetInstance();
    const std::size_t prefixLength = std::strlen(scheduleIdPrefix);
    if (reminder == nullptr || schedule_id == nullptr ||
        std::strncmp(schedule_id, scheduleIdPrefix, prefixLength) != 0)
        return nullptr;
    const int uid = t_read_int(schedule_id + prefixLength);
    std::unique_ptr<CRemindInfo> info(new (std::nothrow) CRemindInfo());
    if (!info) return nullptr;
    if (!reminder->GetRemindItemByUid(static_cast<unsigned>(uid), *info)) {
        adapterLogger.warning("GetRemindItemByUid fail (uid:%d)", uid);
        return nullptr;
    }
    if (channel != nullptr) {
        const int tvmode = TCChannel::GetTVMode(info->ChannelType());
        *channel = t_get_cached_channel_by_num(tvmode, info->Major(), info->Minor());
        if (*channel == nullptr) {
            adapterLogger.warning("No channel exists %d %d %d", info->ChannelType(), info->Major(),
                                  info->Minor());
            return nullptr;
        }
    }
    return info.release();
}
