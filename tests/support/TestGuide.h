// Small guides for tests, written down channel by channel.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "set/guide/GuideBuilder.h"
#include "set/middleware/Television.h"

namespace epgtest {

/// Numbers of a few reception modes.
enum TvMode { Air = 0, Cable = 1, Satellite = 3, Bs = 22, Cs = 23 };

/// Collects channels and programmes; use() makes them the middleware's guide.
///
///     TestGuide guide;
///     const auto news = guide.channel(Air, 7, 2, "News 24");
///     guide.programme(news, 1'000, 2'000, "Morning", 17);
///     guide.use();
class TestGuide {
public:
    using Channel = std::size_t;

    Channel channel(int tvMode, int major, int minor = 0, const std::string& name = "Channel") {
        epgset::Channel channel;
        channel.id = std::to_string(tvMode) + "." + std::to_string(major) + "." + std::to_string(minor);
        channel.name = name;
        channel.tvMode = tvMode;
        channel.major = static_cast<std::int16_t>(major);
        channel.minor = static_cast<std::int16_t>(minor);
        return add(std::move(channel));
    }

    /// A channel with everything that a channel can have.
    Channel add(epgset::Channel channel) { return builder_.addChannel(std::move(channel)); }

    /// A programme from `start` to `stop` (UNIX seconds).
    TestGuide& programme(Channel channel, std::uint32_t start, std::uint32_t stop, const std::string& title,
                         int eventId, const std::string& synopsis = "", const std::string& series = "") {
        epgset::GuideBuilder::ProgrammeDraft draft;
        draft.start = start;
        draft.stop = stop;
        draft.title = title;
        draft.synopsis = synopsis;
        draft.series = series;
        draft.eventId = static_cast<std::uint16_t>(eventId);
        builder_.addProgramme(channel, draft);
        return *this;
    }

    /// `count` half-hour programmes "Programme 1", "Programme 2", ... with event ids from 1 on.
    TestGuide& programmes(Channel channel, int count, std::uint32_t from = 1'000'000) {
        for (int i = 0; i < count; ++i) {
            const auto start = from + static_cast<std::uint32_t>(i) * 1800;
            programme(channel, start, start + 1800, "Programme " + std::to_string(i + 1), i + 1);
        }
        return *this;
    }

    /// Makes this the middleware's guide; the collection is empty afterwards.
    void use() { epgset::useGuide(builder_.finish()); }

private:
    epgset::GuideBuilder builder_;
};

}  // namespace epgtest
