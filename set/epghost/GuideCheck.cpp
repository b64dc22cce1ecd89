#include "set/epghost/GuideCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "set/epghost/CheckingSink.h"
#include "set/guide/GuideLoader.h"
#include "set/guide/TextLimits.h"

namespace epgset {
namespace {

CheckedLineup countsOf(const Lineup& lineup, const std::string& file) {
    CheckedLineup counts;
    counts.file = file;
    counts.entries = lineup.entries().size();
    counts.hidden = static_cast<std::size_t>(std::ranges::count_if(lineup.entries(), &LineupEntry::hidden));
    return counts;
}

void checkLineup(const Lineup& lineup, const CheckingSink& sink, CheckReport& report) {
    for (const LineupEntry& entry : lineup.entries()) {
        if (entry.name && entry.name->size() > kLongestName) {
            report.findings.push_back(
                {false, report.lineup->file, entry.line, "the name is too long, it is cut"});
        }
        if (sink.defines(entry.id)) continue;
        ++report.lineup->inNoGuide;
        report.findings.push_back({false, report.lineup->file, entry.line,
                                   fmt::format("no guide has the channel \"{}\"", entry.id)});
    }
}

/// Findings by file in the order in which the files were read, and by line.
void sortFindings(CheckReport& report) {
    const auto rank = [&](const CheckFinding& finding) {
        const auto found = std::ranges::find(report.guides, finding.file, &CheckedGuide::file);
        const bool ofLineup = report.lineup && finding.file == report.lineup->file;
        return std::pair(ofLineup ? 0 : found - report.guides.begin() + 1, finding.line);
    };
    std::ranges::stable_sort(report.findings, {}, rank);
}

}  // namespace

bool CheckReport::hasErrors() const {
    return std::ranges::any_of(findings, &CheckFinding::isError);
}

CheckReport checkGuides(const std::vector<std::string>& guides, const std::string& lineupFile,
                        std::size_t maxProgrammes) {
    CheckReport report;
    std::vector<GuideError> faults;
    const Lineup lineup = lineupFile.empty() ? Lineup() : Lineup(lineupFile, faults);
    if (!lineupFile.empty()) report.lineup = countsOf(lineup, lineupFile);

    GuideSources sources;
    sources.guides.assign(guides.begin(), guides.end());
    if (!lineupFile.empty() && faults.empty()) sources.lineup = lineupFile;
    sources.maxProgrammes = maxProgrammes;
    sources.now = std::time(nullptr);
    std::optional<CheckingSink> sink;
    EventIds ids;
    const LoadedGuide loaded = loadGuideOf(
        [&](GuideCollector& collector) {
            sink.emplace(collector, report);
            for (const std::string& guide : guides)
                sink->read(guide, faults);
            sink->noteStrays(lineup);
        },
        sources, ids);

    for (const GuideError& fault : faults)
        report.findings.push_back({true, fault.file(), fault.line(), fault.message()});
    if (report.lineup) checkLineup(lineup, *sink, report);
    if (!report.hasErrors()) {
        sink->noteNumbers(*loaded.guide, lineup);
        report.shown = {loaded.guide->channels().size(), loaded.guide->programmes().size(),
                        loaded.guide->programmesDropped()};
    }
    sortFindings(report);
    return report;
}

}  // namespace epgset
