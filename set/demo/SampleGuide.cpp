#include "set/demo/SampleGuide.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "set/demo/SampleTexts.h"

namespace epgset {
namespace {

constexpr std::uint64_t minutesADay = 1440;

constexpr auto places = std::to_array<std::string_view>(
    {"Amber",  "Arbour",  "Beacon",   "Brook",   "Canvas",  "Cedar",   "Cliff",   "Coral",
     "Delta",  "Ember",   "Fjord",    "Garnet",  "Granite", "Harvest", "Hazel",   "Indigo",
     "Ivory",  "Jasper",  "Juniper",  "Kestrel", "Lagoon",  "Lark",    "Linden",  "Marble",
     "Meadow", "Mill",    "Northern", "Opal",    "Orchid",  "Pine",    "Prairie", "Quarry",
     "Ridge",  "Saffron", "Sandbank", "Tidal",   "Umber",   "Violet",  "Willow",  "Zenith"});
constexpr auto kinds = std::to_array<std::string_view>(
    {"One",    "Two",  "Three", "News",    "Film",     "Sport",  "Kids & Co", "Music", "Drama",
     "Life",   "HD",   "Plus",  "Nature",  "History",  "Comedy", "Crime",     "World", "Regional",
     "Travel", "Food", "Arts",  "Science", "Classics", "Extra",  "Late"});
static_assert(places.size() * kinds.size() == SampleGuideSize::maxChannels, "each channel has its own name");

/// Lengths of programmes in minutes, as often as they occur in a day of television.
constexpr auto lengths =
    std::to_array<std::uint64_t>({5, 10, 15, 25, 30, 30, 30, 45, 45, 50, 55, 60, 60, 90, 120});

std::string idOf(int channel) {
    return fmt::format("channel-{:04}.example", channel + 1);
}

std::string nameOf(int channel) {
    const auto place = static_cast<std::size_t>(channel);
    return fmt::format("{} {}", places[place % places.size()], kinds[place / places.size()]);
}

std::string timeText(std::int64_t unixSeconds) {
    return fmt::format("{:%Y%m%d%H%M%S} +0000", fmt::gmtime(static_cast<std::time_t>(unixSeconds)));
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else {
            result += c;
        }
    }
    return result;
}

/// Divides `minutes` into `count` parts of unlike lengths, whole multiples of five minutes where there is
/// room for that. Answers where each begins, and the end.
std::vector<std::uint64_t> divide(std::uint64_t minutes, std::size_t count, SampleRandom& random) {
    const std::uint64_t step = minutes / count >= 15 ? 5 : 1;
    std::vector<std::uint64_t> weights(count);
    std::uint64_t sum = 0;
    for (std::uint64_t& weight : weights) {
        weight = lengths[random.below(lengths.size())];
        sum += weight;
    }
    std::vector<std::uint64_t> bounds = {0};
    std::uint64_t passed = 0;
    for (std::size_t part = 1; part < count; ++part) {
        passed += weights[part - 1];
        const std::uint64_t wanted = passed * minutes / sum / step * step;
        bounds.push_back(std::clamp(wanted, bounds.back() + step, minutes - (count - part) * step));
    }
    bounds.push_back(minutes);
    return bounds;
}

void writeProgramme(const std::string& channel, std::int64_t start, std::int64_t stop, SampleTexts& texts,
                    std::ostream& out) {
    const SampleProgramme programme = texts.next();
    out << fmt::format("  <programme start=\"{}\" stop=\"{}\" channel=\"{}\">\n    <title>{}</title>\n",
                       timeText(start), timeText(stop), channel, escaped(programme.title));
    if (!programme.synopsis.empty()) out << "    <desc>" << escaped(programme.synopsis) << "</desc>\n";
    if (programme.season > 0) {
        out << fmt::format("    <episode-num system=\"xmltv_ns\">{}.{}.</episode-num>\n",
                           programme.season - 1, programme.episode - 1);
    }
    out << "  </programme>\n";
}

}  // namespace

void writeSampleGuide(const SampleGuideSize& size, std::ostream& out) {
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<tv generator-info-name=\"epghost\">\n";
    for (int channel = 0; channel < size.channels; ++channel) {
        out << fmt::format(
            "  <channel id=\"{}\">\n    <display-name>{}</display-name>\n    <lcn>{}</lcn>\n  </channel>\n",
            idOf(channel), escaped(nameOf(channel)), channel + 1);
    }
    const auto channels = static_cast<std::uint64_t>(size.channels);
    const std::uint64_t minutes = static_cast<std::uint64_t>(size.days) * minutesADay;
    for (int channel = 0; channel < size.channels; ++channel) {
        const bool oneMore = static_cast<std::uint64_t>(channel) < size.programmes % channels;
        const auto count = static_cast<std::size_t>(size.programmes / channels + (oneMore ? 1 : 0));
        if (count == 0) continue;
        SampleRandom random(size.seed, static_cast<std::uint64_t>(channel));
        SampleTexts texts(static_cast<std::size_t>(channel), random);
        const std::vector<std::uint64_t> bounds = divide(minutes, count, random);
        const std::string id = idOf(channel);
        for (std::size_t part = 0; part < count; ++part) {
            writeProgramme(id, size.start + static_cast<std::int64_t>(bounds[part] * 60),
                           size.start + static_cast<std::int64_t>(bounds[part + 1] * 60), texts, out);
        }
    }
    out << "</tv>\n";
}

}  // namespace epgset
