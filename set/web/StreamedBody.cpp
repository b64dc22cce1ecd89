#include "set/web/StreamedBody.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>

#include "host/Logger.h"

namespace epgset {
namespace {

/// What the library reads at a time.
constexpr std::size_t blockBytes = 4096;

}  // namespace

StreamedBody::StreamedBody(std::shared_ptr<BodyStream> stream, MHD_Connection* connection,
                           std::function<void(StreamedBody*)> gone)
    : stream_(std::move(stream)), connection_(connection), gone_(std::move(gone)) {}

MHD_Response* StreamedBody::makeResponse() {
    stream_->onMore([this] { wake(); });
    auto owned = std::make_unique<std::shared_ptr<StreamedBody>>(shared_from_this());
    MHD_Response* const response =
        MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, blockBytes, &read, owned.get(), &release);
    if (response) {
        static_cast<void>(owned.release());
    } else {
        stream_->onMore({});
    }
    return response;
}

void StreamedBody::end() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    if (std::exchange(resting_, false)) MHD_resume_connection(connection_);
}

ssize_t StreamedBody::read(void* self, std::uint64_t, char* buffer, std::size_t size) {
    try {
        return (*static_cast<std::shared_ptr<StreamedBody>*>(self))->read(buffer, size);
    } catch (const std::exception& error) {
        Container::Logger::logger("set/web").error("a stream ends: %s", error.what());
        return MHD_CONTENT_READER_END_WITH_ERROR;
    }
}

void StreamedBody::release(void* self) {
    const std::unique_ptr<std::shared_ptr<StreamedBody>> owned(
        static_cast<std::shared_ptr<StreamedBody>*>(self));
    (*owned)->stream_->onMore({});
    (*owned)->gone_(owned->get());
}

ssize_t StreamedBody::read(char* buffer, std::size_t size) {
    while (sent_ == text_.size()) {
        {
            const std::lock_guard lock(mutex_);
            if (ended_) return MHD_CONTENT_READER_END_OF_STREAM;
            if (!more_) {
                resting_ = true;
                MHD_suspend_connection(connection_);
                return 0;
            }
            more_ = false;
        }
        // Not with the mutex held: the stream wakes with a lock of its own held.
        std::optional<std::string> next = stream_->take();
        if (!next) return MHD_CONTENT_READER_END_OF_STREAM;
        text_ = std::move(*next);
        sent_ = 0;
    }
    const std::size_t piece = std::min(size, text_.size() - sent_);
    std::memcpy(buffer, text_.data() + sent_, piece);
    sent_ += piece;
    return static_cast<ssize_t>(piece);
}

void StreamedBody::wake() {
    const std::lock_guard lock(mutex_);
    more_ = true;
    if (std::exchange(resting_, false)) MHD_resume_connection(connection_);
}

}  // namespace epgset
