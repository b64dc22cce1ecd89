#include <gmock/gmock.h>

#include <functional>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

#include "host/CommonPlugin.h"
#include "host/DomainException.h"
#include "host/Plugin.h"
#include "set/database/DatabaseFaults.h"
#include "tests/plugin/FrameTest.h"

extern "C" int pluginMainEntry(std::uintptr_t hostContext, const PluginDescriptor** descriptorOut);

namespace epgtest {
namespace {

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const PluginDescriptor& descriptor() {
    const PluginDescriptor* out = nullptr;
    pluginMainEntry(0, &out);
    return *out;
}

/// A request that counts how often it is asked for its file.
class CountingRequest final : public Container::HttpRequest, private Container::Uri {
public:
    void getMethod(std::string& method) const override { method = "GET"; }
    void getHeader(const std::string&, std::string& value) const override { value.clear(); }
    const Container::Uri& getUri() const override { return *this; }
    std::istream& getInputStream() override { return body_; }
    int getContentLength() const override { return 0; }
    void getPath(std::string& path) const override { path = "other"; }

    mutable int filesAsked = 0;

private:
    void getFile(std::string& file) const override {
        ++filesAsked;
        file = "/ws/other";
    }
    void getQuery(std::string& query) const override { query.clear(); }

    std::istringstream body_;
};

/// An exception of the container's kind that a copy cannot pass for.
struct SpecialException : Container::DomainException {
    using Container::DomainException::DomainException;
};

class RequestHandler : public FrameTest {
protected:
    RequestHandler() { log.clear(); }

    int handle(FakeRequest& request) { return handler_(request, response); }
    int handle(FakeRequest&& request) { return handle(request); }

    static void useGuideWithAChannel() {
        TestGuide guide;
        guide.programmes(guide.channel(Air, 1), 1);
        guide.use();
    }

