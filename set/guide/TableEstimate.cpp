#include "set/guide/TableEstimate.h"

#include <fmt/format.h>

#include <array>

#include "set/middleware/ReceptionModes.h"

namespace epgset {
namespace {

// SQLite's file format: pages of tables and what of a row stays in its leaf.
constexpr std::size_t kPageBytes = 4096;
constexpr std::size_t kLeafBytes = kPageBytes - 8;       // less the page's head
constexpr std::size_t kLongestInLeaf = kPageBytes - 35;  // a longer row goes on in overflow pages
constexpr std::size_t kShortestInLeaf = (kPageBytes - 12) * 32 / 255 - 23;
constexpr std::size_t kOverflowBytes = kPageBytes - 4;
constexpr std::size_t kPointerBytes = 2;  // a page's pointer to a row
// An interior page has room for 340 leaves and more; half of that where pages were split.
constexpr std::size_t kLeavesOfInterior = 170;

constexpr std::size_t kTimeBytes = 4;
constexpr std::size_t kLongestEventNumber = 5;  // digits
constexpr std::string_view kChannelPath = "/ws/epg2/channels/";
constexpr std::string_view kStubTitle = "No information";
// The lengths of "ALL", "TV" and so on, in the order of Channel::serviceType; the last is any other value's.
constexpr std::array<std::size_t, 9> kServiceTypeBytes{3, 2, 5, 5, 4, 8, 8, 6, 7};

std::size_t variableIntegerBytes(std::size_t value) {
    std::size_t bytes = 1;
    for (; value > 0x7F; value >>= 7)
        ++bytes;
    return bytes;
}

/// A text and its type in the row's head.
std::size_t textBytes(std::size_t length) {
    return length + variableIntegerBytes(2 * length + 13);
}

std::size_t numberBytes(const Channel& channel) {
    return channel.minor > 0 ? fmt::formatted_size("{}-{}", channel.major, channel.minor)
                             : fmt::formatted_size("{}", channel.major);
}

std::size_t antennaBytes(int tvMode) {
    const int row = receptionModeByTvMode(tvMode);
    return row < 0 ? 0 : receptionModes()[static_cast<std::size_t>(row)].name.size();
}

std::size_t channelIdBytes(const Channel& channel) {
    return fmt::formatted_size("cid-{:03}-", channel.tvMode) + numberBytes(channel);
}

/// The columns of the channel, and the row's head but for the other columns' types.
std::size_t channelColumnBytes(const Channel& channel) {
    const std::size_t idBytes = channelIdBytes(channel);
    // A missing name is replaced by the text of the column before it.
    const std::size_t nameBytes = channel.name.empty() ? idBytes : channel.name.size();
    const std::size_t serviceBytes = kServiceTypeBytes[channel.serviceType < 8 ? channel.serviceType : 8U];
    return 1 + textBytes(idBytes) + textBytes(nameBytes) + textBytes(kChannelPath.size() + idBytes) +
           textBytes(numberBytes(channel)) + textBytes(antennaBytes(channel.tvMode)) +
           textBytes(channel.scrambled ? 4 : 5) + textBytes(serviceBytes);
}

}  // namespace

std::size_t programmeRowBytes(const Channel& channel, std::string_view title) {
    const std::size_t eventBytes =
        fmt::formatted_size("pid-{:03}-{}-{}-", channel.tvMode, channel.major, channel.minor) +
        kLongestEventNumber;
    const std::size_t titleBytes = title.empty() ? eventBytes : title.size();  // as a missing name
    return channelColumnBytes(channel) + textBytes(eventBytes) + textBytes(titleBytes) +
           2 * (1 + kTimeBytes) + 3 * textBytes(0);
}

std::size_t stubRowBytes(const Channel& channel) {
    return channelColumnBytes(channel) + textBytes(kStubTitle.size()) + 6 * textBytes(0);
}

void TableEstimate::addRow(std::size_t bytes) {
    ++rows_;
    std::size_t inLeaf = bytes;
    if (bytes > kLongestInLeaf) {
        inLeaf = kShortestInLeaf + (bytes - kShortestInLeaf) % kOverflowBytes;
        if (inLeaf > kLongestInLeaf) inLeaf = kShortestInLeaf;
        overflowPages_ += (bytes - inLeaf + kOverflowBytes - 1) / kOverflowBytes;
        inLeaf += 4;  // the number of the first overflow page
    }
    const std::size_t needed =
        variableIntegerBytes(bytes) + variableIntegerBytes(rows_) + inLeaf + kPointerBytes;
    if (needed > freeBytes_) {
        ++leaves_;
        freeBytes_ = kLeafBytes;
    }
    freeBytes_ -= needed;
}

std::size_t TableEstimate::pages() const {
    // The schema's page, the table's root, and the pages between it and the leaves.
    return 2 + leaves_ + overflowPages_ + leaves_ / kLeavesOfInterior + 1;
}

}  // namespace epgset
