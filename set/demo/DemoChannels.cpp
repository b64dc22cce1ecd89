#include "set/demo/DemoChannels.h"

#include <array>

namespace epgset {

std::span<const DemoChannel> demoChannels() {
    // A place in this list sets where a channel begins in its shows, which keeps channels of one genre apart.
    static const auto channels = std::to_array<DemoChannel>({
        {"AIR", 1, 0, "Meridian One", generalDay(), englishShows()},
        {"AIR", 2, 0, "Meridian Two", documentaryDay(), englishShows()},
        {"AIR", 3, 0, "Harbour News", newsDay(), englishShows()},
        {"AIR", 4, 0, "Lantern Film", filmDay(), englishShows()},
        {"AIR", 5, 0, "Track & Field", sportDay(), englishShows()},
        {"AIR", 6, 0, "Pebble Kids", childrensDay(), englishShows()},
        {"AIR", 7, 1, "Valley TV", generalDay(), englishShows()},
        {"AIR", 7, 2, "Valley TV Extra", musicDay(), englishShows()},
        {"AIR", 8, 0, "Radio Juniper", radioDay(), englishShows(), true},
        {"AIR", 9, 0, "Open Studio", {}, {}},

        {"CABLE", 1, 0, "Canal Lumen", generalDay(), frenchShows()},
        {"CABLE", 2, 0, "Kanál Jasan", generalDay(), czechShows()},
        {"CABLE", 3, 0, "Κανάλι Κύμα", generalDay(), greekShows()},
        {"CABLE", 4, 0, "Канал Берег", generalDay(), russianShows()},
        {"CABLE", 5, 0, "Summit Sport", sportDay(), englishShows()},
        {"CABLE", 6, 0, "Cobalt Cinema", filmDay(), englishShows(), false, true},
        {"CABLE", 7, 0, "Cobalt Classics", filmDay(), englishShows()},
        {"CABLE", 8, 0, "Sextant", documentaryDay(), englishShows()},
        {"CABLE", 9, 0, "Orchard Junior", childrensDay(), englishShows()},

        {"SATELLITE", 1, 0, "Harbour World", newsDay(), englishShows()},
        {"SATELLITE", 2, 0, "قناة النخلة", generalDay(), arabicShows()},
        {"SATELLITE", 3, 0, "ערוץ הגל", generalDay(), hebrewShows()},
        {"SATELLITE", 4, 0, "चैनल किरण", generalDay(), hindiShows()},
        {"SATELLITE", 5, 0, "灯台テレビ", generalDay(), japaneseShows()},
        {"SATELLITE", 6, 0, "青松电视", generalDay(), chineseShows()},
        {"SATELLITE", 7, 0, "하늘빛 TV", generalDay(), koreanShows()},
        {"SATELLITE", 8, 0, "Quay Music", musicDay(), englishShows()},
        {"SATELLITE", 9, 0, "Far Horizon", documentaryDay(), englishShows()},
    });
    return channels;
}

}  // namespace epgset
