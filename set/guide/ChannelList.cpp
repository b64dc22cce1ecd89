#include "set/guide/ChannelList.h"

#include <optional>
#include <utility>

#include "set/guide/ChannelNumbers.h"
#include "set/guide/TextLimits.h"

namespace epgset {
namespace {

/// A channel that is shown, while its number is looked for.
struct Candidate {
    Channel channel;
    std::optional<ChannelNumber> number;
    const CollectedChannel* collected;  ///< null: only the line-up has it
    std::size_t collectedIndex = 0;
};

/// What the line-up states of a channel, else the guide, else the defaults.
Candidate candidateFor(const std::string& id, const LineupEntry* entry, const CollectedChannel* collected) {
    Candidate candidate{{}, std::nullopt, collected};
    Channel& channel = candidate.channel;
    channel.id = id;
    if (entry != nullptr) {
        channel.tvMode = entry->tvMode;
        channel.digital = entry->digital;
        channel.scrambled = entry->scrambled;
        channel.serviceType = entry->serviceType;
        channel.source = entry->source;
        candidate.number = entry->number;
    } else if (collected != nullptr) {
        channel.tvMode = collected->tvMode;
        channel.scrambled = collected->scrambled;
        channel.serviceType = collected->serviceType;
    }
    if (collected != nullptr) channel.programNumber = collected->programNumber;
    if (entry != nullptr && entry->name) {
        channel.name = *entry->name;
    } else {
        channel.name = collected == nullptr ? id : channelName(collected->displayNames, id);
    }
    channel.name.resize(cutToLimit(channel.name, kLongestName).size());
    return candidate;
}

/// The numbers that a guide states for a channel, the one that counts first.
std::vector<ChannelNumber> statedNumbers(const CollectedChannel& channel) {
    std::vector<ChannelNumber> numbers;
    if (const auto number = readChannelNumber(channel.lcn)) numbers.push_back(*number);
    for (const std::string& name : channel.displayNames) {
        if (const auto number = readChannelNumber(name)) numbers.push_back(*number);
    }
    return numbers;
}

void findNumbers(std::vector<Candidate>& candidates) {
    NumberPlan plan;
    for (const Candidate& candidate : candidates) {  // the line-up has no number twice
        if (candidate.number) plan.take(candidate.channel.tvMode, *candidate.number);
    }
    for (Candidate& candidate : candidates) {
        if (candidate.number || candidate.collected == nullptr) continue;
        for (const ChannelNumber stated : statedNumbers(*candidate.collected)) {
            if (!plan.take(candidate.channel.tvMode, stated)) continue;
            candidate.number = stated;
            break;
        }
    }
    for (Candidate& candidate : candidates) {
        if (!candidate.number) candidate.number = plan.takeLowestFree(candidate.channel.tvMode);
    }
}

std::vector<Candidate> findCandidates(const std::vector<CollectedChannel>& collected, const Lineup& lineup,
                                      ChannelList& list) {
    std::vector<Candidate> candidates;
    std::vector<bool> met(lineup.entries().size(), false);
    for (std::size_t index = 0; index < collected.size(); ++index) {
        const LineupEntry* const entry = lineup.find(collected[index].id);
        if (entry == nullptr && !collected[index].defined) continue;
        if (entry != nullptr && !collected[index].defined) list.missing.push_back(entry->id);
        if (entry != nullptr) met[static_cast<std::size_t>(entry - lineup.entries().data())] = true;
        if (entry != nullptr && entry->hidden) {
            list.places[index].fate = ChannelList::Fate::Hidden;
            continue;
        }
        candidates.push_back(candidateFor(collected[index].id, entry, &collected[index]));
        candidates.back().collectedIndex = index;
    }
    std::size_t at = 0;
    for (const LineupEntry& entry : lineup.entries()) {
        if (met[at++]) continue;
        list.missing.push_back(entry.id);
        if (!entry.hidden) candidates.push_back(candidateFor(entry.id, &entry, nullptr));
    }
    return candidates;
}

}  // namespace

ChannelList listChannels(const std::vector<CollectedChannel>& collected, const Lineup& lineup) {
    ChannelList list;
    list.places.resize(collected.size());
    std::vector<Candidate> candidates = findCandidates(collected, lineup, list);
    findNumbers(candidates);
    for (Candidate& candidate : candidates) {
        ChannelList::Place place{ChannelList::Fate::Hidden, 0};
        if (candidate.number) {
            place = {ChannelList::Fate::Shown, list.channels.size()};
            candidate.channel.major = candidate.number->major;
            candidate.channel.minor = candidate.number->minor;
            list.channels.push_back(std::move(candidate.channel));
        } else {
            ++list.withoutNumber;
        }
        if (candidate.collected != nullptr) list.places[candidate.collectedIndex] = place;
    }
    return list;
}

}  // namespace epgset
