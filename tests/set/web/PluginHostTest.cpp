#include "set/web/PluginHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "set/log/LogCapture.h"
#include "set/web/PluginLibrary.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

WebRequest get(const std::string& path) {
    WebRequest request;
    request.method = "GET";
    request.path = "/ws/" + path;
    return request;
}

/// The test's plug-in, called by a host; log messages are collected.
class PluginHostTest : public ::testing::Test {
protected:
    WebResponse answer(const std::string& path) { return host_.answer(get(path), path); }

    /// What the answer to a request tells that runs one statement.
    std::string sqlErrorOf(const std::string& sql) {
        WebRequest request = get("sql");
        request.body = sql;
        const WebResponse response = host_.answer(request, "sql");
        EXPECT_EQ(200, response.status);
        EXPECT_EQ("status 200", response.body);
        return headerValue(response.headers, "EPG-SQL-Error");
    }

    static std::string printable() {
        std::string characters;
        for (char c = ' '; c < 0x7F; ++c)
            characters += c;
        return characters;
    }

    LogCapture log_{Container::Logger::Warning};
    PluginLibrary library_{TEST_PLUGIN};
    PluginHost host_{library_.descriptor()};
};

TEST_F(PluginHostTest, SendsWhatThePluginAnswers) {
    const WebResponse response = answer("status/201");
    EXPECT_EQ(201, response.status);
    EXPECT_EQ("status 201", response.body);
}

TEST_F(PluginHostTest, SendsTheAnswerThatWasWrittenBeforeAnException) {
    const WebResponse response = answer("answer-and-throw");
    EXPECT_EQ(500, response.status);
    EXPECT_EQ("answered", response.body);
    EXPECT_THAT(log_.messagesOf("set/web"), ElementsAre(HasSubstr("thrown after the answer")));
}

TEST_F(PluginHostTest, AnswersAnEmpty500WhenAnExceptionComesBeforeTheAnswer) {
    for (const char* path : {"throw", "throw-number"}) {
        const WebResponse response = answer(path);
        EXPECT_EQ(500, response.status);
        EXPECT_EQ("", response.body);
    }
    EXPECT_THAT(log_.messagesOf("set/web"), ElementsAre(HasSubstr("thrown before anything was written"),
                                                        HasSubstr("of an unknown type")));
    EXPECT_EQ(200, answer("status/200").status);
}

TEST_F(PluginHostTest, SendsNoAnswerThatWasCutShort) {
    for (const char* path : {"break-off", "short-of-memory"}) {
        const WebResponse response = answer(path);
        EXPECT_EQ(500, response.status) << path;
        EXPECT_EQ("the answer was cut short\n", response.body) << path;
    }
    EXPECT_EQ(200, answer("status/200").status);
}

TEST_F(PluginHostTest, SaysOfAChangeWhatThePluginSaidThoughItWasShortOfMemory) {
    WebRequest request = get("short-of-memory");
    request.method = "POST";
    EXPECT_EQ(201, host_.answer(request, "short-of-memory").status);
}

TEST_F(PluginHostTest, TellsOfEachException) {
    int failures = 0;
    host_.whenFailed([&failures] { ++failures; });
    answer("status/500");
    EXPECT_EQ(0, failures);
    answer("throw");
    answer("answer-and-throw");
    EXPECT_EQ(2, failures);
    host_.whenFailed({});
    answer("throw");
    EXPECT_EQ(2, failures);
}

TEST_F(PluginHostTest, AnswersAnEmpty404ForWhatThePluginLeavesUntouched) {
    const WebResponse response = answer("unknown");
    EXPECT_EQ(404, response.status);
    EXPECT_EQ("", response.body);
}

TEST_F(PluginHostTest, TellsWhichStatementFailed) {
    EXPECT_EQ("", sqlErrorOf("SELECT 1"));
    EXPECT_THAT(sqlErrorOf("SELECT x"), HasSubstr("no such column: x"));
    EXPECT_THAT(sqlErrorOf("SELECT abs(-9223372036854775808)"), HasSubstr("integer overflow"));
    EXPECT_EQ("", sqlErrorOf("SELECT 1"));
    EXPECT_EQ("", headerValue(answer("status/200").headers, "EPG-SQL-Error"));
}

TEST_F(PluginHostTest, TellsItInOnePrintableLine) {
    const std::string error = sqlErrorOf("SELECT `a\r\nX-Worse: \xC3\xA9\xFF" + std::string(5000, 'x') + "`");
    EXPECT_THAT(error, HasSubstr(R"(a\r\nX-Worse: \xC3\xA9\xFF)"));
    EXPECT_LE(error.size(), 512U);
    EXPECT_EQ(error.find_first_not_of(printable()), std::string::npos);
}

TEST_F(PluginHostTest, SurvivesAMaintenanceThatThrows) {
    EXPECT_TRUE(host_.maintain());
    EXPECT_FALSE(host_.maintain());
    EXPECT_TRUE(host_.maintain());
    EXPECT_THAT(log_.messagesOf("set/web"), ElementsAre(HasSubstr("maintenance failed")));
}

TEST_F(PluginHostTest, TellsThePeriodThatTheDescriptorStates) {
    EXPECT_EQ(std::chrono::hours(4), host_.maintenancePeriod());
}

TEST(PluginHostWithoutMaintenance, HasNoPeriodAndNothingToDo) {
    PluginDescriptor descriptor{};
    PluginHost host(descriptor);
    EXPECT_EQ(std::chrono::seconds(0), host.maintenancePeriod());
    EXPECT_TRUE(host.maintain());
}

std::atomic<int> inside = 0;
std::atomic<int> mostInside = 0;

void enterAndLeave() {
    const int now = ++inside;
    int most = mostInside;
    while (most < now && !mostInside.compare_exchange_weak(most, now)) {
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    --inside;
}

TEST(PluginHostThreads, CallThePluginOneAtATime) {
    PluginDescriptor descriptor{};
    descriptor.handleRequest = [](Container::HttpRequest&, Container::HttpResponse&) {
        enterAndLeave();
        return 1;
    };
    descriptor.onTimer = enterAndLeave;
    PluginHost host(descriptor);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&host] {
            for (int call = 0; call < 5; ++call) {
                host.answer(get(""), "");
                host.maintain();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(1, mostInside);
}

}  // namespace
}  // namespace epgset
