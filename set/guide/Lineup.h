// The line-up: what the owner of the set says of its channels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "set/guide/ChannelNumbers.h"
#include "set/guide/GuideError.h"

namespace epgset {

/// What a line-up says of one channel.
struct LineupEntry {
    std::string id;                       ///< the guide's channel id
    int tvMode = 0;                       ///< of its antenna
    std::optional<ChannelNumber> number;  ///< none: as the guide has it
    std::optional<std::string> name;      ///< none: as the guide has it
    std::uint8_t serviceType = 1;         ///< as Channel::serviceType
    bool scrambled = false;
    bool digital = true;
    bool hidden = false;  ///< the channel is left out
    std::string source;   ///< where a recording is read from; may be empty
    int line = 0;         ///< where the entry stands in the file
};

/// A line-up, in file order. One that is made without a file has no entries.
class Lineup {
public:
    Lineup() = default;

    /// Reads a TOML file. Throws GuideError, with the line, for a file that cannot be read or is no TOML, for
    /// a key or a value that is not of a line-up's form, an entry without an id, an id that stands twice and
    /// a number that two shown channels of one antenna have.
    explicit Lineup(const std::filesystem::path& path);

    /// The same, but throws nothing of it: adds all that is wrong to `faults`, in the order of the lines, and
    /// holds the entries that can be used all the same.
    Lineup(const std::filesystem::path& path, std::vector<GuideError>& faults);

    const std::vector<LineupEntry>& entries() const { return entries_; }

    /// The entry of a channel, or null; owned by the line-up.
    const LineupEntry* find(std::string_view id) const;

private:
    void checkEntries(const std::string& file, std::vector<GuideError>& faults);

    std::vector<LineupEntry> entries_;
    std::unordered_map<std::string, std::size_t> byId_;
};

}  // namespace epgset
