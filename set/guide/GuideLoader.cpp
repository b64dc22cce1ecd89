#include "set/guide/GuideLoader.h"

#include <fmt/format.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <functional>
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
#include "set/guide/TextLimits.h"
#include "set/guide/XmltvReader.h"

namespace epgset {
namespace {

// The plug-in's table has 5120 pages. Some stay free for bookings, which lengthen rows and add some.
constexpr std::size_t kTablePages = 5120 - 160;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/guide");
    return logger;
}

void readGuides(const std::vector<GuideInput>& guides, GuideCollector& collector) {
    for (const GuideInput& guide : guides) {
        collector.startGuide();
        readXmltv(guide.path, guide.name, collector);
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

void warnOfGuide(const std::string& guide, const GuideCounts& counts) {
    if (counts.records() == 0) log().warning("%s: the guide has no channel and no programme", guide);
    std::vector<std::string> parts;
    if (counts.skippedProgrammes() > 0) {
        parts.push_back(
            fmt::format("skipped {} programmes: {} of unknown channels, {} without a readable start, "
                        "{} that end before they start",
                        counts.skippedProgrammes(), counts.ofUnknownChannel, counts.withoutStart,
                        counts.endingBeforeStart));
    }
    if (counts.channelsWithoutId > 0) {
        parts.push_back(fmt::format("skipped {} channels without an id", counts.channelsWithoutId));
    }
    if (counts.textsCut > 0) parts.push_back(fmt::format("cut {} texts that are too long", counts.textsCut));
    if (!parts.empty()) log().warning("%s: %s", guide, fmt::to_string(fmt::join(parts, "; ")));
}

void warnOfChannels(const GuideSources& sources, const Lineup& lineup, const ChannelList& list) {
    for (const std::string& id : list.missing) {
        log().warning("%s: no guide has the channel \"%s\"", sources.lineup->string(), id);
    }
    const auto namesCut = std::ranges::count_if(lineup.entries(), [](const LineupEntry& entry) {
        return entry.name && entry.name->size() > kLongestName;
    });
    if (namesCut > 0) log().warning("%s: cut %d names that are too long", sources.lineup->string(), namesCut);
    if (list.withoutNumber > 0) {
        log().warning("%d channels are left out: their antenna has no number left", list.withoutNumber);
    }
}

void warnOfBounds(const BoundedGuide& bounded) {
    if (bounded.dropped > 0) {
        log().warning("%d programmes are left out: the guide cache and the plug-in's table hold no more",
                      bounded.dropped);
    }
    if (bounded.exceedsTable) {
        log().warning("the guide is larger than the plug-in's table, which will not hold all of it");
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

/// Adds a channel and its programmes.
void addChannel(GuideBuilder& builder, Channel channel, std::span<const ScheduledProgramme> programmes,
                EventIds& ids) {
    std::vector<std::uint32_t> starts;
    starts.reserve(programmes.size());
    for (const ScheduledProgramme& programme : programmes)
        starts.push_back(programme.start);
    const std::vector<std::uint16_t> given = ids.assign(channel.id, starts);
    const bool scrambled = channel.scrambled;
    const std::size_t handle = builder.addChannel(std::move(channel));
    for (std::size_t index = 0; index < programmes.size(); ++index) {
        const ScheduledProgramme& programme = programmes[index];
        GuideBuilder::ProgrammeDraft draft;
        draft.start = programme.start;
        draft.stop = programme.stop;
        draft.eventId = given[index];
        draft.scrambled = scrambled;
        draft.title = programme.title;
        draft.synopsis = programme.synopsis;
        if (programme.inSeries) draft.series = programme.title;
        builder.addProgramme(handle, draft);
    }
}

/// Sorted, bounded and with its ids, of what the guides hold.
LoadedGuide load(const std::function<void(GuideCollector&)>& collect, const GuideSources& sources,
                 EventIds& ids) {
    const Lineup lineup = sources.lineup ? Lineup(*sources.lineup) : Lineup();
    const auto isHidden = [&lineup](const std::string& id) {
        const LineupEntry* const entry = lineup.find(id);
        return entry && entry->hidden;
    };
    GuideCollector collector({sources.maxProgrammes, sources.now, isHidden});
    collect(collector);

    ChannelList list = listChannels(collector.channels, lineup);
    placeProgrammes(collector, list);
    sortChannels(list, collector.programmes);
    auto programmes = mergeProgrammes(std::exchange(collector.programmes, {}), collector.texts);
    const BoundedGuide bounded =
        applyBounds(programmes, list.channels, {sources.maxProgrammes, kTablePages, sources.now});

    LoadedGuide loaded;
    warnOfChannels(sources, lineup, list);
    for (std::size_t index = 0; index < collector.counts().size(); ++index) {
        const GuideCounts& counts = collector.counts()[index];
        if (index < sources.guides.size()) warnOfGuide(sources.guides[index].name, counts);
        loaded.contents.push_back({counts.channels, counts.programmes, counts.skippedProgrammes()});
        loaded.programmesSkipped += counts.skippedProgrammes();
    }
    warnOfBounds(bounded);

    GuideBuilder builder(std::exchange(collector.texts, {}));
    ids.startGuide();
    auto first = programmes.cbegin();
    std::uint32_t position = 0;
    for (Channel& channel : list.channels) {
        const auto last = std::find_if(first, programmes.cend(),
                                       [&](const auto& programme) { return programme.channel != position; });
        addChannel(builder, std::move(channel), {first, last}, ids);
        first = last;
        ++position;
    }
    builder.setProgrammesDropped(bounded.dropped);
    loaded.guide = builder.finish();
    loaded.fitsUntil = bounded.fitsUntil;
    return loaded;
}

}  // namespace

LoadedGuide loadGuideOf(const std::function<void(GuideCollector&)>& collect, const GuideSources& sources,
                        EventIds& ids) {
    const auto began = std::chrono::steady_clock::now();
    LoadedGuide loaded = load(collect, sources, ids);
    // What loading took for a while lies between what stays; the system gets it back page by page.
    ::malloc_trim(0);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    log().debug("%d channels, %d programmes, %d skipped, in %.3f s", loaded.guide->channels().size(),
                loaded.guide->programmes().size(), loaded.programmesSkipped, took.count());
    return loaded;
}

LoadedGuide loadGuide(const GuideSources& sources, EventIds& ids) {
    const auto readFiles = [&](GuideCollector& collector) { readGuides(sources.guides, collector); };
    return loadGuideOf(readFiles, sources, ids);
}

}  // namespace epgset
