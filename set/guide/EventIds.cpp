#include "set/guide/EventIds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/Logger.h"
#include "set/files/FileReplacement.h"
#include "set/guide/GuideError.h"

namespace epgset {
namespace {

constexpr const char* kFileName = "event-ids";
constexpr std::string_view kHead = "event-ids 1";
constexpr std::string_view kChannelWord = "channel ";
constexpr std::int64_t kKeptSeconds = std::int64_t{30} * 24 * 3600;

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/guide");
    return logger;
}

std::uint16_t firstChoice(std::uint32_t start) {
    return static_cast<std::uint16_t>(start / 60 % EventIds::kIdsOfChannel + 1);
}

/// Which ids of a channel are in use.
class IdSet {
public:
    IdSet() { words_[0] = 1; }  // 0 is no id

    bool has(std::uint16_t id) const { return (words_[id / 64] >> (id % 64) & 1) != 0; }

    void add(std::uint16_t id) { words_[id / 64] |= std::uint64_t{1} << (id % 64); }

    /// The first id from `wanted` on that is not in use, after 65535 the first of all; nothing when all are.
    std::optional<std::uint16_t> freeFrom(std::uint16_t wanted) const {
        const std::uint64_t before = (std::uint64_t{1} << (wanted % 64)) - 1;
        std::uint64_t word = words_[wanted / 64] | before;
        for (std::size_t step = 0, index = wanted / 64; step <= words_.size(); ++step) {
            if (~word != 0) {
                return static_cast<std::uint16_t>(index * 64 +
                                                  static_cast<std::size_t>(std::countr_one(word)));
            }
            index = (index + 1) % words_.size();
            word = words_[index];
        }
        return std::nullopt;
    }

private:
    std::array<std::uint64_t, 1024> words_{};
};

/// A channel id on one line: a backslash and line breaks are written with a backslash.
std::string escaped(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c == '\\')
            line += "\\\\";
        else if (c == '\n')
            line += "\\n";
        else
            line += c;
    }
    return line;
}

std::string unescaped(std::string_view line) {
    std::string text;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] != '\\' || at + 1 == line.size()) {
            text += line[at];
            continue;
        }
        ++at;
        text += line[at] == 'n' ? '\n' : line[at];
    }
    return text;
}

template <typename Number>
bool readNumber(std::string_view& text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return true;
}

/// Reads "START ID".
std::optional<std::pair<std::uint32_t, std::uint16_t>> readEntry(std::string_view line) {
    std::pair<std::uint32_t, std::uint16_t> entry;
    if (!readNumber(line, entry.first) || line.empty() || line[0] != ' ') return std::nullopt;
    line.remove_prefix(1);
    if (!readNumber(line, entry.second) || !line.empty() || entry.second == 0) return std::nullopt;
    return entry;
}

}  // namespace

EventIds::EventIds(std::filesystem::path stateFolder) : folder_(std::move(stateFolder)) {
    load();
}

std::vector<std::uint16_t> EventIds::assign(const std::string& channelId,
                                            std::span<const std::uint32_t> starts) {
    if (starts.size() > kIdsOfChannel) throw std::invalid_argument("more programmes than event ids");
    if (std::adjacent_find(starts.begin(), starts.end(), std::greater_equal<>()) != starts.end()) {
        throw std::invalid_argument("programmes that do not ascend by start");
    }
    Remembered& remembered = channels_[channelId];
    IdSet used;
    for (const Given& given : remembered)
        used.add(given.id);

    Remembered added;
    std::vector<std::uint16_t> ids(starts.size(), 0);
    const auto give = [&](std::size_t index, std::uint16_t id) {
        used.add(id);
        added.push_back({.start = starts[index], .guide = guide_, .id = id});
        changed_ = true;
        ids[index] = id;
    };
    // Who gets its first choice does not depend on where those that do not are put.
    for (std::size_t index = 0; index < starts.size(); ++index) {
        const auto known = std::ranges::lower_bound(remembered, starts[index], {}, &Given::start);
        if (known != remembered.end() && known->start == starts[index]) {
            known->guide = guide_;
            ids[index] = known->id;
        } else if (const std::uint16_t id = firstChoice(starts[index]); !used.has(id)) {
            give(index, id);
        }
    }
    for (std::size_t index = 0; index < starts.size(); ++index) {
        if (ids[index] != 0) continue;
        auto id = used.freeFrom(firstChoice(starts[index]));
        if (!id) {  // all are remembered: the oldest programme that is no longer in the guide gives its id up
            const auto gone = std::ranges::find_if(remembered, [&](const Given& given) {
                return !std::ranges::binary_search(starts, given.start);
            });
            id = gone->id;
            remembered.erase(gone);
        }
        give(index, *id);
    }
    remembered.insert(remembered.end(), added.begin(), added.end());
    std::ranges::sort(remembered, {}, &Given::start);
    return ids;
}

void EventIds::save(std::int64_t now) {
    if (folder_.empty()) return;
    forgetBefore(now - kKeptSeconds);
    if (!changed_) return;
    const std::filesystem::path path = folder_ / kFileName;
    try {
        replaceWholeFile(path, fileText());
    } catch (const std::system_error& error) {
        throw GuideError(path.string(), 0, "cannot be written: " + error.code().message());
    }
    changed_ = false;
}

void EventIds::forgetBefore(std::int64_t time) {
    for (auto channel = channels_.begin(); channel != channels_.end();) {
        const auto old = std::erase_if(
            channel->second, [&](const Given& given) { return given.start < time && given.guide != guide_; });
        if (old > 0) changed_ = true;
        channel = channel->second.empty() ? channels_.erase(channel) : std::next(channel);
    }
}

std::string EventIds::fileText() const {
    std::vector<std::string_view> names;
    for (const auto& [name, remembered] : channels_)
        names.emplace_back(name);
    std::sort(names.begin(), names.end());
    std::string text = fmt::format("{}\n", kHead);
    for (const std::string_view name : names) {
        fmt::format_to(std::back_inserter(text), "{}{}\n", kChannelWord, escaped(name));
        for (const Given& given : channels_.at(std::string(name)))
            fmt::format_to(std::back_inserter(text), "{} {}\n", given.start, given.id);
    }
    return text;
}

void EventIds::load() {
    const std::filesystem::path path = folder_ / kFileName;
    std::error_code error;
    if (!std::filesystem::exists(path, error) && !error) return;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, error))
        throw GuideError(path.string(), 0, "cannot be opened");

    Remembered* remembered = nullptr;
    IdSet used;  // of the channel in hand
    std::string line;
    std::size_t number = 0;
    std::size_t unread = 0;
    std::size_t firstUnread = 0;
    while (std::getline(file, line)) {
        ++number;
        if (number == 1 && line == kHead) continue;
        if (line.starts_with(kChannelWord)) {
            remembered = &channels_[unescaped(std::string_view(line).substr(kChannelWord.size()))];
            used = {};
            for (const Given& given : *remembered)
                used.add(given.id);
            continue;
        }
        const auto entry = readEntry(line);
        if (entry && remembered != nullptr && !used.has(entry->second)) {
            const auto [start, id] = *entry;
            const auto place = std::ranges::lower_bound(*remembered, start, {}, &Given::start);
            if (place == remembered->end() || place->start != start) {
                remembered->insert(place, {.start = start, .guide = 0, .id = id});
                used.add(id);
                continue;
            }
        }
        if (unread++ == 0) firstUnread = number;
    }
    if (unread > 0) {
        log().warning("%s:%d: %d lines cannot be read and are passed over, this the first", path.string(),
                      firstUnread, unread);
    }
}

}  // namespace epgset
