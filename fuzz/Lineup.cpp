// A line-up file.
#include "set/guide/Lineup.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/ServiceTypes.h"

namespace epgfuzz {
namespace {

using epgset::GuideError;
using epgset::Lineup;
using epgset::LineupEntry;

/// The first thing that is wrong with a file, as it is thrown; nothing for one that can be used.
std::optional<std::string> thrownBy(const std::filesystem::path& path) {
    try {
        const Lineup lineup(path);
        return std::nullopt;
    } catch (const GuideError& fault) {
        return fault.what();
    }
}

void checkEntry(const Lineup& lineup, const LineupEntry& entry) {
    require(!entry.id.empty() && entry.id.find('\0') == std::string::npos, "an entry has an id");
    require(lineup.find(entry.id) != nullptr, "an entry is found", entry.id);
    require(epgset::receptionModeByTvMode(entry.tvMode) >= 0, "an antenna is one of the set's", entry.id);
    require(entry.serviceType < epgset::serviceTypeNames.size(), "a service type is one of the set's",
            entry.id);
    require(!entry.number || (entry.number->major >= 1 && entry.number->minor >= 0), "a number is one",
            entry.id);
    require(entry.line >= 1, "an entry stands in a line", entry.id);
}

}  // namespace

void fuzzLineup(std::string_view input) {
    const MemoryFile file(input);
    std::vector<GuideError> faults;
    const Lineup lineup(file.path(), faults);
    for (const LineupEntry& entry : lineup.entries())
        checkEntry(lineup, entry);
    require(std::ranges::is_sorted(faults, std::ranges::less(), &GuideError::line),
            "what is wrong is told in the order of the lines");
    const auto thrown = thrownBy(file.path());
    require(thrown.has_value() == !faults.empty(), "what is wrong is thrown as well as listed");
    if (thrown) {
        require(*thrown == faults.front().what(), "what is thrown is the first", *thrown);
        return;
    }
    std::set<std::string> ids;
    for (const LineupEntry& entry : lineup.entries())
        require(ids.insert(entry.id).second, "an id stands once", entry.id);
}

}  // namespace epgfuzz
