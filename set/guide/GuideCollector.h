// What the guide files hold, put together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "set/guide/TextPool.h"
#include "set/guide/XmltvReader.h"

namespace epgset {

/// Which part of a clump a programme is: 0 of 1 where it is in none.
struct ClumpPart {
    std::uint16_t index = 0;
    std::uint16_t count = 1;

    bool operator==(const ClumpPart&) const = default;
};

/// Reads "INDEX/COUNT"; 0 of 1 for another form.
ClumpPart readClumpPart(std::string_view text);

/// A channel that the guides define or name.
struct CollectedChannel {
    std::string id;
    bool defined = false;  ///< it has a <channel>; else programmes name it
    std::vector<std::string> displayNames;
    std::string lcn;

    // How it is received, for a channel that the line-up does not name. XMLTV states nothing of it.
    int tvMode = 0;                ///< reception mode, a row of receptionModes()
    std::uint8_t serviceType = 1;  ///< as Channel::serviceType
    bool scrambled = false;
    std::uint16_t programNumber = 0;
};

/// A programme with a readable start. The texts live in the collector's pool.
struct CollectedProgramme {
    std::uint32_t channel = 0;  ///< index of a CollectedChannel
    std::uint32_t guide = 0;    ///< index of the guide that holds it
    std::uint32_t start = 0;
    std::optional<std::uint32_t> stop;
    ClumpPart clump;
    bool inSeries = false;
    std::string_view title;
    std::string_view synopsis;
};

/// How much a guide holds, and what of it could not be used.
struct GuideCounts {
    std::size_t channels = 0;
    std::size_t programmes = 0;
    std::size_t channelsWithoutId = 0;
    std::size_t ofUnknownChannel = 0;
    std::size_t withoutStart = 0;
    std::size_t endingBeforeStart = 0;
    std::size_t textsCut = 0;  ///< titles, synopses and names of channels that were too long

    std::size_t records() const { return channels + programmes; }
    std::size_t skippedProgrammes() const { return ofUnknownChannel + withoutStart + endingBeforeStart; }
};

/// What a collector may take for granted of the bounds of the guide cache.
struct CollectorBounds {
    std::size_t programmes = 0;  ///< no more are kept in the end; 0: no bound
    std::int64_t now = 0;        ///< those that have ended by then go first
    std::function<bool(const std::string& id)> hidden = [](const std::string&) { return false; };
};

/// Takes what is read of several guides, one after the other. The first guide that defines a channel
/// describes it; programmes count whichever guide they stand in. Texts are kept up to their limits.
class GuideCollector : public XmltvSink {
public:
    GuideCollector() = default;

    /// Lets go of the texts of programmes that the bounds will surely leave out, so that a guide of any size
    /// takes the room of the programmes that may stay. The programmes themselves are kept, for others' times
    /// and for the count of what is left out.
    explicit GuideCollector(CollectorBounds bounds)
        : bounds_(std::move(bounds)), nextLook_(2 * bounds_.programmes) {}

    /// Begins with another guide.
    void startGuide() { counts_.emplace_back(); }

    void channel(const XmltvChannel& channel) override;
    void programme(const XmltvProgramme& programme) override;

    /// Channels in the order in which they were first met.
    std::vector<CollectedChannel> channels;
    /// Programmes in the order of the guides and in them of the files.
    std::vector<CollectedProgramme> programmes;
    TextPool texts;

    /// By guide.
    std::vector<GuideCounts>& counts() { return counts_; }

private:
    std::uint32_t channelIndex(const std::string& id);
    void forgetTexts();
    std::optional<std::uint32_t> lastStartThatMayStay() const;
    std::string_view keep(std::string_view text, std::size_t limit);

    CollectorBounds bounds_;
    std::size_t nextLook_ = 0;  ///< number of programmes at which texts are looked over
    std::unordered_map<std::string, std::uint32_t> indexOfId_;
    std::vector<GuideCounts> counts_;
};

}  // namespace epgset
