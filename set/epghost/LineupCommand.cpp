#include "set/epghost/LineupCommand.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <ctime>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "set/demo/DemoGuide.h"
#include "set/epghost/GuideOption.h"
#include "set/epghost/StandardOutput.h"
#include "set/guide/GuideLoader.h"
#include "set/log/LogControl.h"
#include "set/middleware/ChannelTexts.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/ServiceTypes.h"

namespace epgset {
namespace {

constexpr std::uint8_t television = 1;

/// A TOML text: quotes, backslashes and control characters escaped, those between U+0080 and U+009F included.
std::string tomlText(std::string_view text) {
    std::string result = "\"";
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        const auto byte = static_cast<unsigned char>(c);
        const auto next = static_cast<unsigned char>(at + 1 < text.size() ? text[at + 1] : 0);
        if (c == '"' || c == '\\') {
            result.append("\\").push_back(c);
        } else if (byte < 0x20 || byte == 0x7F) {
            result += fmt::format("\\u{:04X}", byte);
        } else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
            result += fmt::format("\\u{:04X}", next);
            ++at;
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string_view antennaOf(const Channel& channel) {
    return receptionModes()[static_cast<std::size_t>(receptionModeByTvMode(channel.tvMode))].name;
}

int printLineup(const std::vector<std::string>& guides) {
    // What is skipped of a guide is a matter of "check".
    LogControl::setLevel(Container::Logger::Error);
    GuideSources sources;
    sources.guides.assign(guides.begin(), guides.end());
    sources.maxProgrammes = 0;
    sources.now = std::time(nullptr);
    EventIds ids;
    const LoadedGuide loaded = guides.empty() ? loadDemoGuide(sources) : loadGuide(sources, ids);
    writeLineup(*loaded.guide, std::cout);
    finishStandardOutput();
    return 0;
}

}  // namespace

void addLineupCommand(CLI::App& app, std::function<int()>& task) {
    CLI::App* const command = app.add_subcommand(
        "lineup", "Print a line-up to edit (TOML), with an entry for each channel of the guide");
    const auto guides = std::make_shared<std::vector<std::string>>();
    addGuideOption(*command, *guides, "An XMLTV guide (.xml, .xml.gz); may be repeated")
        ->default_str("the demo guide");
    command->callback([&task, guides] {
        checkGuideNames(*guides);
        task = [guides] { return printLineup(*guides); };
    });
}

void writeLineup(const Guide& guide, std::ostream& out) {
    out << "# The channels of the guide, as it has them. What an entry does not state keeps its default;\n"
           "# a channel without an entry keeps what the guide says of it, \"hidden = true\" leaves one "
           "out.\n";
    for (const Channel& channel : guide.channels()) {
        out << "\n[[channel]]\nid = " << tomlText(channel.id) << "\nnumber = \""
            << channelNumberText(channel.major, channel.minor) << "\"\nname = " << tomlText(channel.name)
            << "\nantenna = " << tomlText(antennaOf(channel)) << '\n';
        if (channel.serviceType != television) {
            out << "service_type = " << tomlText(serviceTypeNames[channel.serviceType]) << '\n';
        }
        if (channel.scrambled) out << "scrambled = true\n";
        out << "# source = \"http://127.0.0.1:9000/" << channelNumberText(channel.major, channel.minor)
            << ".ts\"\n";
    }
}

}  // namespace epgset
