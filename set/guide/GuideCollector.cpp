#include "set/guide/GuideCollector.h"

#include <charconv>

#include "set/guide/ChannelNumbers.h"
#include "set/guide/TextLimits.h"
#include "set/guide/XmltvTime.h"

namespace epgset {

ClumpPart readClumpPart(std::string_view text) {
    ClumpPart part;
    const char* const end = text.data() + text.size();
    const auto index = std::from_chars(text.data(), end, part.index);
    if (index.ec != std::errc() || index.ptr == end || *index.ptr != '/') return {};
    const auto count = std::from_chars(index.ptr + 1, end, part.count);
    if (count.ec != std::errc() || count.ptr != end || part.index >= part.count) return {};
    return part;
}

void GuideCollector::channel(const XmltvChannel& channel) {
    ++counts_.back().channels;
    if (channel.id.empty()) {
        ++counts_.back().channelsWithoutId;
        return;
    }
    CollectedChannel& known = channels[channelIndex(channel.id)];
    if (known.defined) return;
    known.defined = true;
    known.displayNames = channel.displayNames;
    known.lcn = channel.lcn;
    // Cut where the channel is named: as a number, a text of any length is read whole.
    if (channelName(known.displayNames, known.id).size() > kLongestName) ++counts_.back().textsCut;
}

void GuideCollector::programme(const XmltvProgramme& programme) {
    GuideCounts& counts = counts_.back();
    ++counts.programmes;
    const auto start = readXmltvTime(programme.start);
    const auto stop = readXmltvTime(programme.stop);
    if (!start) {
        ++counts.withoutStart;
        return;
    }
    if (stop && *stop < *start) {
        ++counts.endingBeforeStart;
        return;
    }
    CollectedProgramme& added = programmes.emplace_back();
    added.channel = channelIndex(programme.channel);
    added.guide = static_cast<std::uint32_t>(counts_.size() - 1);
    added.start = *start;
    added.stop = stop;
    added.clump = readClumpPart(programme.clumpidx);
    added.inSeries = programme.episode;
    added.title = keep(programme.title, kLongestName);
    added.synopsis = keep(programme.synopsis, kLongestSynopsis);
}

std::string_view GuideCollector::keep(std::string_view text, std::size_t limit) {
    if (text.size() > limit) ++counts_.back().textsCut;
    return texts.add(cutToLimit(text, limit));
}

std::uint32_t GuideCollector::channelIndex(const std::string& id) {
    const auto [found, isNew] = indexOfId_.try_emplace(id, static_cast<std::uint32_t>(channels.size()));
    if (isNew) channels.emplace_back().id = id;
    return found->second;
}

}  // namespace epgset
