// Kept answers: which are kept, and that none is ever out of date.
#include "set/web/AnswerCache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "set/log/LogControl.h"
#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/PluginHost.h"
#include "set/web/PluginLibrary.h"
#include "set/web/SetRoutes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestGuide.h"
#include "tests/support/WebRequests.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;

WebRequest get(const std::string& path, const std::string& query = "", const WebHeaders& headers = {}) {
    return webRequest("GET", path, query, "", headers);
}

WebResponse plain(const std::string& body) {
    WebResponse response;
    response.body = body;
    return response;
}

TEST(AnswerKey, IsOfListsAndTheirItems) {
    EXPECT_TRUE(answerKey(get("/ws/epg2/channels")));
    EXPECT_TRUE(answerKey(get("/ws/epg2/programs", "items_max=2")));
    EXPECT_TRUE(answerKey(get("/ws/epg2/schedules/sch_id_1")));
    for (const char* path : {"/ws/epg2", "/ws/epg2/antennas", "/ws/epg2/stopRecording", "/set/status", "/"})
        EXPECT_FALSE(answerKey(get(path))) << path;
    WebRequest request = get("/ws/epg2/channels");
    for (const char* method : {"HEAD", "POST", "PUT", "DELETE", "get"}) {
        request.method = method;
        EXPECT_FALSE(answerKey(request)) << method;
    }
}

TEST(AnswerKey, TellsRequestsApart) {
    const auto key = answerKey(get("/ws/epg2/channels", "a=b"));
    EXPECT_NE(key, answerKey(get("/ws/epg2/channels", "a=c")));
    EXPECT_NE(key, answerKey(get("/ws/epg2/channels/a=b")));
    EXPECT_NE(key, answerKey(get("/ws/epg2/channels", "a=b", {{"Accept", "application/xml"}})));
    EXPECT_EQ(key, answerKey(get("/ws/epg2/channels", "a=b", {{"X-Other", "1"}})));
}

TEST(AnswerCache, GivesAnAnswerUnderItsRevisionOnly) {
    AnswerCache cache(10000);
    const StateRevision revision{1, 2, 3, 4, 60, true};
    WebResponse kept = plain("body");
    cache.keep("key", revision, kept);
    EXPECT_EQ(bodyOf(kept), "body");
    ASSERT_TRUE(cache.find("key", revision));
    EXPECT_EQ(bodyOf(*cache.find("key", revision)), "body");
    EXPECT_FALSE(cache.find("other", revision));
    for (const auto& change : std::vector<std::function<void(StateRevision&)>>{
             [](StateRevision& r) { ++r.guide; }, [](StateRevision& r) { ++r.bookings; },
             [](StateRevision& r) { ++r.table; }, [](StateRevision& r) { ++r.clients; },
             [](StateRevision& r) { ++r.zoneMinutes; }, [](StateRevision& r) { r.daylightSaving = false; }}) {
        WebResponse again = plain("body");
        cache.keep("key", revision, again);
        StateRevision other = revision;
        change(other);
        EXPECT_FALSE(cache.find("key", other));
    }
}

TEST(AnswerCache, LetsTheLeastRecentlyUsedGoFirst) {
    AnswerCache cache(3000);
    const StateRevision revision;
    for (const char* key : {"one", "two"}) {
        WebResponse response = plain(std::string(700, 'x'));
        cache.keep(key, revision, response);
    }
    EXPECT_TRUE(cache.find("one", revision));
    WebResponse third = plain(std::string(700, 'x'));
    cache.keep("three", revision, third);
    EXPECT_TRUE(cache.find("one", revision));
    EXPECT_FALSE(cache.find("two", revision));
    EXPECT_TRUE(cache.find("three", revision));
    EXPECT_LE(cache.size(), 3000U);
}

TEST(AnswerCache, KeepsNothingThatIsTooLargeOrNoPlainAnswer) {
    AnswerCache cache(3000);
    WebResponse large = plain(std::string(3000, 'x'));
    cache.keep("large", {}, large);
    WebResponse missing = textResponse(404, "");
    cache.keep("missing", {}, missing);
    WebResponse failed = plain("");
    setHeader(failed.headers, "EPG-SQL-Error", "interrupted");
    cache.keep("failed", {}, failed);
    WebResponse good = plain("");
    AnswerCache(0).keep("none", {}, good);
    EXPECT_EQ(cache.size(), 0U);
}

/// A set in this process, with the real plug-in, that random things happen to: the same for the same seed as
/// long as it answers the same.
class RandomSet {
public:
    RandomSet(unsigned seed, std::size_t answerCache, const fs::path& folder)
        : random_(seed),
          store_(folder / ReminderStore::fileName),
          library_(EPG_PLUGIN),
          host_(library_.descriptor()),
          routes_(host_, {"on", "UTC"}, {}, answerCache) {
        useClock(&clock_);
        useReminder(&store_);
        loadGuide();
        host_.maintain();
    }

