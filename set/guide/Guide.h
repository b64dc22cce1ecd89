// The guide cache: one immutable state of the line-up and its programmes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "set/guide/Synopsis.h"
#include "set/guide/TextArchive.h"

namespace epgset {

/// One channel of the line-up.
struct Channel {
    std::string id;    ///< the guide's channel id
    std::string name;  ///< UTF-8; may be empty
    int tvMode = 0;    ///< reception mode, a row of receptionModes()
    std::int16_t major = 0;
    std::int16_t minor = 0;  ///< 0: none
    bool digital = true;
    bool scrambled = false;
    std::uint8_t serviceType =
        1;  ///< 0 ALL, 1 TV, 2 RADIO, 3 OTHER, 4 FREE, 5 SCRAMBLE, 6 SEARCHED, 7 ANALOG
    std::uint16_t ptc = 0;
    std::uint16_t programNumber = 0;
    std::string source;  ///< where a recording is read from; may be empty

    std::uint32_t firstProgramme = 0;  ///< its programmes in Guide::programmes()
    std::uint32_t programmeCount = 0;
};

/// One programme. Texts are UTF-8 and live as long as the guide.
struct Programme {
    std::uint32_t start = 0;    ///< UNIX seconds
    std::uint32_t stop = 0;     ///< UNIX seconds, exclusive
    std::uint32_t channel = 0;  ///< index into Guide::channels()
    std::uint16_t eventId = 0;  ///< 1 to 65535, unique within its channel
    bool scrambled = false;
    std::string_view title;
    Synopsis synopsis;
    std::string_view series;  ///< title of its series; empty when it is in none
};

/// A guide is built once, by a GuideBuilder, and never changes; it is shared between threads.
/// Channels stand by reception mode in the order of receptionModes(), within one ascending by major,
/// then minor number; programmes by channel, within one ascending by start.
class Guide {
public:
    Guide() = default;
    Guide(const Guide&) = delete;  // its programmes refer to what it holds
    Guide& operator=(const Guide&) = delete;

    std::span<const Channel> channels() const { return channels_; }
    std::span<const Programme> programmes() const { return programmes_; }

    /// The programmes of one channel of this guide.
    std::span<const Programme> programmesOf(const Channel& channel) const {
        return programmes().subspan(channel.firstProgramme, channel.programmeCount);
    }

    /// The channels of one reception mode; none for a mode that has none.
    std::span<const Channel> channelsOf(int tvMode) const;

    /// The channel of exactly that number, or null; owned by the guide. `guess` is the place in channels()
    /// where it is looked for first.
    const Channel* find(int tvMode, int major, int minor, std::size_t guess = 0) const;

    /// Whether a channel is one of channels() and not one of another guide's.
    bool holds(const Channel* channel) const {
        return std::less_equal<>()(channels_.data(), channel) &&
               std::less<>()(channel, channels_.data() + channels_.size());
    }

    /// How many programmes were left out because the cache has a bound.
    std::size_t programmesDropped() const { return programmesDropped_; }

private:
    friend class GuideBuilder;

    std::vector<Channel> channels_;
    std::vector<std::uint64_t> numbers_;  ///< of the channels: what find() goes by, close together in memory
    std::vector<Programme> programmes_;
    std::vector<std::unique_ptr<char[]>> texts_;  ///< what the programmes' titles point into
    TextArchive synopses_;                        ///< what their synopses do
    std::size_t programmesDropped_ = 0;
};

}  // namespace epgset
