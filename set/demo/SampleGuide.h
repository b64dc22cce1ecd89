// Guides of a stated size, for trying out and measuring.
#pragma once

#include <cstdint>
#include <ostream>

namespace epgset {

/// What a sample guide is made of. The same values give the same bytes.
struct SampleGuideSize {
    static constexpr int maxChannels = 1000;
    static constexpr int maxDays = 366;
    static constexpr std::uint64_t programmesOfADay = 32;  ///< of a channel, where no number is asked for

    int channels = 50;             ///< 1 to maxChannels
    int days = 7;                  ///< 1 to maxDays
    std::uint64_t programmes = 0;  ///< of all channels, up to one a minute of each
    std::uint64_t seed = 1;
    std::int64_t start = 0;  ///< UNIX seconds; the first programme of every channel starts then
};

/// Writes a guide in XMLTV: channels with a number, programmes that fill the days without gaps, alike in
/// number on each channel, with titles, synopses of some 400 bytes and here and there an episode's number.
/// The caller sees to the bounds and to the state of the stream.
void writeSampleGuide(const SampleGuideSize& size, std::ostream& out);

}  // namespace epgset
