// The recording services: whether and how the set can record, and stopping what it records.
#include <cstdint>
#include <memory>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/TextCompare.h"
#include "host/CAppUtil.h"
#include "host/CPVRWrapper.h"
#include "host/ResponseDocument.h"

namespace {

const char* booleanText(bool value) {
    return value ? "true" : "false";
}

/// The channel that one query item names; null when it names none.
std::unique_ptr<TCChannel> channelOfItem(const char* name, const char* value) {
    if (value == nullptr) return nullptr;
    TCChannel* channel = nullptr;
    if (isText(name, "channel_id")) {
        channel = t_get_cached_channel_by_id(value);
    } else if (isText(name, "program_id")) {
        const std::unique_ptr<TCProgram> program(t_get_cached_program_by_id(value, &channel));
    } else if (isText(name, "schedule_id")) {
        const std::unique_ptr<CRemindInfo> info(t_get_cached_schedule_by_id(value, &channel));
    }
    return std::unique_ptr<TCChannel>(channel);
}

/// The channel of the first query item that yields one; null without any.
std::unique_ptr<TCChannel> channelOfQuery(const TARNO_rstr_uri_query_st* query) {
    if (query == nullptr) return nullptr;
    for (std::int32_t i = 0; i < query->count; ++i)
        if (std::unique_ptr<TCChannel> channel = channelOfItem(query->names[i], query->values[i]))
            return channel;
    return nullptr;
}

bool isSameChannel(const TCChannel& one, const TCChannel& other) {
    return one.TvMode() == other.TvMode() && one.Major() == other.Major() && one.Minor() == other.Minor();
}

/// Stops running recording `number` when its channel is `wanted` or none is wanted; whether it stopped.
bool stopRecording(int number, const TCChannel* wanted) {
    TCChannel channel;
    if (!CPVRWrapper::GetRecordingChannel(number, channel)) return false;  // it has ended meanwhile
    if (wanted != nullptr && !isSameChannel(channel, *wanted)) {
        adapterLogger.warning("%d) Recording channel is not matched. (%d-%d-%d != %d-%d-%d)", number,
                              channel.TvMode(), channel.Major(), channel.Minor(), wanted->TvMode(),
                              wanted->Major(), wanted->Minor());
        return false;
    }
    const bool stopped = CPVRWrapper::StopRecording(channel, 1);
    adapterLogger.warning("%d) CPVRWrapper::StopRecording called. ret=%s", number, booleanText(stopped));
    return stopped;
}

}  // namespace

int t_recordingAvailable(void* node, const char* /*method*/) {
    adapterLogger.trace("t_recordingAvailable");
    bool available = true;
    if (CAppUtil::FlagSupportRecordingSpec() == 0) {
        available = false;
        adapterLogger.debug("=== CAppUtil::FlagSupportRecordingSpec() == false ===");
    }
    if (CPVRWrapper::GetDevTotal() < 1) {
        available = false;
        adapterLogger.debug("=== CPVRWrapper::GetDevTotal() < 1 ===");
    } else if (CPVRWrapper::IsExistRecDevice() == 0) {
        available = false;
        adapterLogger.debug("=== CPVRWrapper::IsExistRecDevice() is false. maybe unformatted device ===");
    }
    TARNO_rdoc_add_boolean(node, "recordingAvailable", booleanText(available));
    return 200;
}

int t_recordingSpec(void* node, const char* /*method*/) {
    adapterLogger.trace("t_recordingSpec");
    TARNO_rdoc_add_boolean(node, "function", booleanText(CAppUtil::FlagSupportRecordingSpec() != 0));
    TARNO_rdoc_add_boolean(node, "medium", booleanText(CPVRWrapper::GetDevTotal() >= 1));
    TARNO_rdoc_add_boolean(node, "formatted", booleanText(CPVRWrapper::IsExistRecDevice() != 0));
    TARNO_rdoc_add_boolean(node, "user_allow", booleanText(t_is_user_scheduling_allowed() != 0));
    return 200;
}

int t_recordStop(void* /*node*/, const char* method, TARNO_rstr_uri_query_st* query) {
    adapterLogger.trace("t_recordStop");
    if (!isText(method, "POST")) {
        adapterLogger.warning("t_recordStop does not support %s method", method);
        return 404;
    }
    if (t_is_user_scheduling_allowed() == 0) return 403;
    const std::unique_ptr<TCChannel> wanted = channelOfQuery(query);
    if (wanted)
        adapterLogger.warning("Channel is specified. Major:%d", wanted->Major());
    else
        adapterLogger.warning("Channel is not specified. StopRecording applies all channel");
    const int count = CPVRWrapper::GetCurrentRecordingCount();
    adapterLogger.debug("recourding count is %d", count);  // spelled so
    int stopped = 0;
    for (int number = 1; number <= count; ++number)
        if (stopRecording(number, wanted.get())) ++stopped;
    if (stopped == 0) adapterLogger.error("No recording is stopped.");
    return 200;
}
