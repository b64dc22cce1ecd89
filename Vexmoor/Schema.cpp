// The table's columns as the REST interface names them.
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace {

struct ColumnKey {
    const char* column;
    const char* key;
    int shortView;  ///< the key view under which the short key stands; 0: none
    const char* shortKey;
};

constexpr ColumnKey columnKeys[] = {
    {"ChannelId", "channel_id", ChannelView, "id"},
    {"ChannelName", "channel_name", ChannelView, "name"},
    {"ChannelNumber", "channel_num", 0, nullptr},
    {"ChannelPath", "channel_path", 0, nullptr},
    {"AntennaType", "antenna", 0, nullptr},
    {"ScrambledFlag", "scrambled", 0, nullptr},
    {"ServiceType", "service_type", 0, nullptr},
    {"EventId", "program_id", ProgramView, "id"},
    {"ProgramName", "program_name", ProgramView, "name"},
    {"ProgramStartTime", "start", 0, nullptr},
    {"ProgramEndTime", "end", 0, nullptr},
    {"ScheduleId", "schedule_id", ScheduleView, "id"},
    {"ScheduleType", "status", 0, nullptr},
    {"Repeat", "repeat", 0, nullptr},
};

}  // namespace

void EpgSQLPluginVexmoor::m_convertColNameToUrParam(const std::string& column, int keyView,
                                                    std::string& key) {
    for (const ColumnKey& entry : columnKeys) {
        if (column != entry.column) continue;
        const bool isShort = entry.shortView != 0 && entry.shortView == keyView;
        key = isShort ? entry.shortKey : entry.key;
        return;
    }
    key = column;
    pluginLogger.warning("Could not convert column name.\n");
}
