#include "set/demo/DemoGuide.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "set/demo/DemoChannels.h"
#include "set/guide/EventIds.h"
#include "set/guide/GuideCollector.h"
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

CollectedChannel channelOf(const DemoChannel& demo, std::size_t position) {
    CollectedChannel channel;
    const auto mode = static_cast<std::size_t>(receptionModeByName(demo.antenna));
    const std::string number = std::to_string(demo.major) + "-" + std::to_string(demo.minor);
    channel.id = std::string(demo.antenna) + "-" + number + ".demo";
    channel.defined = true;
    channel.displayNames = {std::string(demo.name)};
    channel.lcn = number;
    channel.tvMode = receptionModes()[mode].tvMode;
    channel.serviceType = demo.radio ? 2 : 1;
    channel.scrambled = demo.scrambled;
    channel.programNumber = static_cast<std::uint16_t>(position + 1);
    return channel;
}

/// Adds one day, counted from 1 January 1970, of a channel that has programmes.
void addDay(GuideCollector& collector, std::size_t position, const DemoChannel& channel,
            const Repertoire& repertoire, std::int64_t day) {
    std::array<std::size_t, demoKindCount> occurrences{};
    std::int64_t start = day * secondsADay;
    while (start < (day + 1) * secondsADay) {
        for (const DemoSlot& slot : channel.day) {
            std::size_t& occurrence = occurrences[static_cast<std::size_t>(slot.kind)];
            const DemoShow& show =
                repertoire.pick(slot.kind, occurrence++, static_cast<std::size_t>(day), position);
            CollectedProgramme programme;
            programme.channel = static_cast<std::uint32_t>(position);
            programme.start = static_cast<std::uint32_t>(start);
            programme.stop = static_cast<std::uint32_t>(start + slot.minutes * 60);
            programme.inSeries = Repertoire::comesInEpisodes(slot.kind);
            programme.title = collector.texts.add(show.title);
            programme.synopsis = collector.texts.add(show.synopsis);
            collector.programmes.push_back(programme);
            start += slot.minutes * 60;
        }
    }
}

void collect(std::int64_t now, GuideCollector& collector) {
    const std::int64_t today = now / secondsADay - (now % secondsADay < 0 ? 1 : 0);
    const std::int64_t first = std::clamp<std::int64_t>(today - daysBefore, 0, lastDay - days + 1);
    collector.startGuide();
    for (std::size_t position = 0; position < demoChannels().size(); ++position) {
        const DemoChannel& channel = demoChannels()[position];
        collector.channels.push_back(channelOf(channel, position));
        if (channel.day.empty()) continue;
        const Repertoire repertoire(channel.shows);
        for (std::int64_t day = first; day < first + days; ++day)
            addDay(collector, position, channel, repertoire, day);
    }
}

}  // namespace

LoadedGuide loadDemoGuide(const GuideSources& sources) {
    // No two programmes of these few days collide, so that their ids need not be remembered.
    EventIds ids;
    return loadGuideOf([&](GuideCollector& collector) { collect(sources.now, collector); }, sources, ids);
}

std::shared_ptr<const Guide> demoGuide(std::int64_t now) {
    GuideSources sources;
    sources.now = now;
    return loadDemoGuide(sources).guide;
}

}  // namespace epgset
