// A guide of the middleware for the length of a test.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "set/guide/GuideBuilder.h"
#include "set/middleware/Television.h"

namespace epgset {

constexpr int airSource = 2;  ///< the channels of antenna AIR, as keys have it

/// Puts a guide into use, and an empty one back at the end.
class GuideInUse {
public:
    explicit GuideInUse(std::shared_ptr<const Guide> guide) { useGuide(std::move(guide)); }
    ~GuideInUse() { useGuide(nullptr); }
    GuideInUse(const GuideInUse&) = delete;
    GuideInUse& operator=(const GuideInUse&) = delete;
};

inline Channel makeChannel(int tvMode, std::int16_t major, std::int16_t minor, std::string name = "") {
    Channel channel;
    channel.id = name;
    channel.name = std::move(name);
    channel.tvMode = tvMode;
    channel.major = major;
    channel.minor = minor;
    return channel;
}

/// Adds a programme from `start` to `stop` that is named after its start.
inline void addProgramme(GuideBuilder& builder, std::size_t channel, std::uint32_t start,
                         std::uint32_t stop) {
    const std::string title = "from " + std::to_string(start);
    GuideBuilder::ProgrammeDraft draft;
    draft.start = start;
    draft.stop = stop;
    draft.eventId = static_cast<std::uint16_t>(start / 60 % 65535 + 1);
    draft.title = title;
    builder.addProgramme(channel, draft);
}

}  // namespace epgset
