#include "set/guide/GuideLoader.h"

#include <fmt/format.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <tuple>
#include <utility>

#include "host/Logger.h"
#include "set/guide/ChannelList.h"
#include "set/guide/ChannelOrder.h"
#include "set/guide/GuideBounds.h"
#include "set/guide/GuideBuilder.h"
#include "set/guide/GuideCollector.h"
#include "set/guide/Lineup.h"
#include "set/guide/ProgrammeMerge.h"
#include "set/guide/XmltvReader.h"

namespace epgset {
namespace {

// The plug-in's table has 5120 pages. Some stay free for bookings, which lengthen rows and add some.
constexpr std::size_t kTablePages = 5120 - 160;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/guide");
    return logger;
}

void readGuides(const std::vector<std::filesystem::path>& guides, GuideCollector& collector) {
    for (const std::filesystem::path& guide : guides) {
        collector.startGuide();
        readXmltv(guide, collector);
    }
}

/// Leaves out programmes whose channel is not shown, and lets the others point into list.channels.
void placeProgrammes(GuideCollector& collector, const ChannelList& list) {
    std::erase_if(collector.programmes, [&](CollectedProgramme& programme) {
        const ChannelList::Place place = list.places[programme.channel];
        if (place.fate == ChannelList::Fate::Unknown) ++collector.counts()[programme.guide].ofUnknownChannel;
        if (place.fate != ChannelList::Fate::Shown) return true;
        programme.channel = static_cast<std::uint32_t>(place.index);
        return false;
    });
}

void warnOfGuide(const std::filesystem::path& guide, const GuideCounts& counts) {
    if (counts.records == 0) log().warning("%s: the guide has no channel and no programme", guide.string());
    std::string message;
    if (counts.skippedProgrammes() > 0) {
        message = fmt::format(
            "skipped {} programmes: {} of unknown channels, {} without a readable start, {} that end before "
            "they "
            "start",
            counts.skippedProgrammes(), counts.ofUnknownChannel, counts.withoutStart,
            counts.endingBeforeStart);
    }
    if (counts.channelsWithoutId > 0) {
        message += fmt::format("{}skipped {} channels without an id", message.empty() ? "" : "; ",
                               counts.channelsWithoutId);
    }
    if (!message.empty()) log().warning("%s: %s", guide.string(), message);
}

void warnOfChannels(const GuideSources& sources, const ChannelList& list) {
    for (const std::string& id : list.missing) {
        log().warning("%s: no guide has the channel \"%s\"", sources.lineup->string(), id);
    }
    if (list.withoutNumber > 0) {
        log().warning("%d channels are left out: their antenna has no number left", list.withoutNumber);
    }
}

/// Brings channels into the guide's order, programmes with them.
void sortChannels(ChannelList& list, std::vector<CollectedProgramme>& programmes) {
    std::vector<std::uint32_t> order(list.channels.size());
    for (std::uint32_t index = 0; index < order.size(); ++index)
        order[index] = index;
    std::sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return channelRank(list.channels[left]) < channelRank(list.channels[right]);
    });
    std::vector<Channel> sorted;
    std::vector<std::uint32_t> newIndex(order.size());
    for (const std::uint32_t old : order) {
        newIndex[old] = static_cast<std::uint32_t>(sorted.size());
        sorted.push_back(std::move(list.channels[old]));
    }
    list.channels = std::move(sorted);
    for (CollectedProgramme& programme : programmes)
        programme.channel = newIndex[programme.channel];
}

void addChannelProgrammes(GuideBuilder& builder, std::size_t channel,
                          std::span<const ScheduledProgramme> programmes, const std::string& channelId,
                          EventIds& ids) {
    std::vector<std::uint32_t> starts;
    starts.reserve(programmes.size());
    for (const ScheduledProgramme& programme : programmes)
        starts.push_back(programme.start);
    const std::vector<std::uint16_t> given = ids.assign(channelId, starts);
    for (std::size_t index = 0; index < programmes.size(); ++index) {
        const ScheduledProgramme& programme = programmes[index];
        GuideBuilder::ProgrammeDraft draft;
        draft.start = programme.start;
        draft.stop = programme.stop;
        draft.eventId = given[index];
        draft.title = programme.title;
        draft.synopsis = programme.synopsis;
        if (programme.inSeries) draft.series = programme.title;
        builder.addProgramme(channel, draft);
    }
}

/// Sorted, bounded and with its ids, of what the guides hold.
LoadedGuide load(const GuideSources& sources, EventIds& ids) {
    const Lineup lineup = sources.lineup ? Lineup(*sources.lineup) : Lineup();
    GuideCollector collector;
    readGuides(sources.guides, collector);
    const std::size_t read = collector.programmes.size();

    ChannelList list = listChannels(collector.channels, lineup);
    placeProgrammes(collector, list);
    sortChannels(list, collector.programmes);
    auto programmes = mergeProgrammes(std::exchange(collector.programmes, {}), collector.texts);
    const BoundedGuide bounded =
        applyBounds(programmes, list.channels, {sources.maxProgrammes, kTablePages, sources.now});

    LoadedGuide loaded;
    warnOfChannels(sources, list);
    for (std::size_t index = 0; index < sources.guides.size(); ++index) {
        warnOfGuide(sources.guides[index], collector.counts()[index]);
        loaded.programmesSkipped += collector.counts()[index].skippedProgrammes();
    }
    if (bounded.dropped > 0) {
        log().warning("%d programmes are left out: the guide cache and the plug-in's table hold no more",
                      bounded.dropped);
    }

    // Where texts of programmes that are not kept lie between the others, the builder copies what it needs.
    GuideBuilder builder(programmes.size() == read ? std::exchange(collector.texts, {}) : TextPool());
    ids.startGuide();
    auto first = programmes.cbegin();
    for (Channel& channel : list.channels) {
        const std::string id = channel.id;
        const std::size_t handle = builder.addChannel(std::move(channel));
        const auto last = std::find_if(first, programmes.cend(),
                                       [&](const auto& programme) { return programme.channel != handle; });
        addChannelProgrammes(builder, handle, {first, last}, id, ids);
        first = last;
    }
    builder.setProgrammesDropped(bounded.dropped);
    loaded.guide = builder.finish();
    loaded.fitsUntil = bounded.fitsUntil;
    return loaded;
}

}  // namespace

LoadedGuide loadGuide(const GuideSources& sources, EventIds& ids) {
    const auto began = std::chrono::steady_clock::now();
    LoadedGuide loaded = load(sources, ids);
    // What loading took for a while lies between what stays; the system gets it back page by page.
    ::malloc_trim(0);
    loaded.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    log().debug("%d channels, %d programmes, %d skipped, in %.3f s", loaded.guide->channels().size(),
                loaded.guide->programmes().size(), loaded.programmesSkipped, loaded.seconds);
    return loaded;
}

}  // namespace epgset
