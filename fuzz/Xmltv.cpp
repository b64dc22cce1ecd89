// A guide file: read, bounded, numbered, and its line-up written and read back.
#include <algorithm>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "set/epghost/LineupCommand.h"
#include "set/guide/GuideError.h"
#include "set/guide/GuideLoader.h"
#include "set/guide/TextLimits.h"
#include "set/log/LogControl.h"
#include "set/text/Utf8.h"

namespace epgfuzz {
namespace {

using epgset::Channel;
using epgset::Guide;
using epgset::Programme;

constexpr std::int64_t now = 1'787'443'200;
constexpr std::size_t mostProgrammes = 100;

void checkText(std::string_view text, std::size_t limit) {
    require(epgset::isCleanUtf8(text, epgset::Utf8Repertoire::Xml), "a text is valid", text);
    require(text.size() <= limit, "a text keeps to its limit", text);
    require(text.find_first_of("\r\n\t") == std::string_view::npos, "white space is collapsed", text);
}

void checkProgrammes(std::span<const Programme> programmes) {
    std::set<std::uint16_t> ids;
    for (const Programme& programme : programmes) {
        require(programme.eventId != 0 && ids.insert(programme.eventId).second, "an id is its channel's own");
        require(programme.start <= programme.stop, "a programme ends after it starts", programme.title);
        checkText(programme.title, epgset::kLongestName);
        checkText(programme.synopsis.text(), epgset::kLongestSynopsis);
    }
    require(std::ranges::is_sorted(programmes, std::ranges::less_equal(), &Programme::start),
            "no two programmes of a channel start at once");
}

void checkGuide(const Guide& guide) {
    require(guide.programmes().size() <= mostProgrammes, "the bound holds");
    std::set<std::string> ids;
    for (const Channel& channel : guide.channels()) {
        require(channel.major >= 1 && channel.minor >= 0, "a channel has a number", channel.id);
        require(!channel.id.empty() && ids.insert(channel.id).second, "a channel's id is its own",
                channel.id);
        require(guide.find(channel.tvMode, channel.major, channel.minor) == &channel,
                "a channel's number is its own", channel.id);
        checkText(channel.name, epgset::kLongestName);
        checkProgrammes(guide.programmesOf(channel));
    }
}

auto channelsOf(const Guide& guide) {
    std::vector<std::tuple<std::string, std::string, int, int, int>> all;
    for (const Channel& c : guide.channels())
        all.emplace_back(c.id, c.name, c.tvMode, c.major, c.minor);
    return all;
}

auto programmesOf(const Guide& guide) {
    std::vector<std::tuple<std::uint32_t, std::uint32_t, int, std::string_view>> all;
    for (const Programme& p : guide.programmes())
        all.emplace_back(p.start, p.stop, p.eventId, p.title);
    return all;
}

}  // namespace

void fuzzXmltv(std::string_view input) {
    epgset::LogControl::setLevel(Container::Logger::Trace);
    epgset::LogControl::capture([](const epgset::LogRecord&) {});
    const MemoryFile file(input);
    epgset::GuideSources sources;
    sources.guides = {epgset::GuideInput(file.path(), "guide.xml")};
    sources.maxProgrammes = mostProgrammes;
    sources.now = now;
    epgset::EventIds ids;
    std::shared_ptr<const Guide> guide;
    try {
        guide = epgset::loadGuide(sources, ids).guide;
    } catch (const epgset::GuideError& error) {
        const std::string_view message = error.what();
        require(message.starts_with("guide.xml") && message.find('\n') == std::string_view::npos,
                "what is wrong is said in one line that names the file", message);
        return;
    }
    checkGuide(*guide);

    std::ostringstream lineup;
    epgset::writeLineup(*guide, lineup);
    const MemoryFile lineupFile(lineup.str());
    sources.lineup = lineupFile.path();
    std::shared_ptr<const Guide> again;
    try {
        again = epgset::loadGuide(sources, ids).guide;
    } catch (const epgset::GuideError& error) {
        fail("a line-up that the set writes is one that it reads", error.what() + ("\n" + lineup.str()));
    }
    require(channelsOf(*again) == channelsOf(*guide), "the written line-up changes no channel", lineup.str());
    require(programmesOf(*again) == programmesOf(*guide),
            "a guide that is read again has the same programmes");
}

}  // namespace epgfuzz
