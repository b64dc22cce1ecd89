// A channel's texts, as the host hands them out.
#pragma once

#include "host/Export.h"
#include "host/TCChannel.h"

extern "C" {

/// One channel's texts in UTF-8, owned by the record; each may be null.
struct ws_epg_channel_source {
    char* channel_id;   ///< the service's identifier of the channel
    char* channel_num;  ///< "7" or "7-2"
    char* channel_name;
    char* service_type;  ///< such as "TV"
    char* antenna;       ///< such as "AIR"
    char* scrambled;     ///< "true" or "false"
};

/// A new record of a channel, released with t_delete_channel_source; null for null or without memory.
HOST_API ws_epg_channel_source* t_create_channel_source(TCChannel* channel);

/// Frees a record; null is accepted.
HOST_API void t_delete_channel_source(ws_epg_channel_source* source);
}
