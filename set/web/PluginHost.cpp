#include "set/web/PluginHost.h"

#include <exception>

#include "host/Logger.h"
#include "set/database/DatabaseRequest.h"
#include "set/log/LogEscape.h"
#include "set/memory/MemoryShortage.h"
#include "set/web/PluginExchange.h"

namespace epgset {
namespace {

// Made when the library is loaded: there may be no memory for it when it is needed.
const Container::Logger hostLogger = Container::Logger::logger("set/web");

/// Runs a call into the plug-in as one database request; false when an exception came out of it, which
/// is logged under the name of the call.
template <class Call>
bool callPlugin(const std::string& name, DatabaseRequest::Bound bound, Call&& call) {
    const DatabaseRequest databaseRequest(DatabaseRequest::defaultLimit, bound);
    try {
        call();
        return true;
    } catch (const std::exception& error) {
        hostLogger.error("%s: the plug-in threw an exception: %s", name, error.what());
    } catch (...) {
        hostLogger.error("%s: the plug-in threw an exception of an unknown type", name);
    }
    return false;
}

/// Tells why an answer may be empty: what SQLite said of a statement of this thread's last request that
/// failed. A header holds printable ASCII in one line; bytes beyond are written as escapes too.
void addDatabaseError(WebResponse& response) {
    if (lastDatabaseError().empty()) return;
    constexpr std::size_t maximumBytes = 512;
    setHeader(response.headers, "EPG-SQL-Error", asciiLogLine(lastDatabaseError(), maximumBytes));
}

}  // namespace

WebResponse PluginHost::answer(const WebRequest& request, const std::string& path) {
    PluginRequest pluginRequest(request, path);
    PluginResponse pluginResponse;
    const std::string name = request.method + " " + request.path;
    const std::lock_guard turn(turn_);
    takeMemoryShortage();
    const bool returned = callPlugin(name, DatabaseRequest::Bound::AllStatements,
                                     [&] { descriptor_.handleRequest(pluginRequest, pluginResponse); });
    const bool whole = !takeMemoryShortage() && returned;
    if (!returned) tellFailure();
    if (!returned && pluginResponse.untouched()) pluginResponse.setStatus(500);
    WebResponse response = pluginResponse.finish();
    // What was only read can be asked for again; of a change it is told what the plug-in says of it.
    const bool reads = request.method == "GET" || request.method == "HEAD";
    if (reads && !whole && response.status < 300) response = textResponse(500, "the answer was cut short");
    addDatabaseError(response);
    return response;
}

bool PluginHost::maintain() {
    if (descriptor_.onTimer == nullptr) return true;
    const std::lock_guard turn(turn_);
    const bool returned =
        callPlugin("maintenance", DatabaseRequest::Bound::EachStatement, [this] { descriptor_.onTimer(); });
    if (!returned) tellFailure();
    return returned;
}

void PluginHost::whenFailed(std::function<void()> failed) {
    const std::lock_guard turn(turn_);
    failed_ = std::move(failed);
}

void PluginHost::tellFailure() {
    try {
        if (failed_) failed_();
    } catch (const std::exception& error) {
        hostLogger.error("a failure of the plug-in has no consequence: %s", error.what());
    }
}

std::chrono::seconds PluginHost::maintenancePeriod() {
    int seconds = 0;
    if (descriptor_.onTimer == nullptr || descriptor_.getTimerPeriod == nullptr) {
        return std::chrono::seconds::zero();
    }
    const std::lock_guard turn(turn_);
    callPlugin("maintenance period", DatabaseRequest::Bound::EachStatement,
               [&] { seconds = descriptor_.getTimerPeriod(); });
    return std::chrono::seconds(seconds > 0 ? seconds : 0);
}

}  // namespace epgset