    std::vector<std::string> linesAt(Logger::Level level) const {
        return log.messagesOf("EpgSQLPlugin", level);
    }

private:
    int (*const handler_)(Container::HttpRequest&, Container::HttpResponse&) = descriptor().handleRequest;
};

TEST_F(RequestHandler, TracesMethodAndFileAndAnEmptyLineFirst) {
    handle({"DELETE", "other"});
    const auto lines = frameLines();
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[0], LogLine(Logger::Trace, "Method - DELETE"));
    EXPECT_EQ(lines[1], LogLine(Logger::Trace, "File - /ws/other"));
    EXPECT_EQ(lines[2], LogLine(Logger::Trace, ""));
}

TEST_F(RequestHandler, TracesThemBeforeItLooksAtTheRequest) {
    handle({"", ""});
    EXPECT_THAT(frameLines(), ElementsAre(LogLine(Logger::Trace, "Method - "),
                                          LogLine(Logger::Trace, "File - /ws/"), LogLine(Logger::Trace, ""),
                                          LogLine(Logger::Error, "[EPG callback] Invalid param")));
}

TEST_F(RequestHandler, AssemblesTracesOnlyWhileTracing) {
    CountingRequest traced;
    CountingRequest untraced;
    descriptor().handleRequest(traced, response);
    EXPECT_EQ(traced.filesAsked, 1);

    log.clear();
    epgset::LogControl::setLevel(Logger::Debug);
    descriptor().handleRequest(untraced, response);
    EXPECT_EQ(untraced.filesAsked, 0);
    EXPECT_THAT(linesAt(Logger::Trace), IsEmpty());
    EXPECT_THAT(linesAt(Logger::Debug), Not(IsEmpty()));
}

TEST_F(RequestHandler, IsNotHarmedByFormatsInMethodAndFile) {
    EXPECT_EQ(handle({"%n%s%99999d", "%25n%25s%25n"}), 1);
    EXPECT_THAT(linesAt(Logger::Trace), Contains("Method - %n%s%99999d"));
    EXPECT_THAT(linesAt(Logger::Trace), Contains("File - /ws/%25n%25s%25n"));
}

TEST_F(RequestHandler, AnswersWhatTheBridgeAnswers) {
    answerQueriesWith(404);
    EXPECT_EQ(handle({"GET", "epg2/channels"}), 1);
    EXPECT_EQ(response.status, 404);
    EXPECT_EQ(response.body(), "");
}

TEST_F(RequestHandler, LeavesAnAnsweredButUntouchedResponseAlone) {
    EXPECT_EQ(handle({"GET", "other"}), 1);
    EXPECT_EQ(response.status, RecordingResponse::unset);
    EXPECT_THAT(response.headers, IsEmpty());
}

TEST_F(RequestHandler, WritesTheHostsErrorForWhatTheBridgeLeavesOpen) {
    RecordingResponse expected;
    CommonPlugin::writeError(expected, 404, "Unable to locate URL, so go bang", nullptr);
    const auto isCallOfResponse = [](const std::string& call) {
        return call.starts_with("set") || call.starts_with("get") || call.starts_with("commit");
    };

    struct {
        const char* method;
        const char* path;
        int contentLength;
    } const requests[] = {
        {"GET", "", 0}, {"", "epg2/channels", 0}, {"GET", "a%00b", 0}, {"PUT", "epg2/channels", -1}};
    for (const auto& [method, path, contentLength] : requests) {
        SCOPED_TRACE(std::string(method) + " " + path);
        RecordingResponse actual;
        FakeRequest request(method, path);
        EXPECT_EQ(descriptor().handleRequest(request.withContentLength(contentLength), actual), 0);
        std::erase_if(actual.calls, std::not_fn(isCallOfResponse));
        EXPECT_EQ(actual.calls, expected.calls);
        EXPECT_EQ(actual.status, 404);
        EXPECT_EQ(actual.body(), expected.body());
        EXPECT_THAT(actual.body(), testing::HasSubstr("Unable to locate URL, so go bang"));
    }
}

TEST_F(RequestHandler, AnswersAFailedFirstFillAndHandsItsExceptionOn) {
    useGuideWithAChannel();
    const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
    try {
        handle({"GET", "epg2/channels"});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Container::DomainException& exception) {
        EXPECT_STREQ(exception.what(), "Failed to create DB entry");
    }
    EXPECT_THAT(response.headers, ElementsAre(std::pair("Content-Type", "text/plain")));
    EXPECT_EQ(response.status, 500);
    EXPECT_EQ(response.body(), "Failed to create DB entry");
}

TEST_F(RequestHandler, LogsAnExceptionThenAnswersItInOrder) {
    epgset::LogControl::capture([this](const epgset::LogRecord& record) {
        if (record.level == Logger::Error) calls.push_back(record.logger + " error: " + record.message);
    });
    service.query = [](const ServiceQuery&) -> int { throw Container::DomainException("what %s went %n"); };
    EXPECT_THROW(handle({"GET", "epg2/channels"}), Container::DomainException);
    EXPECT_THAT(calls, ElementsAre("parse path \"epg2/channels\" -1", "parse query \"\" -1", "make document",
                                   "check", "query", "delete path", "delete query", "destroy document",
                                   "EpgSQLPlugin error: DomainException error occurred what %s went %n",
                                   "setHeader Content-Type: text/plain", "setStatus 500", "commitHeaders",
                                   "getOutputStream"));
    EXPECT_EQ(response.body(), "what %s went %n");
}

TEST_F(RequestHandler, RethrowsTheVeryException) {
    const void* thrown = nullptr;
    service.query = [&thrown](const ServiceQuery&) -> int {
        try {
            throw SpecialException("special");
        } catch (const SpecialException& exception) {
            thrown = &exception;
            throw;
        }
    };
    try {
        handle({"GET", "epg2/channels"});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Container::DomainException& exception) {
        EXPECT_EQ(&exception, thrown);
        EXPECT_EQ(typeid(exception), typeid(SpecialException));
    }
    EXPECT_EQ(response.status, 500);
}

TEST_F(RequestHandler, LetsOtherExceptionsPassUnanswered) {
    service.query = [](const ServiceQuery&) -> int { throw std::runtime_error("another kind"); };
    EXPECT_THROW(handle({"GET", "epg2/channels"}), std::runtime_error);
    service.query = [](const ServiceQuery&) -> int { throw 7; };
    EXPECT_THROW(handle({"GET", "epg2/channels"}), int);
    EXPECT_EQ(response.status, RecordingResponse::unset);
    EXPECT_THAT(response.headers, IsEmpty());
    EXPECT_EQ(response.body(), "");
    EXPECT_THAT(linesAt(Logger::Error), IsEmpty());
}

TEST_F(RequestHandler, AnswersTheNextRequestAfterAFailure) {
    useGuideWithAChannel();
    {
        const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
        EXPECT_THROW(handle({"GET", "epg2/channels"}), Container::DomainException);
    }
    RecordingResponse next;
    FakeRequest request("GET", "epg2/channels");
    EXPECT_EQ(descriptor().handleRequest(request, next), 1);
    EXPECT_EQ(next.status, 200);
}

class Maintenance : public RequestHandler {
protected:
    static constexpr const char* message = "Checking to see if the EPG DB rquires an udpate\n";
};

TEST_F(Maintenance, MakesTheDatabaseOnFirstUse) {
    useGuideWithAChannel();
    descriptor().onTimer();
    ASSERT_TRUE(OpenPlugin::epgSQLPluginInstance);
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"1"}));
    EXPECT_THAT(calls, ElementsAre("rebuild"));
}

TEST_F(Maintenance, RebuildsOnlyWhenTheLastFillIsOld) {
    descriptor().onTimer();
    useGuideWithAChannel();
    clock.advance(600);
    descriptor().onTimer();
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"0"}));
    clock.advance(1);
    descriptor().onTimer();
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"1"}));
}

TEST_F(Maintenance, LogsAfterTheRebuild) {
    std::vector<LogLine> before;
    service.rebuild = [&](bool forced) {
        EXPECT_FALSE(forced);
        before = frameLines();
    };
    descriptor().onTimer();
    const LogLine line(Logger::Debug, message);
    EXPECT_THAT(before, Not(Contains(line)));
    EXPECT_THAT(frameLines(), Contains(line).Times(1));
}

TEST_F(Maintenance, LogsNothingWhenTheRebuildFailsAndLetsTheExceptionPass) {
    plugin();
    useGuideWithAChannel();
    clock.advance(601);
    {
        const epgset::DatabaseFault fault(epgset::DatabaseFault::Step, "INSERT INTO myView");
        EXPECT_THROW(descriptor().onTimer(), Container::DomainException);
    }
    EXPECT_THAT(linesAt(Logger::Debug), Not(Contains(message)));
    EXPECT_THAT(linesAt(Logger::Error), IsEmpty());

    descriptor().onTimer();
    EXPECT_THAT(linesAt(Logger::Debug), Contains(message)) << "the lock is free again";
}

}  // namespace
}  // namespace epgtest
