// The antennas on which the set has channels.
#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/TextCompare.h"
#include "host/ResponseDocument.h"

int t_antennas(void* node, const char* method) {
    adapterLogger.trace("t_antennas");
    if (!isText(method, "GET")) {
        adapterLogger.warning("t_channels does not support %s method", method);  // another name, on purpose
        return 404;
    }
    void* items = TARNO_rdoc_create_object(node);
    if (items == nullptr) return 404;
    TARNO_rdoc_add_object(node, "items", items);
    int total = 0;
    for (const AntennaRow& row : antennaTable) {
        int count = 0;
        const ChannelKeyList keys(t_get_cached_channel_key_list(row.tvmode, &count));
        if (!keys || count == 0 || keys->Data() == nullptr) continue;
        TARNO_rdoc_add_UTF8(items, nullptr, row.name);
        ++total;
    }
    if (total > 0) {
        adapterLogger.trace("Total number of antennas: %d\n", total);
        TARNO_rdoc_add_integer(node, "items_total", total);
    }
    return 200;
}
