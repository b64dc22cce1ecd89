#include "set/demo/SampleTexts.h"

#include <array>

namespace epgset {
namespace {

std::span<const DemoShow> showsOf(std::size_t channel) {
    static const auto others = std::to_array<std::span<const DemoShow>>(
        {frenchShows(), czechShows(), greekShows(), russianShows(), arabicShows(), hebrewShows(),
         hindiShows(), japaneseShows(), chineseShows(), koreanShows()});
    return channel % 4 == 3 ? others[channel / 4 % others.size()] : englishShows();
}

/// What a synopsis holds at least, in bytes: real ones are as unlike.
constexpr std::size_t shortestSynopsis = 60;
constexpr std::size_t synopsisSpread = 620;

}  // namespace

SampleRandom::SampleRandom(std::uint64_t seed, std::uint64_t channel) {
    std::seed_seq start{seed & 0xFFFFFFFFU, seed >> 32U, channel};
    engine_.seed(start);
}

SampleTexts::SampleTexts(std::size_t channel, SampleRandom& random)
    : shows_(showsOf(channel)), random_(random) {}

SampleProgramme SampleTexts::next() {
    const DemoShow& show = anyShow();
    SampleProgramme programme;
    programme.title = show.title;
    if (random_.below(3) == 0) programme.title.append(": ").append(anyShow().title);
    if (random_.below(20) == 0) return programme;  // some have no more than their title
    const std::size_t wanted = shortestSynopsis + random_.below(synopsisSpread);
    programme.synopsis = show.synopsis;
    while (programme.synopsis.size() < wanted)
        programme.synopsis.append(" ").append(anyShow().synopsis);
    if (random_.below(3) == 0) {
        programme.season = 1 + random_.below(12);
        programme.episode = 1 + random_.below(24);
        programme.synopsis.append(" (S" + std::to_string(programme.season) + " Ep" +
                                  std::to_string(programme.episode) + ")");
    }
    return programme;
}

}  // namespace epgset
