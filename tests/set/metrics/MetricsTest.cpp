#include "set/metrics/Metrics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "set/events/EventRing.h"

namespace epgset {
namespace {

using ::testing::HasSubstr;

TEST(Metrics, CountAnswersByResourceMethodAndStatus) {
    Metrics metrics;
    metrics.countAnswer("/ws/epg2/channels", "GET", 200, 100);
    metrics.countAnswer("/ws/epg2/channels", "GET", 200, 20);
    metrics.countAnswer("/ws/epg2/channels", "GET", 404, 0);
    const std::string text = metrics.text();
    EXPECT_THAT(text, HasSubstr("# TYPE epghost_http_answers_total counter\n"));
    EXPECT_THAT(
        text,
        HasSubstr(R"(epghost_http_answers_total{method="GET",resource="/ws/epg2/channels",status="200"} 2)"));
    EXPECT_THAT(
        text,
        HasSubstr(R"(epghost_http_answers_total{method="GET",resource="/ws/epg2/channels",status="404"} 1)"));
    EXPECT_THAT(text, HasSubstr(R"(epghost_http_answer_bytes_total{resource="/ws/epg2/channels"} 120)"));
}

TEST(Metrics, AddTimesUpByStage) {
    Metrics metrics;
    metrics.countTime(RequestStage::Wait, std::chrono::milliseconds(250));
    metrics.countTime(RequestStage::Wait, std::chrono::milliseconds(250));
    metrics.countTime(RequestStage::Plugin, std::chrono::milliseconds(1500));
    EXPECT_THAT(metrics.text(), HasSubstr(R"(epghost_request_seconds_total{stage="wait"} 0.5)"));
    EXPECT_THAT(metrics.text(), HasSubstr(R"(epghost_request_seconds_total{stage="plugin"} 1.5)"));
}

TEST(Metrics, CountWhatGuidesHeld) {
    Metrics metrics;
    metrics.countGuide(40, 2);
    metrics.countGuide(1, 0);
    EXPECT_THAT(metrics.text(), HasSubstr(R"(epghost_guide_programmes_total{outcome="read"} 41)"));
    EXPECT_THAT(metrics.text(), HasSubstr(R"(epghost_guide_programmes_total{outcome="skipped"} 2)"));
}

TEST(Metrics, TellHowOftenEachEventWas) {
    events().publish("of-this-test", "/");
    EXPECT_THAT(Metrics().text(), HasSubstr(R"(epghost_events_total{event="of-this-test"} 1)"));
}

}  // namespace
}  // namespace epgset
