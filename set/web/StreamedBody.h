// Sends a body that grows.
#pragma once

#include <microhttpd.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "set/web/BodyStream.h"

namespace epgset {

/// The bridge from a body's stream to its connection, which rests while there is nothing to send. Its
/// reader's side is called by the connection's thread.
class StreamedBody : public std::enable_shared_from_this<StreamedBody> {
public:
    /// `gone` is called when the library has done with the response.
    StreamedBody(std::shared_ptr<BodyStream> stream, MHD_Connection* connection,
                 std::function<void(StreamedBody*)> gone);

    /// The library's form of a response with that body, which keeps the body alive; null for lack of memory.
    MHD_Response* makeResponse();

    /// Ends the body, so that the connection rests no longer. Called by any thread.
    void end();

private:
    static ssize_t read(void* self, std::uint64_t position, char* buffer, std::size_t size);
    static void release(void* self);

    ssize_t read(char* buffer, std::size_t size);
    void wake();

    const std::shared_ptr<BodyStream> stream_;
    MHD_Connection* const connection_;
    const std::function<void(StreamedBody*)> gone_;
    std::mutex mutex_;
    std::string text_;      ///< the connection thread's: taken from the stream
    std::size_t sent_ = 0;  ///< the connection thread's: of text_
    bool more_ = true;      ///< guarded by mutex_: the stream may have more
    bool resting_ = false;  ///< guarded by mutex_
    bool ended_ = false;    ///< guarded by mutex_
};

}  // namespace epgset
