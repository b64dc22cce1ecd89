#include "set/demo/DemoGuide.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "set/demo/DemoChannels.h"
#include "set/guide/GuideBuilder.h"
#include "set/middleware/ReceptionModes.h"

namespace epgset {
namespace {

constexpr std::int64_t secondsADay = 86400;
constexpr std::int64_t daysBefore = 1;
constexpr std::int64_t days = 8;
constexpr std::int64_t lastDay = 4294967295 / secondsADay - 1;  // whole within 32-bit time

/// The channel's shows by kind.
class Repertoire {
public:
    explicit Repertoire(std::span<const DemoShow> shows) {
        for (const DemoShow& show : shows)
            byKind_[static_cast<std::size_t>(show.kind)].push_back(&show);
    }

    /// Which show fills the slot that is the `occurrence`th of its kind on a day. What comes in episodes
    /// keeps its time of day; the rest moves on by one from day to day.
    const DemoShow& pick(DemoKind kind, std::size_t occurrence, std::size_t day, std::size_t channel) const {
        const auto& shows = byKind_[static_cast<std::size_t>(kind)];
        const std::size_t turn = occurrence + channel + (comesInEpisodes(kind) ? 0 : day);
        return *shows[turn % shows.size()];
    }

    static bool comesInEpisodes(DemoKind kind) {
        return kind == DemoKind::Series || kind == DemoKind::Children || kind == DemoKind::Cartoon;
    }

private:
    std::array<std::vector<const DemoShow*>, demoKindCount> byKind_;
};

Channel channelOf(const DemoChannel& demo, std::size_t position) {
    Channel channel;
    const auto mode = static_cast<std::size_t>(receptionModeByName(demo.antenna));
    channel.tvMode = receptionModes()[mode].tvMode;
    channel.id = std::string(demo.antenna) + "-" + std::to_string(demo.major) + "-" +
                 std::to_string(demo.minor) + ".demo";
    channel.name = demo.name;
    channel.major = demo.major;
    channel.minor = demo.minor;
    channel.scrambled = demo.scrambled;
    channel.serviceType = demo.radio ? 2 : 1;
    channel.programNumber = static_cast<std::uint16_t>(position + 1);
    return channel;
}

/// Adds one day, counted from 1 January 1970, of a channel that has programmes.
void addDay(GuideBuilder& builder, std::size_t handle, const DemoChannel& channel,
            const Repertoire& repertoire, std::int64_t day) {
    std::array<std::size_t, demoKindCount> occurrences{};
    std::int64_t start = day * secondsADay;
    while (start < (day + 1) * secondsADay) {
        for (const DemoSlot& slot : channel.day) {
            std::size_t& occurrence = occurrences[static_cast<std::size_t>(slot.kind)];
            const DemoShow& show =
                repertoire.pick(slot.kind, occurrence++, static_cast<std::size_t>(day), handle);
            GuideBuilder::ProgrammeDraft draft;
            draft.start = static_cast<std::uint32_t>(start);
            draft.stop = static_cast<std::uint32_t>(start + slot.minutes * 60);
            draft.eventId = static_cast<std::uint16_t>(start / 60 % 65535 + 1);
            draft.scrambled = channel.scrambled;
            draft.title = show.title;
            draft.synopsis = show.synopsis;
            if (Repertoire::comesInEpisodes(slot.kind)) draft.series = show.title;
            builder.addProgramme(handle, draft);
            start += slot.minutes * 60;
        }
    }
}

}  // namespace

std::shared_ptr<const Guide> demoGuide(std::int64_t now) {
    const std::int64_t today = now / secondsADay - (now % secondsADay < 0 ? 1 : 0);
    const std::int64_t first = std::clamp<std::int64_t>(today - daysBefore, 0, lastDay - days + 1);
    GuideBuilder builder;
    for (std::size_t position = 0; position < demoChannels().size(); ++position) {
        const DemoChannel& channel = demoChannels()[position];
        const std::size_t handle = builder.addChannel(channelOf(channel, position));
        if (channel.day.empty()) continue;
        const Repertoire repertoire(channel.shows);
        for (std::int64_t day = first; day < first + days; ++day)
            addDay(builder, handle, channel, repertoire, day);
    }
    return builder.finish();
}

}  // namespace epgset
