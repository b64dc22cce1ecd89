#include "set/guide/GuideCollector.h"

#include <algorithm>
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
    if (bounds_.programmes > 0 && programmes.size() >= nextLook_) {
        forgetTexts();
        nextLook_ = programmes.size() + bounds_.programmes;
    }
}

void GuideCollector::forgetTexts() {
    const std::optional<std::uint32_t> last = lastStartThatMayStay();
    if (!last) return;
    TextPool kept;
    for (CollectedProgramme& programme : programmes) {
        const bool ended = programme.stop && *programme.stop <= bounds_.now;
        const bool goes = ended || programme.start > *last;
        programme.title = goes ? std::string_view() : kept.add(programme.title);
        programme.synopsis = goes ? std::string_view() : kept.add(programme.synopsis);
    }
    texts = std::move(kept);
}

// Counted are programmes that no other can take the place of, and a quarter more of them than may stay, for
// those whose end another programme of the same start changes.
std::optional<std::uint32_t> GuideCollector::lastStartThatMayStay() const {
    std::vector<bool> shown;
    shown.reserve(channels.size());
    for (const CollectedChannel& channel : channels)
        shown.push_back(channel.defined && !bounds_.hidden(channel.id));
    std::vector<std::uint64_t> sure;  // start, then channel
    for (const CollectedProgramme& programme : programmes) {
        if (!shown[programme.channel] || !programme.stop || *programme.stop <= bounds_.now) continue;
        sure.push_back(std::uint64_t{programme.start} << 32U | programme.channel);
    }
    std::ranges::sort(sure);
    // Not std::ranges::unique, whose answer clang++ 14 does not compile.
    sure.erase(std::unique(sure.begin(), sure.end()), sure.end());
    const std::size_t wanted = bounds_.programmes + bounds_.programmes / 4;
    if (sure.size() < wanted) return std::nullopt;
    return static_cast<std::uint32_t>(sure[wanted - 1] >> 32U);
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
