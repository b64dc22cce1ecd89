#include "tests/support/ChannelSources.h"

#include <dlfcn.h>

namespace {

epgtest::ChannelSources* listener = nullptr;

}  // namespace

namespace epgtest {

ChannelSources::ChannelSources() {
    listener = this;
}

ChannelSources::~ChannelSources() {
    listener = nullptr;
}

}  // namespace epgtest

// These stand before the host's own for the whole program.
extern "C" {

ws_epg_channel_source* t_create_channel_source(TCChannel* channel) {
    static const auto next =
        reinterpret_cast<decltype(&t_create_channel_source)>(dlsym(RTLD_NEXT, "t_create_channel_source"));
    if (listener == nullptr) return next(channel);
    if (listener->none) return nullptr;
    ws_epg_channel_source* record = next(channel);
    ++listener->made;
    if (listener->change) listener->change(*record);
    return record;
}

void t_delete_channel_source(ws_epg_channel_source* source) {
    static const auto next =
        reinterpret_cast<decltype(&t_delete_channel_source)>(dlsym(RTLD_NEXT, "t_delete_channel_source"));
    if (listener != nullptr && source != nullptr) ++listener->deleted;
    next(source);
}
}