    ~RandomSet() {
        useReminder(nullptr);
        useClock(nullptr);
    }

    /// Lets one thing happen and answers what a client sees of it.
    std::string step() {
        const unsigned choice = pick(100);
        if (choice < 70) return read();
        if (choice < 80) return book();
        if (choice < 84) return ask("DELETE", "/ws/epg2/schedules/sch_id_" + std::to_string(1 + pick(40)));
        if (choice < 88) return writeSql();
        if (choice < 90) return askSql("SELECT ChannelId, ProgramName, ScheduleId FROM myView");
        if (choice < 93) return moveClock();
        if (choice < 95) return loadGuide();
        if (choice < 97) return std::to_string(host_.maintain());
        return record();
    }

    std::size_t hits() const { return hits_; }

private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

    std::string read() {
        static const std::array<std::pair<const char*, const char*>, 14> resources{{
            {"/ws/epg2/channels", ""},
            {"/ws/epg2/channels", "items_max=2&items_start_index=1"},
            {"/ws/epg2/channels", "sort=name&sort_order=descend"},
            {"/ws/epg2/channels/cid-000-2", ""},
            {"/ws/epg2/channels/cid-000-1/programs", ""},
            {"/ws/epg2/programs", ""},
            {"/ws/epg2/programs", "items_max=5"},
            {"/ws/epg2/programs", "title=news"},
            {"/ws/epg2/programs", "bad=parameter"},
            {"/ws/epg2/programs/PROGRAMME", ""},
            {"/ws/epg2/programs/PROGRAMME/schedule", ""},
            {"/ws/epg2/programs/PROGRAMME/detail", ""},
            {"/ws/epg2/schedules", ""},
            {"/ws/epg2/schedules/sch_id_3", ""},
        }};
        auto [path, query] = resources[pick(resources.size())];
        std::string target = path;
        if (const auto at = target.find("PROGRAMME"); at != std::string::npos) {
            target.replace(at, 9, programme());
        }
        WebHeaders headers;
        if (pick(4) == 0) headers.emplace_back("Accept", "application/xml");
        if (pick(4) == 0 && !lastTag_.empty()) headers.emplace_back("If-None-Match", lastTag_);
        return ask("GET", target, query, "", headers);
    }

