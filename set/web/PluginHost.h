// Calls a plug-in.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <string>

#include "host/Plugin.h"
#include "set/web/WebMessage.h"

namespace epgset {

/// Calls a plug-in from one thread at a time: used by any thread, each of which waits for its turn. What
/// comes out of the plug-in as an exception is logged and ends here. Each call is a database request of
/// its own, with a bound of its statements' time and with no transaction left open behind it.
class PluginHost {
public:
    /// The descriptor must outlive the host.
    explicit PluginHost(const PluginDescriptor& descriptor) : descriptor_(descriptor) {}

    /// Has `failed` called after each call of the plug-in that an exception came out of, by the thread that
    /// called, with the turn held; an empty one ends that. It must not call the host.
    void whenFailed(std::function<void()> failed);

    /// Answers one request. `path` is its path below the mount point, still percent-encoded. After an
    /// exception the answer is what the plug-in wrote before, and an empty 500 when it wrote nothing. What
    /// was only read is answered 500 when it was cut short, by an exception or for want of memory.
    WebResponse answer(const WebRequest& request, const std::string& path);

    /// Calls the maintenance callback and answers whether it came back without an exception.
    bool maintain();

    /// Time between two calls of the maintenance callback; 0 when the plug-in wants none.
    std::chrono::seconds maintenancePeriod();

private:
    void tellFailure();

    const PluginDescriptor& descriptor_;
    std::mutex turn_;
    std::function<void()> failed_;  ///< guarded by turn_
};

}  // namespace epgset
