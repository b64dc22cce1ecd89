#include "set/web/EventFeed.h"

#include <algorithm>
#include <charconv>
#include <mutex>
#include <utility>
#include <vector>

#include "set/text/JsonWriter.h"
#include "set/web/MaintenanceTimer.h"

namespace epgset {
namespace {

/// How long a client is to wait before it connects again, in milliseconds.
constexpr std::string_view begin = "retry: 3000\n";

constexpr std::string_view heartbeatComment = ": nothing new\n\n";

/// Where a reset event points: everything.
constexpr std::string_view everything = "/ws/epg2";

std::string dataOf(std::string_view path) {
    JsonBuffer text;
    JsonWriter<> json(text);
    json.StartObject();
    json.Key("path");
    json.String(path.data(), static_cast<rapidjson::SizeType>(path.size()));
    json.EndObject();
    return {text.GetString(), text.GetSize()};
}

void append(std::string& text, std::uint64_t id, std::string_view name, std::string_view path) {
    text.append("id: ").append(std::to_string(id)).append("\nevent: ").append(name);
    text.append("\ndata: ").append(dataOf(path)).append("\n\n");
}

/// The number in a Last-Event-ID header; one that was never given for a text that is no number.
std::uint64_t numberOf(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? number : ~std::uint64_t{0};
}

}  // namespace

/// What the feed and its streams share.
struct EventFeed::Shared {
    explicit Shared(EventRing& events) : ring(&events) {}

    /// Wakes every stream; `beat`: so that each sends something.
    void wakeAll(bool beat);

    std::mutex mutex;
    EventRing* ring;               ///< guarded by mutex; null: the feed is gone
    std::vector<Stream*> streams;  ///< guarded by mutex
};

class EventFeed::Stream : public BodyStream {
public:
    Stream(std::shared_ptr<Shared> shared, std::string_view lastEventId) : shared_(std::move(shared)) {
        const std::uint64_t last = shared_->ring->last();
        pending_ = begin;
        if (lastEventId.empty()) {
            sent_ = last;
            // An id without data: the client remembers it and sees no event.
            pending_.append("id: ").append(std::to_string(last)).append("\n");
        } else {
            sent_ = numberOf(lastEventId);
        }
        pending_.append("\n");
        shared_->streams.push_back(this);
    }

    ~Stream() override {
        const std::lock_guard lock(shared_->mutex);
        std::erase(shared_->streams, this);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    std::optional<std::string> take() override {
        const std::lock_guard lock(shared_->mutex);
        if (!shared_->ring) return std::nullopt;
        std::string text = std::move(pending_);
        pending_.clear();
        if (const auto events = shared_->ring->after(sent_)) {
            for (const Event& event : *events) {
                append(text, event.id, event.name, event.path);
                sent_ = event.id;
            }
        } else {
            sent_ = shared_->ring->last();
            append(text, sent_, resetEvent, everything);
        }
        if (text.empty() && beat_) text = heartbeatComment;
        beat_ = false;
        return text;
    }

    void onMore(std::function<void()> wake) override {
        const std::lock_guard lock(shared_->mutex);
        wake_ = std::move(wake);
    }

    /// With the shared mutex held.
    void wake(bool beat) {
        beat_ = beat_ || beat;
        if (wake_) wake_();
    }

private:
    const std::shared_ptr<Shared> shared_;
    std::function<void()> wake_;  ///< this and the following are guarded by the shared mutex
    std::string pending_;
    std::uint64_t sent_ = 0;
    bool beat_ = false;
};

void EventFeed::Shared::wakeAll(bool beat) {
    const std::lock_guard lock(mutex);
    for (Stream* stream : streams)
        stream->wake(beat);
}

EventFeed::EventFeed(EventRing& ring, std::chrono::milliseconds heartbeat)
    : shared_(std::make_shared<Shared>(ring)),
      listener_(ring.addListener([shared = shared_] { shared->wakeAll(false); })),
      heart_(std::make_unique<MaintenanceTimer>([shared = shared_] { shared->wakeAll(true); }, heartbeat)) {}

EventFeed::~EventFeed() {
    heart_.reset();
    shared_->ring->removeListener(listener_);
    const std::lock_guard lock(shared_->mutex);
    shared_->ring = nullptr;
    for (Stream* stream : shared_->streams)
        stream->wake(false);
}

std::shared_ptr<BodyStream> EventFeed::open(std::string_view lastEventId) {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->streams.size() >= maximumStreams) return nullptr;
    return std::make_shared<Stream>(shared_, lastEventId);
}

}  // namespace epgset
