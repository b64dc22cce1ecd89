#include "set/demo/DemoSchedule.h"

namespace epgset {
namespace {

using enum DemoKind;

constexpr int minutesADay = 24 * 60;

constexpr bool fillsDays(std::span<const DemoSlot> slots) {
    int minutes = 0;
    for (const DemoSlot& slot : slots)
        minutes += slot.minutes;
    return minutes > 0 && minutesADay % minutes == 0;
}

constexpr DemoSlot general[] = {
    {90, Film},        {60, Documentary},                                     // 00:00
    {90, Music},       {60, Series},      {60, Magazine},                     // 02:30
    {30, News},        {30, Children},    {30, News},        {30, Children},  // 06:00
    {60, Magazine},    {30, Children},    {30, Series},                       // 08:00
    {45, Documentary}, {15, News},        {60, Magazine},                     // 10:00
    {30, News},        {30, Series},      {120, Film},                        // 12:00
    {30, Children},    {30, Children},    {45, Documentary}, {15, Children},  // 15:00
    {30, News},        {60, Magazine},    {30, Series},                       // 17:00
    {30, News},        {45, Series},      {105, Film},                        // 19:00
    {30, News},        {60, Documentary}, {30, Music},                        // 22:00
};
static_assert(fillsDays(general));

constexpr DemoSlot news[] = {
    {30, News}, {15, Weather}, {45, Report},   {30, News},
    {30, Talk}, {30, News},    {30, Business}, {30, Documentary},
};
static_assert(fillsDays(news));

constexpr DemoSlot film[] = {
    {120, Film}, {90, Film}, {30, Talk},  {105, Film}, {15, Short},
    {120, Film}, {90, Film}, {30, Short}, {120, Film},
};
static_assert(fillsDays(film));

constexpr DemoSlot sport[] = {
    {30, Sport},  {120, Match}, {60, Sport},  {90, Match}, {30, Sport},
    {180, Match}, {30, Sport},  {120, Match}, {60, Sport},
};
static_assert(fillsDays(sport));

constexpr DemoSlot childrens[] = {
    {15, Cartoon},  {30, Children}, {15, Cartoon}, {30, Children}, {15, Cartoon},  {15, Cartoon},
    {30, Children}, {30, Children}, {15, Cartoon}, {30, Cartoon},  {15, Children},
};
static_assert(fillsDays(childrens));

constexpr DemoSlot music[] = {
    {60, Music}, {60, Music}, {90, Concert}, {30, Music}, {60, Music}, {60, Concert},
};
static_assert(fillsDays(music));

constexpr DemoSlot documentary[] = {
    {60, Documentary}, {45, Documentary}, {15, Short},  {30, Report},      {60, Documentary},
    {30, Documentary}, {30, Talk},        {60, Report}, {30, Documentary},
};
static_assert(fillsDays(documentary));

constexpr DemoSlot radio[] = {
    {15, News}, {105, Music}, {15, News}, {45, Talk}, {60, Concert},
};
static_assert(fillsDays(radio));

}  // namespace

std::span<const DemoSlot> generalDay() {
    return general;
}
std::span<const DemoSlot> newsDay() {
    return news;
}
std::span<const DemoSlot> filmDay() {
    return film;
}
std::span<const DemoSlot> sportDay() {
    return sport;
}
std::span<const DemoSlot> childrensDay() {
    return childrens;
}
std::span<const DemoSlot> musicDay() {
    return music;
}
std::span<const DemoSlot> documentaryDay() {
    return documentary;
}
std::span<const DemoSlot> radioDay() {
    return radio;
}

}  // namespace epgset
