// Notes what guides hold that the set passes over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "set/epghost/GuideCheck.h"
#include "set/guide/ChannelNumbers.h"
#include "set/guide/Guide.h"
#include "set/guide/GuideCollector.h"
#include "set/guide/GuideError.h"
#include "set/guide/Lineup.h"

namespace epgset {

/// Hands what is read of guides on to a collector and adds to a report what the collector does not take as it
/// stands.
class CheckingSink : public XmltvSink {
public:
    /// Both must outlive the object; the collector is used by read() alone.
    CheckingSink(GuideCollector& collector, CheckReport& report) : collector_(collector), report_(report) {}

    /// Reads one guide, to its end or to what makes it unreadable, which is added to `faults`.
    void read(const std::string& file, std::vector<GuideError>& faults);

    /// Notes programmes of channels that nothing defines. To be called when all guides are read, since
    /// programmes may come before their channel.
    void noteStrays(const Lineup& lineup);

    /// Notes channels that have another number than their guide states. `guide` is what came of the guides.
    void noteNumbers(const Guide& guide, const Lineup& lineup);

    /// Whether a guide has that channel.
    bool defines(const std::string& id) const { return definedAt_.contains(id); }

    void channel(const XmltvChannel& channel) override;
    void programme(const XmltvProgramme& programme) override;

private:
    /// Where something stands.
    struct Place {
        std::size_t guide = 0;
        int line = 0;
    };
    struct StatedNumber {
        Place place;
        ChannelNumber number;
    };
    /// Programmes of a channel that nothing defined before them.
    struct Strays {
        int firstLine = 0;
        std::size_t count = 0;
    };
    /// A programme that was read: its channel by the collector's index, its start and its part of a clump.
    using Slot = std::pair<std::uint64_t, std::uint16_t>;

    const GuideCounts& counts() const { return collector_.counts().back(); }
    Place here(int line) const { return {report_.guides.size() - 1, line}; }
    void noteNumber(const XmltvChannel& channel);
    void noteSameStart(const XmltvProgramme& programme);
    void warn(const Place& place, const std::string& message);

    GuideCollector& collector_;
    CheckReport& report_;
    std::unordered_map<std::string, Place> definedAt_;
    std::unordered_map<std::string, StatedNumber> numbers_;
    std::map<std::pair<std::size_t, std::string>, Strays> strays_;  ///< by guide and channel
    std::map<Slot, Place> slots_;
};

}  // namespace epgset
