// The event ids of programmes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace epgset {

/// Gives programmes their event ids: 1 to 65535, unique within a channel, and the same for the same
/// programme (channel id and start) whenever it is met again. What was given out is remembered as long as the
/// programme is in the guide, and until 30 days after its start, in a file if there is one. Used by one
/// thread at a time.
class EventIds {
public:
    /// Ids that a channel can have.
    static constexpr std::size_t kIdsOfChannel = 65535;

    /// Remembers as long as the object lives.
    EventIds() = default;

    /// Remembers in the file "event-ids" of a folder, which need not exist yet. Reads that file; a line of it
    /// that is not as save() writes it is passed over and logged. Throws GuideError when it cannot be read.
    explicit EventIds(std::filesystem::path stateFolder);

    /// Begins with the channels of another guide: what is not assigned from now on is no longer in the guide.
    void startGuide() { ++guide_; }

    /// The ids of the programmes of one channel. `starts` are UNIX seconds, ascending, none twice, at most
    /// kIdsOfChannel of them; else throws std::invalid_argument.
    std::vector<std::uint16_t> assign(const std::string& channelId, std::span<const std::uint32_t> starts);

    /// Brings the file up to date, by way of a new file that takes its place, and forgets what started 30
    /// days before `now` (UNIX seconds) and is no longer in the guide. Writes nothing when nothing was added
    /// or forgotten since, or without a folder.
    /// Throws GuideError when the file cannot be written; the old one is as it was then.
    void save(std::int64_t now);

private:
    struct Given {
        std::uint32_t start;
        std::uint32_t guide;  ///< the guide in which the programme was met last
        std::uint16_t id;
    };
    using Remembered =
        std::vector<Given>;  // ascending by start: there is one for each programme of the guide

    void load();
    void forgetBefore(std::int64_t time);
    std::string fileText() const;

    std::unordered_map<std::string, Remembered> channels_;
    std::filesystem::path folder_;  ///< empty: none
    std::uint32_t guide_ = 1;       ///< counts the guides; what was only read from the file is of guide 0
    bool changed_ = false;
};

}  // namespace epgset
