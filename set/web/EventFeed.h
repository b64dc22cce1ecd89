// The set's events as a stream of server-sent events.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "set/events/EventRing.h"
#include "set/web/BodyStream.h"

namespace epgset {

/// The name of the event that says "read everything again".
constexpr std::string_view resetEvent = "reset";

/// Makes a stream for each client that listens. Used by any thread.
///
/// An event is sent with its number as id, its name and its path as {"path":"..."}. A client that states the
/// last number it got is sent what it missed, or one reset event where that is gone; one that states none is
/// told the number it begins at. When nothing happens, a comment is sent every now and then, so that both
/// ends learn of a broken connection.
class EventFeed {
public:
    static constexpr std::chrono::milliseconds defaultHeartbeat{15000};
    static constexpr std::size_t maximumStreams = 64;

    /// The ring must outlive the feed.
    explicit EventFeed(EventRing& ring, std::chrono::milliseconds heartbeat = defaultHeartbeat);
    ~EventFeed();
    EventFeed(const EventFeed&) = delete;
    EventFeed& operator=(const EventFeed&) = delete;

    /// A stream for a client whose Last-Event-ID header has that value, empty for none; null when there are
    /// as many streams as there may be. It may outlive the feed, and then gives nothing more.
    std::shared_ptr<BodyStream> open(std::string_view lastEventId);

private:
    class Stream;
    struct Shared;

    std::shared_ptr<Shared> shared_;
    int listener_;
    std::unique_ptr<class MaintenanceTimer> heart_;
};

}  // namespace epgset
