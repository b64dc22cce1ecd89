#include "set/guide/Lineup.h"

#include <toml++/toml.h>
#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <system_error>
#include <utility>

#include "set/guide/WhiteSpace.h"
#include "set/middleware/ReceptionModes.h"
#include "set/middleware/ServiceTypes.h"

namespace epgset {
namespace {

std::string readWhole(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw GuideError(path.string(), 0, "is a folder, not a line-up");
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw GuideError(path.string(), 0, "cannot be opened: " + std::generic_category().message(errno));
    }
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) throw GuideError(path.string(), 0, "cannot be read");
    return text;
}

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

int lineOf(const toml::source_region& source) {
    return static_cast<int>(source.begin.line);
}

using Faults = std::vector<GuideError>;

/// Reads one [[channel]] table.
class EntryReader {
public:
    EntryReader(std::string file, const toml::table& table) : file_(std::move(file)), table_(table) {}

    /// The entry without what is wrong with it; its id is empty where that is.
    LineupEntry read(Faults& faults) {
        entry_.line = lineOf(table_.source());
        for (const auto& [key, value] : table_) {
            try {
                readValue(key.str(), value);
            } catch (const GuideError& fault) {
                faults.push_back(fault);
            }
        }
        if (!table_.contains("id")) faults.emplace_back(file_, entry_.line, "a channel without an id");
        return entry_;
    }

private:
    void readValue(std::string_view key, const toml::node& value);
    std::string text(std::string_view key, const toml::node& value) const;
    bool truth(std::string_view key, const toml::node& value) const;
    ChannelNumber number(const toml::node& value) const;

    [[noreturn]] void refuse(const toml::node& value, const std::string& message) const {
        throw GuideError(file_, lineOf(value.source()), message);
    }

    std::string file_;
    const toml::table& table_;
    LineupEntry entry_;
};

void EntryReader::readValue(std::string_view key, const toml::node& value) {
    if (key == "id") {
        entry_.id = text(key, value);
        if (entry_.id.empty()) refuse(value, "id is empty");
    } else if (key == "antenna") {
        const std::string name = text(key, value);
        const int row = receptionModeByName(name);
        if (row < 0) refuse(value, "no such antenna: " + inQuotes(name));
        entry_.tvMode = receptionModes()[static_cast<std::size_t>(row)].tvMode;
    } else if (key == "number") {
        entry_.number = number(value);
    } else if (key == "name") {
        entry_.name = withCollapsedSpace(text(key, value));
    } else if (key == "service_type") {
        const std::string name = text(key, value);
        const auto* const found = std::find(serviceTypeNames.begin(), serviceTypeNames.end(), name);
        if (found == serviceTypeNames.end()) refuse(value, "no such service type: " + inQuotes(name));
        entry_.serviceType = static_cast<std::uint8_t>(found - serviceTypeNames.begin());
    } else if (key == "scrambled") {
        entry_.scrambled = truth(key, value);
    } else if (key == "digital") {
        entry_.digital = truth(key, value);
    } else if (key == "hidden") {
        entry_.hidden = truth(key, value);
    } else if (key == "source") {
        entry_.source = text(key, value);
    } else {
        refuse(value, "unknown key of a channel: " + inQuotes(key));
    }
}

std::string EntryReader::text(std::string_view key, const toml::node& value) const {
    const auto read = value.value_exact<std::string>();
    if (!read) refuse(value, std::string(key) + " must be a text");
    if (read->find('\0') != std::string::npos) refuse(value, std::string(key) + " holds a NUL");
    return *read;
}

bool EntryReader::truth(std::string_view key, const toml::node& value) const {
    const auto read = value.value_exact<bool>();
    if (!read) refuse(value, std::string(key) + " must be true or false");
    return *read;
}

ChannelNumber EntryReader::number(const toml::node& value) const {
    if (const auto integer = value.value_exact<std::int64_t>()) {
        refuse(value, "number must be a text: number = \"" + std::to_string(*integer) + "\"");
    }
    const auto asText = value.value_exact<std::string>();
    if (!asText) refuse(value, "number must be a text such as \"7\" or \"7-2\"");
    const std::string& written = *asText;
    const auto read = readChannelNumber(written);
    if (!read || written.find('.') != std::string::npos) {
        refuse(value, "no channel number: " + inQuotes(written) +
                          "; it is \"MAJOR\" or \"MAJOR-MINOR\", the major 1 to 32767, the minor 0 to 32767");
    }
    return *read;
}

toml::table parse(const std::filesystem::path& path) {
    const std::string text = readWhole(path);
    try {
        return toml::parse(text, path.string());
    } catch (const toml::parse_error& error) {
        throw GuideError(path.string(), lineOf(error.source()), std::string(error.description()));
    }
}

/// Reads the entries that have an id.
std::vector<LineupEntry> readEntries(const std::filesystem::path& path, Faults& faults) {
    const std::string file = path.string();
    const toml::table root = parse(path);
    std::vector<LineupEntry> entries;
    for (const auto& [key, value] : root) {
        const toml::array* const list = value.as_array();
        if (key.str() != "channel") {
            faults.emplace_back(file, lineOf(value.source()), "unknown key: " + inQuotes(key.str()));
        } else if (list == nullptr) {
            faults.emplace_back(file, lineOf(value.source()), "channels are written [[channel]]");
        } else {
            for (const toml::node& element : *list) {
                if (const toml::table* const table = element.as_table()) {
                    LineupEntry entry = EntryReader(file, *table).read(faults);
                    if (!entry.id.empty()) entries.push_back(std::move(entry));
                } else {
                    faults.emplace_back(file, lineOf(element.source()), "channels are written [[channel]]");
                }
            }
        }
    }
    return entries;
}

}  // namespace

Lineup::Lineup(const std::filesystem::path& path) {
    Faults faults;
    *this = Lineup(path, faults);
    if (!faults.empty()) throw faults.front();
}

Lineup::Lineup(const std::filesystem::path& path, Faults& faults) {
    const std::size_t before = faults.size();
    try {
        entries_ = readEntries(path, faults);
    } catch (const GuideError& fault) {
        faults.push_back(fault);
    }
    checkEntries(path.string(), faults);
    std::stable_sort(
        faults.begin() + static_cast<std::ptrdiff_t>(before), faults.end(),
        [](const GuideError& left, const GuideError& right) { return left.line() < right.line(); });
}

void Lineup::checkEntries(const std::string& file, Faults& faults) {
    std::map<std::pair<int, ChannelNumber>, int> lineOfNumber;
    for (std::size_t index = 0; index < entries_.size(); ++index) {
        const LineupEntry& entry = entries_[index];
        const auto [known, isNew] = byId_.try_emplace(entry.id, index);
        if (!isNew) {
            faults.emplace_back(file, entry.line,
                                "the channel " + inQuotes(entry.id) + " stands in line " +
                                    std::to_string(entries_[known->second].line) + " already");
            continue;
        }
        if (!entry.number || entry.hidden) continue;
        const auto [other, isFree] = lineOfNumber.try_emplace({entry.tvMode, *entry.number}, entry.line);
        if (!isFree) {
            faults.emplace_back(file, entry.line,
                                "the channel " + inQuotes(entry.id) +
                                    " has the number of the channel in line " +
                                    std::to_string(other->second));
        }
    }
}

const LineupEntry* Lineup::find(std::string_view id) const {
    const auto found = byId_.find(std::string(id));
    return found == byId_.end() ? nullptr : &entries_[found->second];
}

}  // namespace epgset
