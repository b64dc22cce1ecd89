// What the demo guide is made of.
#pragma once

#include <span>
#include <string_view>

namespace epgset {

/// What a programme of the demo guide is, and so where in the day it stands.
enum class DemoKind {
    News,
    Weather,
    Business,
    Report,
    Talk,
    Magazine,
    Series,
    Film,
    Short,
    Documentary,
    Children,
    Cartoon,
    Music,
    Concert,
    Sport,
    Match,
};
inline constexpr std::size_t demoKindCount = 16;

/// One programme that is shown again and again. All names are invented.
struct DemoShow {
    DemoKind kind;
    std::string_view title;
    std::string_view synopsis;
};

// One table of shows a language. The English one has some of every kind; each of the others has news,
// magazines, series, films, documentaries, programmes for children and music.
std::span<const DemoShow> englishShows();
std::span<const DemoShow> frenchShows();
std::span<const DemoShow> czechShows();
std::span<const DemoShow> greekShows();
std::span<const DemoShow> russianShows();
std::span<const DemoShow> arabicShows();
std::span<const DemoShow> hebrewShows();
std::span<const DemoShow> hindiShows();
std::span<const DemoShow> japaneseShows();
std::span<const DemoShow> chineseShows();
std::span<const DemoShow> koreanShows();

}  // namespace epgset
