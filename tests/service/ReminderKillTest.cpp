// What a set that is killed keeps of what it has answered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/service/ServiceFixture.h"

namespace epgset::test {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

/// A start as the service writes it, 2026-08-24T00:00:00+00:00 and each minute from there on.
std::string timeText(int minute, int second = 0) {
    const std::time_t time = 1'787'529'600 + std::time_t{minute} * 60 + second;
    std::tm parts{};
    gmtime_r(&time, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S+00:00", &parts)};
}

/// A client that books and cancels and knows what it was told. Bookings are known by their start, of which
/// none is used twice.
class BookingClient {
public:
    int booked = 0;                ///< bookings that were acknowledged
    int cancelled = 0;             ///< cancellations that were acknowledged
    int interrupted = 0;           ///< requests that were not answered
    std::atomic<int> requests{0};  ///< requests that were sent, this one included

    /// Compares what a set that was started again lists with what this client knows.
    void compare(HttpClient& http) {
        listed_ = list(http);
        for (const std::string& start : booked_)
            EXPECT_TRUE(listed_.contains(start)) << "lost: " << start;
        for (const auto& [start, id] : listed_) {
            EXPECT_FALSE(cancelled_.contains(start)) << "resurrected: " << start << " " << id;
            EXPECT_TRUE(booked_.contains(start) || start == inDoubt_) << "never asked for: " << start;
        }
        // What was not answered may have happened or not, and is what it is from now on.
        if (!inDoubt_.empty()) (listed_.contains(inDoubt_) ? booked_ : cancelled_).insert(inDoubt_);
        inDoubt_.clear();
    }

    /// Books and cancels until the set does not answer any more. Throws nothing.
    void work(HttpClient& http, std::mt19937& random) {
        try {
            for (;;) {
                ++requests;
                const bool cancel = !listed_.empty() && (listed_.size() > 20 || random() % 2 == 0);
                if (cancel) {
                    cancelOne(http, random);
                } else {
                    bookOne(http);
                }
            }
        } catch (const std::runtime_error&) {
            ++interrupted;
        }
    }

private:
    static std::map<std::string, std::string> list(HttpClient& http) {
        const HttpAnswer answer = http.get("/ws/epg2/schedules");
        std::map<std::string, std::string> ids;
        if (answer.status == 204) return ids;
        EXPECT_EQ(200, answer.status);
        rapidjson::Document document;
        document.Parse(answer.body.c_str());
        for (const auto& item : document["items"].GetArray())
            ids.emplace(item["start"].GetString(), item["id"].GetString());
        return ids;
    }

    void bookOne(HttpClient& http) {
        const std::string start = timeText(++minute_);
        inDoubt_ = start;
        const std::string body = R"({"status":"VIEW","channel_num":"1","antenna":"AIR","start":")" + start +
                                 R"(","end":")" + timeText(minute_, 30) + R"(","repeat":"ONCE"})";
        EXPECT_EQ(201, http.send("POST", "/ws/epg2/schedules", body).status);
        inDoubt_.clear();
        booked_.insert(start);
        ++booked;
    }

    /// Cancels one of those that were listed when the set was started.
    void cancelOne(HttpClient& http, std::mt19937& random) {
        const auto chosen =
            std::next(listed_.begin(), static_cast<std::ptrdiff_t>(random() % listed_.size()));
        const auto [start, id] = *chosen;
        listed_.erase(chosen);
        booked_.erase(start);
        inDoubt_ = start;
        EXPECT_EQ(200, http.request("DELETE", "/ws/epg2/schedules/" + id).status);
        inDoubt_.clear();
        cancelled_.insert(start);
        ++cancelled;
    }

    int minute_ = 0;
    std::map<std::string, std::string> listed_;  ///< ids by start, of what was listed and is not cancelled
    std::set<std::string> booked_;
    std::set<std::string> cancelled_;
    std::string inDoubt_;  ///< start of what the last request was about; empty when it was answered
};

TEST(ReminderKill, LosesNoBookingAndBringsNoneBackKilled100TimesAtRandomMoments) {
    constexpr int kills = 100;
    const TemporaryFolder folder;
    const EpghostProcess::Arguments options = {
        "--state", (folder.path() / "state").string(), "--port", "0", "--now", "2026-08-23T12:00:00Z",
        "--guide", EPG_TEST_DATA "/small.xml"};
    std::mt19937 random(20260823);   // NOLINT: the same each time
    std::mt19937 moments(20260824);  // NOLINT: likewise
    BookingClient client;
    for (int kill = 0; kill < kills; ++kill) {
        EpghostProcess process(options);
        if (kill % 10 == 9) {  // before or while it opens its store, or soon after
            std::this_thread::sleep_for(milliseconds(moments() % 100));
            EXPECT_EQ(128 + SIGKILL, process.stop(SIGKILL));
            continue;
        }
        HttpClient http(process.waitUntilReady());
        client.compare(http);
        // By requests, so that a slow machine does no less, and then somewhere within the last of them.
        const int last = client.requests + static_cast<int>(moments() % 8);
        std::thread killer([&, delay = microseconds(moments() % 10'000)] {
            while (client.requests < last)
                std::this_thread::sleep_for(microseconds(200));
            std::this_thread::sleep_for(delay);
            process.signal(SIGKILL);
        });
        client.work(http, random);
        killer.join();
        EXPECT_EQ(128 + SIGKILL, process.wait());
        if (::testing::Test::HasFailure()) return;
    }
    EpghostProcess process(options);
    HttpClient http(process.waitUntilReady());
    client.compare(http);
    EXPECT_EQ(0, process.stop());
    EXPECT_GT(client.booked, kills / 2);
    EXPECT_GT(client.cancelled, kills / 2);
    std::printf(
        "figure: killed %d times: %d bookings and %d cancellations acknowledged, %d requests unanswered;"
        " none lost, none resurrected\n",
        kills, client.booked, client.cancelled, client.interrupted);
}

}  // namespace
}  // namespace epgset::test
