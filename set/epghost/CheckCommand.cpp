#include "set/epghost/CheckCommand.h"

#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string_view>

#include "set/epghost/GuideOption.h"
#include "set/epghost/Options.h"
#include "set/epghost/StandardOutput.h"
#include "set/log/LogControl.h"
#include "set/log/LogEscape.h"
#include "set/text/Utf8.h"

namespace epgset {
namespace {

constexpr std::size_t longestLine = 8192;

using Json = rapidjson::Writer<rapidjson::StringBuffer>;

void member(Json& json, const char* key, const std::string& text) {
    const std::string repaired = repairedUtf8(text);
    json.Key(key);
    json.String(repaired.data(), static_cast<rapidjson::SizeType>(repaired.size()));
}

void member(Json& json, const char* key, std::size_t number) {
    json.Key(key);
    json.Uint64(number);
}

void writeGuide(Json& json, const CheckedGuide& guide) {
    json.StartObject();
    member(json, "file", guide.file);
    member(json, "channels", guide.counts.channels);
    member(json, "programs", guide.counts.programmes);
    member(json, "skipped_unknown_channel", guide.counts.ofUnknownChannel);
    member(json, "skipped_no_start", guide.counts.withoutStart);
    member(json, "skipped_ends_before_start", guide.counts.endingBeforeStart);
    member(json, "skipped_channels_no_id", guide.counts.channelsWithoutId);
    member(json, "replaced_same_start", guide.sameStart);
    member(json, "texts_cut", guide.counts.textsCut);
    json.EndObject();
}

void writeFinding(Json& json, const CheckFinding& finding) {
    json.StartObject();
    member(json, "severity", std::string(finding.isError ? "error" : "warning"));
    member(json, "file", finding.file);
    json.Key("line");
    finding.line > 0 ? json.Int(finding.line) : json.Null();
    member(json, "message", finding.message);
    json.EndObject();
}

/// "FILE:LINE: warning: MESSAGE", printable whatever the files hold.
std::string lineOf(const CheckFinding& finding) {
    const std::string place = finding.line > 0 ? fmt::format(":{}", finding.line) : "";
    return escapedLogLine(fmt::format("{}{}: {}: {}", finding.file, place,
                                      finding.isError ? "error" : "warning", finding.message),
                          longestLine);
}

struct CheckOptions {
    std::vector<std::string> guides;
    std::string lineup;
    std::size_t maxProgrammes = Options().maxProgrammes;
    bool json = false;
};

int check(const CheckOptions& options) {
    LogControl::setLevel(Container::Logger::Off);  // the findings tell it all, with lines
    const CheckReport report = checkGuides(options.guides, options.lineup, options.maxProgrammes);
    options.json ? writeCheckJson(report, std::cout) : writeCheckReport(report, std::cout);
    finishStandardOutput();
    return report.hasErrors() ? 2 : 0;
}

}  // namespace

void addCheckCommand(CLI::App& app, std::function<int()>& task) {
    CLI::App* const command =
        app.add_subcommand("check",
                           "Read guides and a line-up; print what they hold and all that is wrong with them, "
                           "with file and line. "
                           "Exit status 0 when the set can use them, be it with warnings, else 2");
    const auto options = std::make_shared<CheckOptions>();
    addGuideOption(*command, options->guides, "An XMLTV guide (.xml, .xml.gz); may be repeated");
    command->add_option("--lineup", options->lineup, "The channel line-up (TOML)")->type_name("PATH");
    command
        ->add_option("--max-programmes", options->maxProgrammes,
                     "How many programmes the guide cache holds; 0: no bound")
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("N")
        ->capture_default_str();
    command->add_flag("--json", options->json, "Print one JSON object");
    command->callback([&task, options] {
        if (options->guides.empty()) throw StartError("--guide is missing");
        checkGuideNames(options->guides);
        task = [options] { return check(*options); };
    });
}

void writeCheckReport(const CheckReport& report, std::ostream& out) {
    for (const CheckFinding& finding : report.findings)
        out << lineOf(finding) << '\n';
    if (report.lineup) {
        out << escapedLogLine(
                   fmt::format("{}: {} channels, {} hidden, {} in no guide", report.lineup->file,
                               report.lineup->entries, report.lineup->hidden, report.lineup->inNoGuide),
                   longestLine)
            << '\n';
    }
    for (const CheckedGuide& guide : report.guides) {
        const GuideCounts& counts = guide.counts;
        out << escapedLogLine(
                   fmt::format("{}: {} channels, {} without an id; {} programmes, {} skipped: {} of unknown "
                               "channels, "
                               "{} without a readable start, {} that end before they start; {} texts cut",
                               guide.file, counts.channels, counts.channelsWithoutId, counts.programmes,
                               counts.skippedProgrammes(), counts.ofUnknownChannel, counts.withoutStart,
                               counts.endingBeforeStart, guide.sameStart, counts.textsCut),
                   longestLine)
            << '\n';
    }
    if (report.shown) {
        out << fmt::format(
            "the set has {} channels and {} programmes; {} programmes are left out for want of room\n",
            report.shown->channels, report.shown->programmes, report.shown->programmesDropped);
    } else {
        out << "the set cannot use these files\n";
    }
}

void writeCheckJson(const CheckReport& report, std::ostream& out) {
    rapidjson::StringBuffer text;
    Json json(text);
    json.StartObject();
    json.Key("usable");
    json.Bool(!report.hasErrors());
    if (report.shown) {
        member(json, "channels", report.shown->channels);
        member(json, "programs", report.shown->programmes);
        member(json, "programs_dropped", report.shown->programmesDropped);
    }
    json.Key("guides");
    json.StartArray();
    for (const CheckedGuide& guide : report.guides)
        writeGuide(json, guide);
    json.EndArray();
    if (report.lineup) {
        json.Key("lineup");
        json.StartObject();
        member(json, "file", report.lineup->file);
        member(json, "channels", report.lineup->entries);
        member(json, "hidden", report.lineup->hidden);
        member(json, "in_no_guide", report.lineup->inNoGuide);
        json.EndObject();
    }
    json.Key("findings");
    json.StartArray();
    for (const CheckFinding& finding : report.findings)
        writeFinding(json, finding);
    json.EndArray();
    json.EndObject();
    out << std::string_view(text.GetString(), text.GetSize()) << '\n';
}

}  // namespace epgset
