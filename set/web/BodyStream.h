// A response body that grows while it is sent.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace epgset {

/// Where the bytes of such a body come from. The server asks for more when it has sent what it got.
class BodyStream {
public:
    virtual ~BodyStream() = default;

    /// The next bytes; empty when there are none now. Nothing: the body has ended.
    virtual std::optional<std::string> take() = 0;

    /// Has `wake` called, by any thread, when take() may have more to give; an empty one ends that, and none
    /// runs any more when this comes back. `wake` does not call the stream.
    virtual void onMore(std::function<void()> wake) = 0;
};

}  // namespace epgset
