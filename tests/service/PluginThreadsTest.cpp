// The real plug-in, called from many threads at once as a set may, without the turn that this set gives out.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <array>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/CRemindInfo.h"
#include "host/DomainException.h"
#include "set/log/LogControl.h"
#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/PluginLibrary.h"
#include "tests/support/FakeExchange.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestGuide.h"

namespace epgset::test {
namespace {

using epgtest::FakeRequest;
using epgtest::RecordingResponse;
using ::testing::IsEmpty;
using Ids = std::set<std::string>;

constexpr int threads = 8;
constexpr int rounds = 9;
constexpr std::int64_t midnight = 1'787'443'200;  // 2026-08-23T00:00:00Z
constexpr std::int64_t february = 1'801'440'000;  // 2027-02-01T00:00:00Z
constexpr int fewestChannels = 3;
constexpr int mostChannels = 6;

/// An answer that is not as it should be, for the message of the test.
std::string described(const std::string& method, const std::string& path, const RecordingResponse& response) {
    return fmt::format("{} {}: {} {:.200}", method, path, response.status, response.body());
}

/// The plug-in with a store, a guide and a clock, none of which waits for another.
class PluginThreads : public ::testing::Test {
protected:
    PluginThreads() {
        LogControl::setLevel(Container::Logger::Off);
        useClock(&clock_);
        useReminder(&store_);
        loadGuide(fewestChannels);
    }
    ~PluginThreads() override {
        epgtest::TestGuide().use();
        useReminder(nullptr);
        useClock(nullptr);
        LogControl::setLevel(Container::Logger::Warning);
    }

    static void loadGuide(int channels) {
        epgtest::TestGuide guide;
        for (int number = 1; number <= channels; ++number)
            guide.programmes(guide.channel(epgtest::Air, number), 30, midnight);
        guide.use();
    }

    static constexpr const char* channelList = "epg2/channels/cid-000-1/programs";

    /// Asks and answers the status; what is no answer of this interface is kept as a fault. 500 is one: a
    /// table in use cannot be filled again, which the client is told and the host by an exception.
    int ask(const std::string& method, const std::string& path, const std::string& body = "",
            std::string* answered = nullptr) {
        FakeRequest request(method, path);
        if (!body.empty()) request.withBody(body);
        RecordingResponse response;
        try {
            if (plugin_.descriptor().handleRequest(request, response) == 0) addFault("not answered: " + path);
        } catch (const Container::DomainException& error) {
            if (response.status != 500 || response.body() != error.what())
                addFault(described(method, path, response));
            return response.status;
        }
        rapidjson::Document document;
        const std::string text = response.body();
        // A channel is not found where its rows are not in yet, while another thread fills the table again.
        if (response.status == 404 && path == channelList) return response.status;
        const bool known = response.status == 200 || response.status == 201 || response.status == 204;
        if (!known || document.Parse(text.c_str()).HasParseError() || !document.IsObject())
            addFault(described(method, path, response));
        if (answered != nullptr) *answered = text;
        return response.status;
    }

    void addFault(const std::string& fault) {
        const std::lock_guard lock(faultsMutex_);
        faults_.push_back(fault);
    }

    /// Maintenance; what it throws, the host catches.
    void maintain() const {
        try {
            plugin_.descriptor().onTimer();
        } catch (const Container::DomainException&) {
            // The table was in use; the next time will do.
        }
    }

    /// The entry of the store that begins then, as the interface names it; none.
    std::optional<std::string> stored(std::uint32_t start) {
        for (const CRemindInfo& info : entries())
            if (info.StartTime() == start) return "sch_id_" + std::to_string(info.UID());
        return std::nullopt;
    }

    std::vector<CRemindInfo> entries() {
        int count = 0;
        std::vector<CRemindInfo> items;
        if (!store_.GetRemindItemByType(count, items, 2) || count != static_cast<int>(items.size()))
            addFault("the store does not say what it holds");
        return items;
    }

