// Calls a plug-in.
#pragma once

#include <chrono>
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

    /// Answers one request. `path` is its path below the mount point, still percent-encoded. After an
    /// exception the answer is what the plug-in wrote before, and an empty 500 when it wrote nothing.
    WebResponse answer(const WebRequest& request, const std::string& path);

    /// Calls the maintenance callback and answers whether it came back without an exception.
    bool maintain();

    /// Time between two calls of the maintenance callback; 0 when the plug-in wants none.
    std::chrono::seconds maintenancePeriod();

private:
    const PluginDescriptor& descriptor_;
    std::mutex turn_;
};

}  // namespace epgset
