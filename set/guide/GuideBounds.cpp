#include "set/guide/GuideBounds.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include "set/guide/EventIds.h"
#include "set/guide/TableEstimate.h"

namespace epgset {
namespace {

constexpr std::int64_t kDay = 24 * 3600;
// The plug-in fills its table with seven days, and the middleware may count in the time of a zone, at most 14
// hours ahead.
constexpr std::int64_t kTableHorizon = 7 * kDay + 14 * 3600;
// What is counted reaches further, so that a table that was just filled to its bound holds for some hours and
// need not be bounded again when the very next programme comes near.
constexpr std::int64_t kCountedHorizon = 8 * kDay;

using Indices = std::vector<std::uint32_t>;

/// Decides which programmes stay.
class Bounding {
public:
    Bounding(const std::vector<ScheduledProgramme>& programmes, const std::vector<Channel>& channels,
             const GuideBounds& bounds)
        : programmes_(programmes), channels_(channels), bounds_(bounds), kept_(programmes.size(), true) {
        orderForDropping();
    }

    void holdEventIds();
    void holdNumber();
    void holdTable();
    bool exceedsTable() const { return table().pages() > bounds_.maxTablePages; }
    std::optional<std::int64_t> fitsUntil() const;

    const std::vector<bool>& kept() const { return kept_; }

private:
    void orderForDropping();
    bool inTable(std::uint32_t index) const;
    std::size_t rowBytes(std::uint32_t index) const;
    TableEstimate table() const;

    const std::vector<ScheduledProgramme>& programmes_;
    const std::vector<Channel>& channels_;
    const GuideBounds& bounds_;
    std::vector<bool> kept_;
    Indices order_;  ///< in which programmes are dropped
};

void Bounding::orderForDropping() {
    order_.resize(programmes_.size());
    std::iota(order_.begin(), order_.end(), 0U);
    const auto rank = [&](std::uint32_t index) {
        const ScheduledProgramme& programme = programmes_[index];
        const bool ended = programme.stop <= bounds_.now;
        const std::int64_t start = programme.start;
        return std::tuple(!ended, ended ? start : -start);
    };
    std::stable_sort(order_.begin(), order_.end(),
                     [&](std::uint32_t left, std::uint32_t right) { return rank(left) < rank(right); });
}

void Bounding::holdEventIds() {
    std::vector<std::size_t> ofChannel(channels_.size(), 0);
    for (const ScheduledProgramme& programme : programmes_)
        ++ofChannel[programme.channel];
    for (const std::uint32_t index : order_) {
        std::size_t& count = ofChannel[programmes_[index].channel];
        if (count <= EventIds::kIdsOfChannel) continue;
        kept_[index] = false;
        --count;
    }
}

void Bounding::holdNumber() {
    auto count = static_cast<std::size_t>(std::count(kept_.begin(), kept_.end(), true));
    for (const std::uint32_t index : order_) {
        if (count <= bounds_.maxProgrammes) return;
        if (!kept_[index]) continue;
        kept_[index] = false;
        --count;
    }
}

void Bounding::holdTable() {
    Indices rows;  // in the order in which they are dropped
    std::copy_if(order_.begin(), order_.end(), std::back_inserter(rows),
                 [&](std::uint32_t index) { return kept_[index] && inTable(index); });
    // The least number of rows to drop, found by halving; each trial fills an estimated table.
    const auto fits = [&](std::size_t dropped) {
        for (std::size_t at = 0; at < rows.size(); ++at)
            kept_[rows[at]] = at >= dropped;
        return table().pages() <= bounds_.maxTablePages;
    };
    if (fits(0)) return;
    std::size_t tooFew = 0;
    std::size_t enough = rows.size();
    while (enough - tooFew > 1) {
        const std::size_t middle = tooFew + (enough - tooFew) / 2;
        (fits(middle) ? enough : tooFew) = middle;
    }
    fits(enough);
}

bool Bounding::inTable(std::uint32_t index) const {
    const ScheduledProgramme& programme = programmes_[index];
    // The plug-in compares in signed 32 bits, where times from 2038 on are long past.
    return channels_[programme.channel].digital &&
           static_cast<std::int32_t>(programme.start) - kCountedHorizon <= bounds_.now;
}

std::size_t Bounding::rowBytes(std::uint32_t index) const {
    const ScheduledProgramme& programme = programmes_[index];
    return programmeRowBytes(channels_[programme.channel], programme.title);
}

TableEstimate Bounding::table() const {
    TableEstimate estimate;
    std::vector<bool> hasProgramme(channels_.size(), false);
    for (std::uint32_t index = 0; index < programmes_.size(); ++index) {
        if (!kept_[index]) continue;
        hasProgramme[programmes_[index].channel] = true;
        if (inTable(index)) estimate.addRow(rowBytes(index));
    }
    for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
        if (!hasProgramme[channel] && channels_[channel].digital)
            estimate.addRow(stubRowBytes(channels_[channel]));
    }
    return estimate;
}

std::optional<std::int64_t> Bounding::fitsUntil() const {
    Indices later;
    for (std::uint32_t index = 0; index < programmes_.size(); ++index) {
        if (kept_[index] && channels_[programmes_[index].channel].digital && !inTable(index))
            later.push_back(index);
    }
    std::stable_sort(later.begin(), later.end(), [&](std::uint32_t left, std::uint32_t right) {
        return programmes_[left].start < programmes_[right].start;
    });
    TableEstimate estimate = table();
    for (const std::uint32_t index : later) {
        estimate.addRow(rowBytes(index));
        if (estimate.pages() > bounds_.maxTablePages) return programmes_[index].start - kTableHorizon;
    }
    return std::nullopt;
}

}  // namespace

BoundedGuide applyBounds(std::vector<ScheduledProgramme>& programmes, const std::vector<Channel>& channels,
                         const GuideBounds& bounds) {
    Bounding bounding(programmes, channels, bounds);
    BoundedGuide result;
    bounding.holdEventIds();
    if (bounds.maxProgrammes > 0) {
        bounding.holdNumber();
        bounding.holdTable();
        result.fitsUntil = bounding.fitsUntil();
    } else {
        result.exceedsTable = bounding.exceedsTable();
    }
    std::size_t at = 0;
    result.dropped =
        std::erase_if(programmes, [&](const ScheduledProgramme&) { return !bounding.kept()[at++]; });
    return result;
}

}  // namespace epgset