    Ids storedIds() {
        Ids ids;
        for (const CRemindInfo& info : entries())
            ids.insert("sch_id_" + std::to_string(info.UID()));
        return ids;
    }

    /// The members "id" of a list's items.
    Ids listed(const std::string& path) {
        std::string text;
        ask("GET", path, "", &text);
        rapidjson::Document list;
        list.Parse(text.c_str());
        Ids ids;
        if (!list.IsObject() || !list.HasMember("items")) return ids;
        for (const auto& item : list["items"].GetArray())
            ids.insert(item["id"].GetString());
        return ids;
    }

    /// Books an hour that no other booking has and, every third time, clears it again.
    void book(int thread, int round) {
        const auto start = static_cast<std::uint32_t>(february + 86'400 * thread + 3'600 * round);
        const std::string hour = fmt::format("2027-02-{:02}T{:02}", 1 + thread, round);
        const std::string body = fmt::format(R"({{"channel_num":"1","antenna":"AIR","status":"RECORD",)"
                                             R"("repeat":"ONCE","start":"{0}:00:00Z","end":"{0}:30:00Z"}})",
                                             hour);
        int status = 500;
        while (status == 500) {
            if (stored(start)) addFault("stored before it was answered as made: " + hour);
            status = ask("POST", "epg2/schedules", body);
        }
        const std::optional<std::string> id = stored(start);
        if (status != 201 || !id) {
            addFault(fmt::format("the booking of {} was answered {} and {}", hour, status,
                                 id ? "stored" : "not stored"));
            return;
        }
        if (round % 3 != 0) {
            const std::lock_guard lock(faultsMutex_);
            booked_.insert(*id);
            return;
        }
        do {
            status = ask("DELETE", "epg2/schedules/" + *id);
        } while (status == 500);
        if (status != 200 || stored(start)) addFault("not cleared: " + *id);
    }

    /// What one of the threads does.
    void live(int thread) {
        static constexpr std::array lists{"epg2/channels", "epg2/programs", "epg2/schedules", channelList};
        for (int round = 0; round < rounds; ++round) {
            book(thread, round);
            ask("GET", lists[static_cast<std::size_t>(thread + round) % lists.size()]);
            if (round % 4 == thread % 4) maintain();
        }
    }

    std::vector<std::string> faults_;
    Ids booked_;
    ManualClock clock_{midnight};

private:
    const TemporaryFolder folder_;
    ReminderStore store_{folder_.path() / ReminderStore::fileName};
    const PluginLibrary plugin_{EPG_PLUGIN};
    std::mutex faultsMutex_;
};

TEST_F(PluginThreads, LoseNoBookingAndGetWholeAnswers) {
    std::atomic<int> alive = threads;
    std::vector<std::thread> callers;
    for (int thread = 0; thread < threads; ++thread) {
        callers.emplace_back([this, thread, &alive] {
            live(thread);
            --alive;
        });
    }
    int guides = 0;
    while (alive > 0) {
        // Another guide each time, at a time at which maintenance fills the table too.
        loadGuide(fewestChannels + guides++ % (mostChannels - fewestChannels + 1));
        clock_.advance(60);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    for (std::thread& caller : callers)
        caller.join();

    EXPECT_THAT(faults_, IsEmpty());
    EXPECT_GT(guides, 1);
    EXPECT_EQ(storedIds(), booked_);
    EXPECT_EQ(booked_.size(), threads * (rounds - (rounds + 2) / 3));

    // Once they are done the table is as one thread would have it.
    loadGuide(fewestChannels);
    clock_.advance(601);
    maintain();
    EXPECT_EQ(listed("epg2/channels"), (Ids{"cid-000-1", "cid-000-2", "cid-000-3"}));
    EXPECT_EQ(listed("epg2/schedules"), booked_);
}

}  // namespace
}  // namespace epgset::test
