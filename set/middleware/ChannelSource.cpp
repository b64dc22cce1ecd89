#include "host/ChannelSource.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "set/memory/MemoryShortage.h"
#include "set/middleware/ChannelTexts.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/ServiceTypes.h"
#include "set/text/Utf16.h"

namespace {

/// A copy that the record owns; null without memory.
char* copyOf(std::string_view text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (!copy) return nullptr;
    *std::copy(text.begin(), text.end(), copy) = '\0';
    return copy;
}

std::string nameOf(const TCChannel& channel) {
    const int bytes = channel.GetChannelNameLength();
    if (bytes < 2) return {};
    std::vector<unsigned short> units(static_cast<std::size_t>(bytes) / 2);
    channel.GetChannelName(units.data(), bytes);
    return epgset::utf8FromUtf16(units, std::endian::big);
}

std::string_view serviceTypeOf(const TCChannel& channel) {
    const auto type = static_cast<unsigned char>(channel.ServiceType());
    return type < epgset::serviceTypeNames.size() ? epgset::serviceTypeNames[type] : "UNKNOWN";
}

void fill(ws_epg_channel_source& source, const TCChannel& channel) {
    source.channel_id = copyOf(epgset::channelIdText(channel.TvMode(), channel.Major(), channel.Minor()));
    source.channel_num = copyOf(epgset::channelNumberText(channel.Major(), channel.Minor()));
    if (const std::string name = nameOf(channel); !name.empty()) source.channel_name = copyOf(name);
    source.service_type = copyOf(serviceTypeOf(channel));
    const int mode = epgset::receptionModeByTvMode(channel.TvMode());
    if (mode >= 0) source.antenna = copyOf(epgset::receptionModes()[static_cast<std::size_t>(mode)].name);
    source.scrambled = copyOf(channel.FlagScrambled() != 0 ? "true" : "false");
}

}  // namespace

ws_epg_channel_source* t_create_channel_source(TCChannel* channel) {
    if (!channel) return nullptr;
    auto* const source = new (std::nothrow) ws_epg_channel_source{};
    if (!source) return nullptr;
    try {
        fill(*source, *channel);
    } catch (const std::bad_alloc&) {
        epgset::noteMemoryShortage();
        t_delete_channel_source(source);
        return nullptr;
    }
    return source;
}

void t_delete_channel_source(ws_epg_channel_source* source) {
    if (!source) return;
    for (char* const text : {source->channel_id, source->channel_num, source->channel_name,
                             source->service_type, source->antenna, source->scrambled}) {
        std::free(text);
    }
    delete source;
}
