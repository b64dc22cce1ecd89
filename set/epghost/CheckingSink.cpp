#include "set/epghost/CheckingSink.h"

#include <fmt/format.h>

#include "set/guide/XmltvReader.h"
#include "set/middleware/ChannelTexts.h"

namespace epgset {
namespace {

std::string inQuotes(const std::string& text) {
    return '"' + text + '"';
}

std::string textOf(ChannelNumber number) {
    return channelNumberText(number.major, number.minor);
}

}  // namespace

void CheckingSink::read(const std::string& file, std::vector<GuideError>& faults) {
    collector_.startGuide();
    report_.guides.emplace_back().file = file;
    try {
        readXmltv(file, *this);
        if (counts().records() == 0) warn(here(0), "the guide has no channel and no programme");
    } catch (const GuideError& fault) {
        faults.push_back(fault);
    }
    report_.guides.back().counts = counts();
}

void CheckingSink::channel(const XmltvChannel& channel) {
    const std::size_t cut = counts().textsCut;
    collector_.channel(channel);
    const Place place = here(channel.line);
    if (counts().textsCut > cut) warn(place, "the name of the channel is too long, it is cut");
    if (channel.id.empty()) {
        warn(place, "a channel without an id is skipped");
        return;
    }
    const auto [known, isNew] = definedAt_.try_emplace(channel.id, place);
    if (isNew) {
        noteNumber(channel);
    } else if (known->second.guide == place.guide) {
        warn(place, fmt::format("the channel {} stands in line {} already, which counts",
                                inQuotes(channel.id), known->second.line));
    }
}

void CheckingSink::programme(const XmltvProgramme& programme) {
    const GuideCounts before = counts();
    collector_.programme(programme);
    const Place place = here(programme.line);
    if (counts().withoutStart > before.withoutStart) {
        warn(place, "a programme without a readable start is skipped: " + inQuotes(programme.start));
    } else if (counts().endingBeforeStart > before.endingBeforeStart) {
        warn(place, fmt::format("a programme that ends before it starts is skipped: from {} to {}",
                                inQuotes(programme.start), inQuotes(programme.stop)));
    } else if (!defines(programme.channel)) {
        Strays& strays = strays_[{place.guide, programme.channel}];
        if (strays.count++ == 0) strays.firstLine = programme.line;
    } else {
        noteSameStart(programme);
    }
    if (counts().textsCut > before.textsCut) warn(place, "a text of the programme is too long, it is cut");
}

void CheckingSink::noteStrays(const Lineup& lineup) {
    for (const auto& [key, strays] : strays_) {
        const auto& [guide, id] = key;
        if (defines(id) || lineup.find(id) != nullptr) continue;
        report_.guides[guide].counts.ofUnknownChannel += strays.count;
        warn({guide, strays.firstLine},
             fmt::format("no guide has the channel {}: its {} programmes here are skipped, this is the first",
                         inQuotes(id), strays.count));
    }
}

void CheckingSink::noteNumbers(const Guide& guide, const Lineup& lineup) {
    for (const Channel& channel : guide.channels()) {
        const auto stated = numbers_.find(channel.id);
        const LineupEntry* const entry = lineup.find(channel.id);
        if (stated == numbers_.end() || (entry != nullptr && entry->number)) continue;
        const ChannelNumber number{channel.major, channel.minor};
        if (stated->second.number == number) continue;
        warn(stated->second.place,
             fmt::format("the number {} of the channel {} is taken, it has {}", textOf(stated->second.number),
                         inQuotes(channel.id), textOf(number)));
    }
}

void CheckingSink::noteNumber(const XmltvChannel& channel) {
    std::vector<std::string> texts = channel.displayNames;
    texts.insert(texts.begin(), channel.lcn);
    for (const std::string& text : texts) {
        if (const auto number = readChannelNumber(text)) {
            numbers_[channel.id] = {here(channel.line), *number};
            return;
        }
    }
}

void CheckingSink::noteSameStart(const XmltvProgramme& programme) {
    const CollectedProgramme& read = collector_.programmes.back();
    const Slot slot{std::uint64_t{read.channel} << 32U | read.start, read.clump.index};
    const Place place = here(programme.line);
    const auto [known, isNew] = slots_.try_emplace(slot, place);
    if (isNew) return;
    // Guides that are given together may well overlap.
    if (known->second.guide == place.guide) {
        warn(known->second,
             fmt::format("the programme in line {} starts with it on the channel and takes its place",
                         programme.line));
        ++report_.guides[place.guide].sameStart;
    }
    known->second = place;
}

void CheckingSink::warn(const Place& place, const std::string& message) {
    report_.findings.push_back({false, report_.guides[place.guide].file, place.line, message});
}

}  // namespace epgset
