#include "bench/SyntheticGuide.h"

#include <array>
#include <string>

#include "set/guide/GuideBuilder.h"

namespace epgbench {

namespace {

constexpr std::array<int, 3> tvModes = {0, 1, 3};
constexpr std::uint32_t programmeSeconds = 2700;

// About the mean length of a real guide's titles, with a quote and accents as they occur.
constexpr std::array<const char*, 8> titles = {
    "Evening News and Weather", "The Gardener's Year", "Café Lumière", "World Athletics Highlights",
    "A Long Way Home",          "Quiz Night",          "Nature Diary", "Late Film: The Lighthouse"};

constexpr const char* synopsis =
    "The team follows a trail along the coast, and an old friend turns up with news that nobody expected. "
    "Meanwhile the harbour prepares for the storm of the year.";

}  // namespace

std::shared_ptr<const epgset::Guide> syntheticGuide(int channels, int programmesEach) {
    epgset::GuideBuilder builder;
    for (int i = 0; i < channels; ++i) {
        epgset::Channel channel;
        channel.id = "channel" + std::to_string(i) + ".example";
        channel.name = "Channel " + std::to_string(i + 1);
        channel.tvMode = tvModes[static_cast<std::size_t>(i) % tvModes.size()];
        channel.major = static_cast<std::int16_t>(i + 1);
        const std::size_t handle = builder.addChannel(std::move(channel));
        for (int k = 0; k < programmesEach; ++k) {
            const std::string title = std::string(titles[static_cast<std::size_t>(i + k) % titles.size()]) +
                                      " " + std::to_string(k % 97);
            epgset::GuideBuilder::ProgrammeDraft draft;
            draft.start =
                static_cast<std::uint32_t>(guideStart) + static_cast<std::uint32_t>(k) * programmeSeconds;
            draft.stop = draft.start + programmeSeconds;
            draft.eventId = static_cast<std::uint16_t>(k + 1);
            draft.title = title;
            draft.synopsis = synopsis;
            builder.addProgramme(handle, draft);
        }
    }
    return builder.finish();
}

}  // namespace epgbench
