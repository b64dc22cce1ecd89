#include "set/metrics/Metrics.h"

#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

#include <utility>
#include <vector>

#include "set/database/DatabaseGuard.h"
#include "set/events/EventRing.h"
#include "set/middleware/Television.h"
#include "set/recorder/Recordings.h"

namespace epgset {
namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

prometheus::Family<prometheus::Counter>& counters(prometheus::Registry& registry, const char* name,
                                                  const char* help) {
    return prometheus::BuildCounter().Name(name).Help(help).Register(registry);
}

const char* stageName(RequestStage stage) {
    switch (stage) {
        case RequestStage::Wait:
            return "wait";
        case RequestStage::Plugin:
            return "plugin";
        case RequestStage::Tag:
            return "tag";
    }
    return "";
}

MetricFamily gauge(const char* name, const char* help, double value) {
    ClientMetric metric;
    metric.gauge.value = value;
    return {name, help, MetricType::Gauge, {std::move(metric)}};
}

MetricFamily total(const char* name, const char* help, std::uint64_t value) {
    ClientMetric metric;
    metric.counter.value = static_cast<double>(value);
    return {name, help, MetricType::Counter, {std::move(metric)}};
}

MetricFamily eventCounts() {
    MetricFamily family{
        "epghost_events_total", "Events by name: bookings, recordings, reloads.", MetricType::Counter, {}};
    for (const auto& [name, count] : events().counts()) {
        ClientMetric metric;
        metric.label = {{"event", name}};
        metric.counter.value = static_cast<double>(count);
        family.metric.push_back(std::move(metric));
    }
    return family;
}

}  // namespace

Metrics::Metrics()
    : answers_(counters(registry_, "epghost_http_answers_total", "Answers by resource, method and status.")),
      answerBytes_(counters(registry_, "epghost_http_answer_bytes_total", "Bytes of their bodies.")),
      stages_(counters(registry_, "epghost_request_seconds_total",
                       "Time that requests below /ws spent in each stage.")),
      endedConnections_(counters(registry_, "epghost_ended_connections_total",
                                 "Connections that the web server ended, by what they took too much of.")),
      guideEntries_(counters(registry_, "epghost_guide_programmes_total",
                             "Programmes that were read from guides, and those passed over.")) {}

void Metrics::countAnswer(const std::string& resource, const std::string& method, int status,
                          std::size_t bytes) {
    answers_.Add({{"resource", resource}, {"method", method}, {"status", std::to_string(status)}})
        .Increment();
    answerBytes_.Add({{"resource", resource}}).Increment(static_cast<double>(bytes));
}

void Metrics::countTime(RequestStage stage, std::chrono::steady_clock::duration time) {
    const std::chrono::duration<double> seconds = time;
    stages_.Add({{"stage", stageName(stage)}}).Increment(seconds.count());
}

void Metrics::countEndedConnection(const char* why) {
    endedConnections_.Add({{"why", why}}).Increment();
}

void Metrics::countGuide(std::size_t read, std::size_t skipped) {
    guideEntries_.Add({{"outcome", "read"}}).Increment(static_cast<double>(read));
    guideEntries_.Add({{"outcome", "skipped"}}).Increment(static_cast<double>(skipped));
}

std::string Metrics::text() const {
    std::vector<MetricFamily> families = registry_.Collect();
    families.push_back(eventCounts());
    families.push_back(total(
        "epghost_tables_made_total",
        "Tables made in the guide's database: the guide's own at each fill, and clients'.", tablesMade()));
    families.push_back(total("epghost_recorded_bytes_total", "Bytes of streams that were recorded.",
                             recordings().bytesRecorded()));
    const auto guide = currentGuide();
    families.push_back(
        gauge("epghost_channels", "Channels in use.", static_cast<double>(guide->channels().size())));
    families.push_back(
        gauge("epghost_programmes", "Programmes in use.", static_cast<double>(guide->programmes().size())));
    families.push_back(gauge("epghost_recordings", "Recordings that run.",
                             static_cast<double>(recordings().running().size())));
    return prometheus::TextSerializer().Serialize(families);
}

Metrics& metrics() {
    static Metrics counters;
    return counters;
}

}  // namespace epgset
