// The set's counters.
#pragma once

#include <prometheus/counter.h>
#include <prometheus/family.h>
#include <prometheus/registry.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace epgset {

/// Where the time of a request goes.
enum class RequestStage {
    Wait,    ///< until its turn comes
    Plugin,  ///< in the plug-in
    Tag      ///< for the entity tag
};

/// Counts what the set does since it was started. Used by any thread.
class Metrics {
public:
    Metrics();

    /// One answer, by resource (resourceOf()), method and status, with the bytes of its body.
    void countAnswer(const std::string& resource, const std::string& method, int status, std::size_t bytes);

    void countTime(RequestStage stage, std::chrono::steady_clock::duration time);

    /// The web server ended a connection, for want of "room" or "memory", or since "head", "body" or "answer"
    /// took too long, or the "length" of a body was too great.
    void countEndedConnection(const char* why);

    /// A guide was read: how many programmes were taken and how many passed over.
    void countGuide(std::size_t read, std::size_t skipped);

    /// The counters in Prometheus' text form, with those that the set's parts keep themselves.
    std::string text() const;

private:
    prometheus::Registry registry_;
    prometheus::Family<prometheus::Counter>& answers_;
    prometheus::Family<prometheus::Counter>& answerBytes_;
    prometheus::Family<prometheus::Counter>& stages_;
    prometheus::Family<prometheus::Counter>& endedConnections_;
    prometheus::Family<prometheus::Counter>& guideEntries_;
};

/// The set's metrics.
Metrics& metrics();

}  // namespace epgset
