// The numbers and names of channels.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace epgset {

/// A channel number: major 1 to 32767, minor 1 to 32767 or 0 for none.
struct ChannelNumber {
    std::int16_t major = 0;
    std::int16_t minor = 0;

    auto operator<=>(const ChannelNumber&) const = default;  // NOLINT(modernize-use-nullptr): not of ours
};

/// Reads N, N-M or N.M; nothing for another form and for numbers that no channel can have.
std::optional<ChannelNumber> readChannelNumber(std::string_view text);

/// Whether a text has the form N, N-M or N.M, whatever the numbers are.
bool hasNumberForm(std::string_view text);

/// The name of a channel: the first display name that is neither empty nor of the form of a number, else
/// its id, with its white space collapsed as a display name has it.
std::string channelName(const std::vector<std::string>& displayNames, const std::string& id);

/// Which numbers are taken on each antenna.
class NumberPlan {
public:
    /// Takes a number. False when it is taken already.
    bool take(int tvMode, ChannelNumber number);

    /// Takes the lowest major number, without a minor one, that is free; nothing when none is.
    std::optional<ChannelNumber> takeLowestFree(int tvMode);

private:
    std::map<int, std::set<ChannelNumber>> taken_;
    std::map<int, int> lowest_;  ///< no number below it is free
};

}  // namespace epgset
