#include "set/middleware/GuideTelevision.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "set/guide/Guide.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/Television.h"

namespace epgset {

namespace {

/// The keys of one reception mode's channels.
class KeySource : public TCObjectSortedList::Source {
public:
    KeySource(std::shared_ptr<const Guide> guide, const ReceptionMode& mode)
        : guide_(std::move(guide)),
          channels_(guide_->channelsOf(mode.tvMode)),
          sourceType_(mode.sourceType) {}

    int Count() const override { return static_cast<int>(channels_.size()); }

    void Make(int index, std::optional<TCChannelKey>& key) const override {
        const Channel& channel = channels_[static_cast<std::size_t>(index)];
        key.emplace(sourceType_, channel.major, channel.minor,
                    static_cast<int>(&channel - guide_->channels().data()));
    }

private:
    std::shared_ptr<const Guide> guide_;
    std::span<const Channel> channels_;
    int sourceType_;
};

/// Programmes of one channel: all that stand side by side in `programmes`, or those of them that `picked`
/// names by their places.
class ProgrammeSource : public CCSortedList::Source {
public:
    ProgrammeSource(std::shared_ptr<const Guide> guide, std::span<const Programme> programmes)
        : guide_(std::move(guide)), programmes_(programmes), count_(programmes.size()) {}

    ProgrammeSource(std::shared_ptr<const Guide> guide, std::span<const Programme> programmes,
                    std::vector<std::uint32_t> picked)
        : guide_(std::move(guide)),
          programmes_(programmes),
          picked_(std::move(picked)),
          count_(picked_.size()) {}

    int Count() const override { return static_cast<int>(count_); }

    void Make(int index, std::optional<TCProgram>& program) const override {
        const auto entry = static_cast<std::size_t>(index);
        const Programme& programme = programmes_[picked_.empty() ? entry : picked_[entry]];
        program.emplace(std::shared_ptr<const Programme>(guide_, &programme),
                        &guide_->channels()[programme.channel]);
    }

private:
    std::shared_ptr<const Guide> guide_;
    std::span<const Programme> programmes_;
    std::vector<std::uint32_t> picked_;  ///< empty: all
    std::size_t count_;
};

/// How callers ask for everything: start 0 and no end that fits 32 bits.
constexpr long long wholeDuration = 4294967295LL;

/// Places of the programmes that are on between `start` and `end`. A guide may let programmes overlap, so
/// their ends need not ascend as their starts do, and each is looked at.
std::vector<std::uint32_t> placesWithin(std::span<const Programme> programmes, long long start,
                                        long long end) {
    std::vector<std::uint32_t> places;
    for (std::uint32_t place = 0; place < programmes.size() && programmes[place].start < end; ++place) {
        if (programmes[place].stop > start) places.push_back(place);
    }
    return places;
}

std::shared_ptr<const CCSortedList::Source> programmesWithin(std::shared_ptr<const Guide> guide,
                                                             std::span<const Programme> programmes,
                                                             long long start, long long duration) {
    if (start == 0 && duration >= wholeDuration && !programmes.empty()) {
        return std::make_shared<ProgrammeSource>(std::move(guide), programmes);
    }
    if (duration <= 0) return nullptr;
    constexpr long long never = std::numeric_limits<long long>::max();
    const long long end = start > 0 && duration > never - start ? never : start + duration;
    std::vector<std::uint32_t> places = placesWithin(programmes, start, end);
    if (places.empty()) return nullptr;
    return std::make_shared<ProgrammeSource>(std::move(guide), programmes, std::move(places));
}

}  // namespace

int GuideTelevision::GetChannelKeyList(TCObjectSortedList* list, const TCChannel* pattern, int* count) {
    list->Create();
    const int mode = receptionModeBySourceType(pattern->Type());
    if (mode >= 0) {
        list->Fill(
            std::make_shared<KeySource>(currentGuide(), receptionModes()[static_cast<std::size_t>(mode)]));
    }
    if (count) *count = list->Size();
    return list->Size() > 0 ? 1 : 0;
}

int GuideTelevision::ExistChannel(const TCChannelKey* pKey, TCChannel* pChannel, int /*reserved*/) {
    const int mode = receptionModeBySourceType(pKey->SourceType());
    if (mode < 0) return 0;
    std::shared_ptr<const Guide> guide = currentGuide();
    const int tvMode = receptionModes()[static_cast<std::size_t>(mode)].tvMode;
    const auto place = static_cast<std::size_t>(pKey->Place());
    const Channel* channel = guide->find(tvMode, pKey->Major(), pKey->Minor(), place);
    if (!channel) return 0;
    *pChannel = TCChannel(std::shared_ptr<const Channel>(std::move(guide), channel));
    return 1;
}

int GuideTelevision::GetProgramList(CCSortedList* list, const TCChannel* channel, long long start,
                                    long long duration) {
    list->Create();
    std::shared_ptr<const Guide> guide = currentGuide();
    const Channel* known = channel->SourceChannel();
    if (!guide->holds(known)) known = guide->find(channel->TvMode(), channel->Major(), channel->Minor());
    if (!known) return 0;
    const std::span<const Programme> programmes = guide->programmesOf(*known);
    list->Fill(programmesWithin(std::move(guide), programmes, start, duration));
    return list->Size() > 0 ? 1 : 0;
}

void GuideTelevision::GetTimeZone(int* reserved, int* minutesEast) {
    if (reserved) *reserved = 0;
    if (minutesEast) *minutesEast = clock().zoneMinutes();
}

}  // namespace epgset