    std::string book() {
        static const std::array bodies{
            R"({"status":"RECORD"})",
            R"({"status":"VIEW","force":"force"})",
            R"({"status":"RECORD","repeat":"SERIES","force":"force"})",
            R"({"status":"NONE"})",
        };
        if (pick(3) > 0) {
            return ask("POST", "/ws/epg2/programs/" + programme() + "/schedule", "",
                       bodies[pick(bodies.size())]);
        }
        const std::string hour = std::to_string(10 + pick(10));
        return ask("POST", "/ws/epg2/schedules", "",
                   R"({"channel_num":"1","antenna":"AIR","status":"RECORD","repeat":"ONCE",)"
                   R"("start":"2026-10-25T)" +
                       hour + R"(:00:00Z","end":"2026-10-25T)" + hour + R"(:30:00Z"})");
    }

    std::string writeSql() {
        static const std::array statements{
            "UPDATE myView SET ProgramName='changed' WHERE EventId LIKE '%3'",
            "DELETE FROM myView WHERE EventId LIKE '%17'",
            "UPDATE myView SET ScheduleId='sch_id_99' WHERE EventId LIKE '%255'",
        };
        return askSql(statements[pick(statements.size())]);
    }

    std::string askSql(std::string sql) {
        std::string query = "sql=";
        for (const char letter : sql)
            query += letter == ' '   ? std::string("+")
                     : letter == '%' ? std::string("%25")
                                     : std::string(1, letter);
        return ask(pick(2) == 0 ? "GET" : "POST", "/ws/epg2", query);
    }

    std::string moveClock() {
        clock_.advance(pick(900));
        // Daylight saving ends at 2026-10-25T01:00:00Z.
        if (pick(3) == 0) clock_.setZone(60, pick(2) == 0);
        return std::to_string(store_.removeEnded(clock_.now()));
    }

    std::string loadGuide() {
        epgtest::TestGuide guide;
        for (int number = 1; number <= 4; ++number) {
            const auto channel = guide.channel(epgtest::Air, number, 0, "Channel " + std::to_string(number));
            const int programmes = 18 + static_cast<int>(pick(6));
            const auto first = static_cast<std::uint32_t>(clock_.now() / 1800 * 1800);
            for (int i = 0; i < programmes; ++i) {
                const auto start = first + static_cast<std::uint32_t>(i) * 1800;
                guide.programme(channel, start, start + 1800,
                                pick(3) == 0 ? "News" : "Film " + std::to_string(i),
                                static_cast<int>(start / 60 % 65535), "Synopsis");
            }
        }
        guide.use();
        return "loaded";
    }

    std::string record() {
        const auto running = store_.running(clock_.now());
        if (running.empty()) return "none";
        const ReminderEntry& entry = running[pick(static_cast<unsigned>(running.size()))];
        if (pick(2) == 0) {
            store_.recordingBegan(entry.info.UID(), entry.start);
        } else {
            store_.recordingEnded(entry.info.UID());
        }
        return "recorded";
    }

    /// The id of a programme that was seen last.
    const std::string& programme() { return programme_; }

    std::string ask(const std::string& method, const std::string& path, const std::string& query = "",
                    const std::string& body = "", const WebHeaders& headers = {}) {
        WebRequest request = get(path, query, headers);
        request.method = method;
        request.body = body;
        request.bodyLength = static_cast<std::int64_t>(body.size());
        std::optional<WebResponse> response = routes_.answerAtOnce(request);
        if (response) ++hits_;
        if (!response) response = routes_.answerInTurn(request);
        const std::string& text = bodyOf(*response);
        lastTag_ = headerValue(response->headers, "ETag");
        findProgramme(text);
        std::string seen = method + " " + path + "?" + query + " " + std::to_string(response->status) + "\n";
        for (const auto& [name, value] : response->headers)
            seen += name + ": " + value + "\n";
        return seen + text;
    }

    void findProgramme(const std::string& text) {
        static const std::string mark = "\"id\":\"";
        std::vector<std::string> ids;
        for (auto at = text.find(mark); at != std::string::npos && ids.size() < 50;
             at = text.find(mark, at + 1)) {
            const auto from = at + mark.size();
            ids.push_back(text.substr(from, text.find('"', from) - from));
        }
        std::erase_if(ids, [](const std::string& id) {
            return id.find("pid") == std::string::npos && id.find('_') == std::string::npos;
        });
        if (!ids.empty()) programme_ = ids[pick(static_cast<unsigned>(ids.size()))];
    }

    std::mt19937 random_;
    ManualClock clock_{1792879200};  // 2026-10-24T22:00:00Z
    ReminderStore store_;
    PluginLibrary library_;
    PluginHost host_;
    SetRoutes routes_;
    std::string programme_ = "none";
    std::string lastTag_;
    std::size_t hits_ = 0;
};

/// A random set in a process of its own.
class SetApart {
public:
    SetApart(unsigned seed, int steps, std::size_t answerCache) : child_(::fork()) {
        if (child_ != 0) return;
        LogControl::setLevel(Container::Logger::Off);
        std::ofstream file(output(), std::ios::binary);
        RandomSet set(seed, answerCache, folder_.path());
        for (int step = 0; step < steps; ++step)
            file << "step " << step << ": " << set.step() << "\n";
        file << "hits: " << (set.hits() > 0) << "\n";
        file.close();
        ::_exit(file ? 0 : 1);
    }

    /// Waits until it has ended and answers what was seen of each step.
    std::string seen() const {
        int status = 0;
        ::waitpid(child_, &status, 0);
        EXPECT_EQ(status, 0);
        std::ifstream file(output(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    fs::path output() const { return folder_.path() / "seen"; }

    const TemporaryFolder folder_;
    const pid_t child_;
};

TEST(KeptAnswers, AreTheOnesThatThePluginWouldGive) {
    constexpr int runs = 5;
    constexpr int steps = 2000;
    for (unsigned seed = 1; seed <= runs; ++seed) {
        const SetApart keeping(seed, steps, std::size_t{16} << 20U);
        const SetApart asking(seed, steps, 0);
        const std::string with = keeping.seen();
        const std::string without = asking.seen();
        ASSERT_TRUE(with.ends_with("hits: 1\n")) << "nothing was kept";
        ASSERT_TRUE(without.ends_with("hits: 0\n"));
        const auto differ = std::mismatch(with.begin(), with.end() - 8, without.begin(), without.end() - 8);
        const auto at = static_cast<std::size_t>(differ.first - with.begin());
        const auto step = with.rfind("\nstep ", at) + 1;
        ASSERT_EQ(at, with.size() - 8) << "seed " << seed << "\nwith: " << with.substr(step, 1500)
                                       << "\nwithout: " << without.substr(step, 1500);
    }
    std::cout << "figure: " << runs * steps
              << " random steps, each seen the same with and without kept answers\n";
}

}  // namespace
}  // namespace epgset::test
