#include "set/guide/ProgrammeMerge.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>

#include "set/guide/TextLimits.h"

namespace epgset {
namespace {

constexpr std::int64_t kDefaultSeconds = 1800;

bool sameStart(const CollectedProgramme& left, const CollectedProgramme& right) {
    return left.channel == right.channel && left.start == right.start;
}

/// The parts of a clump as one programme. `parts` is not empty.
CollectedProgramme joined(const std::map<std::uint16_t, const CollectedProgramme*>& parts, TextPool& texts) {
    CollectedProgramme whole = *parts.begin()->second;
    std::string title;
    for (const auto& [index, part] : parts) {
        if (title.size() < kLongestName) {
            if (!title.empty() && !part->title.empty()) title += " / ";
            title += part->title;
        }
        whole.stop = std::max(whole.stop, part->stop);  // a missing one counts as the earliest
        whole.inSeries = whole.inSeries || part->inSeries;
        if (whole.synopsis.empty()) whole.synopsis = part->synopsis;
    }
    whole.title = texts.add(cutToLimit(title, kLongestName));
    return whole;
}

/// What counts of programmes that have one channel and start, given in file order.
CollectedProgramme resolve(std::span<const CollectedProgramme> rivals, TextPool& texts) {
    const CollectedProgramme& last = rivals.back();
    std::map<std::uint16_t, const CollectedProgramme*> parts;
    // Parts stand together: what comes before something that is not of the same clump counts no more.
    for (std::size_t place = rivals.size(); place-- > 0;) {
        const CollectedProgramme& rival = rivals[place];
        if (last.clump.count < 2 || rival.clump.count != last.clump.count) break;
        parts.try_emplace(rival.clump.index, &rival);
    }
    return parts.size() < 2 ? last : joined(parts, texts);
}

std::uint32_t defaultStop(std::uint32_t start) {
    constexpr std::int64_t kLast = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(start + kDefaultSeconds, kLast));
}

}  // namespace

std::vector<ScheduledProgramme> mergeProgrammes(std::vector<CollectedProgramme> programmes, TextPool& texts) {
    std::stable_sort(programmes.begin(), programmes.end(),
                     [](const CollectedProgramme& left, const CollectedProgramme& right) {
                         return std::tie(left.channel, left.start) < std::tie(right.channel, right.start);
                     });
    std::vector<ScheduledProgramme> schedule;
    schedule.reserve(programmes.size());
    for (auto first = programmes.begin(); first != programmes.end();) {
        const auto next = std::find_if_not(first, programmes.end(),
                                           [&](const auto& other) { return sameStart(*first, other); });
        const CollectedProgramme one = resolve({first, next}, texts);
        std::uint32_t stop = defaultStop(one.start);
        if (one.stop) {
            stop = *one.stop;
        } else if (next != programmes.end() && next->channel == one.channel) {
            stop = next->start;
        }
        schedule.push_back({one.channel, one.start, stop, one.inSeries, one.title, one.synopsis});
        first = next;
    }
    return schedule;
}

}  // namespace epgset
