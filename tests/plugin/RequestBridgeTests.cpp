#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>

#include "tests/plugin/FrameTest.h"
#include "tests/support/ForwardingTelevision.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

class RequestBridge : public FrameTest {
protected:
    RequestBridge() { log.clear(); }

    static LogLine trace(const std::string& message) { return {Logger::Trace, message}; }
    static LogLine debug(const std::string& message) { return {Logger::Debug, message}; }
    static LogLine error(const std::string& message) { return {Logger::Error, message}; }

    /// Makes the instance and forgets what that logged.
    void makeInstance() {
        plugin();
        log.clear();
    }
};

TEST_F(RequestBridge, AnswersARequestInOrder) {
    answerQueriesWith(200);
    EXPECT_EQ(bridge({"GET", "epg2/channels", "sort=name"}), 1);
    EXPECT_THAT(calls, ElementsAre("parse path \"epg2/channels\" -1", "parse query \"sort=name\" -1",
                                   "make document", "check", "query", "setStatus 200", jsonHeader,
                                   uncachedHeader, "commitHeaders", "print 2 option 1", "getOutputStream",
                                   "delete path", "delete query", "destroy document"));
    EXPECT_EQ(response.body(), "{}");
}

TEST_F(RequestBridge, HandsTheRequestToTheQuery) {
    service.query = [](const ServiceQuery& query) {
        EXPECT_EQ(query.method, "PROPFIND");
        EXPECT_EQ(query.path->count, 3);
        EXPECT_STREQ(query.path->parts[2], "a b");
        EXPECT_EQ(query.query->count, 2);
        EXPECT_STREQ(query.query->names[1], "start");
        EXPECT_STREQ(query.query->values[1], "2");
        EXPECT_STREQ(query.body, "body");
        EXPECT_EQ(query.bodyLength, 4);
        EXPECT_EQ(query.location, nullptr);
        TARNO_rdoc_add_UTF8(query.document, "key", "value");
        return 201;
    };
    EXPECT_EQ(bridge(FakeRequest("PROPFIND", "epg2/schedules/a%20b", "end=1&start=2").withBody("body")), 1);
    EXPECT_EQ(response.body(), "{\"key\":\"value\"}");
    EXPECT_EQ(response.status, 201);
    EXPECT_FALSE(response.headers.contains("Location"));
}

TEST_F(RequestBridge, ChoosesTheFormatByTheAcceptHeader) {
    answerQueriesWith(200);
    struct {
        const char* accept;
        bool xml;
    } const cases[] = {{"", false},
                       {"*/*", false},
                       {"application/xml", true},
                       {"text/xml;q=0.1, */*", true},
                       {"xml", true},
                       {"application/xhtml+xml", true},
                       {"application/json", false},
                       {"application/json, application/xml", false},
                       {"application/xml, application/json;q=0", false},
                       {"application/XML", false},
                       {"application/xml, application/JSON", true},
                       {"text/html", false}};
    for (const auto& [accept, xml] : cases) {
        SCOPED_TRACE(accept);
        calls.clear();
        log.clear();
        EXPECT_EQ(bridge(FakeRequest("GET", "epg2/channels").withVariable("HTTP_ACCEPT", accept)), 1);
        EXPECT_THAT(calls, IsSupersetOf({xml ? "print 1 option 1" : "print 2 option 1",
                                         xml ? xmlHeader : jsonHeader}));
        EXPECT_THAT(frameLines(), Contains(debug("[EPG callback] XML format")).Times(xml ? 1 : 0));
    }
}

TEST_F(RequestBridge, TakesTheAcceptHeaderByItsVariableNameOnly) {
    answerQueriesWith(200);
    EXPECT_EQ(bridge(FakeRequest("GET", "epg2/channels").withVariable("Accept", "application/xml")), 1);
    EXPECT_THAT(calls, Contains(jsonHeader));
}

TEST_F(RequestBridge, LogsItsStepsInOrder) {
    makeInstance();
    answerQueriesWith(200);
    bridge(FakeRequest("GET", "epg2/channels").withVariable("HTTP_ACCEPT", "text/xml").withBody("data"));
    EXPECT_THAT(
        frameLines(),
        ElementsAre(debug("epg2"), debug("[EPG callback] XML format"), debug("URL path part num: 2\n"),
                    debug("Call to EPG 2 plugin\n"), debug(" URL path parts: epg2\n"),
                    debug("EPG DB plugin instance created by EPG 2 plugin\n"),
                    debug(" URL path parts: epg2, channels\n"), trace("REQUEST DATA: data\n\n"),
                    debug("Executing Client Rest Query\n")));
}

TEST_F(RequestBridge, LogsTheStepsOfACommandInOrder) {
    makeInstance();
    service.command = [](TARNO_rstr_uri_query_st*, void*) { return 200; };
    bridge({"GET", "epg2", "sql=SELECT+1"});
    EXPECT_THAT(frameLines(), ElementsAre(debug("epg2"), debug("URL path part num: 1\n"),
                                          debug("Call to EPG 2 plugin\n"), debug(" URL path parts: epg2\n"),
                                          debug("EPG DB plugin instance created by EPG 2 plugin\n"),
                                          debug("Executing Client SQL Command\n")));
}

TEST_F(RequestBridge, TracesAMissingBodyAsNull) {
    answerQueriesWith(200);
    bridge({"GET", "epg2/channels"});
    EXPECT_THAT(frameLines(), Contains(trace("REQUEST DATA: (null)\n\n")));
}

TEST_F(RequestBridge, LogsTheFirstPathPartAsTheFormatItself) {
    for (const char* part : {"epg2", "100%", "%n", "%s%s%s", "%999999999d", "%", "%5$x"}) {
        SCOPED_TRACE(part);
        log.clear();
        std::string path;
        for (const char* at = part; *at != '\0'; ++at)
            path += *at == '%' ? "%25" : std::string(1, *at);
        EXPECT_EQ(bridge({"GET", path + "/x"}), 1);
        ASSERT_FALSE(log.records().empty());
        const auto first = log.records().front();
        EXPECT_EQ(first.level, Logger::Debug);
        EXPECT_EQ(first.logger, "EpgSQLPlugin");
        EXPECT_EQ(first.format, part);
        EXPECT_EQ(first.message, part);
    }
}

TEST_F(RequestBridge, InterpretsAPercentSignInTheFirstPathPart) {
    bridge({"GET", "50%25%25/x"});
    EXPECT_EQ(log.records().front().message, "50%");
}

// Requests that the handler must answer ---------------------------------------------------------------

TEST_F(RequestBridge, RefusesARequestWithoutMethodOrPath) {
    struct {
        const char* method;
        const char* path;
        bool record;
    } const cases[] = {{"", "epg2/channels", true},
                       {"GET", "", true},
                       {"GET", "///", true},
                       {"GET", "epg2/%00", false},
                       {"", "%00", false}};
    for (const auto& [method, path, record] : cases) {
        SCOPED_TRACE(path);
        calls.clear();
        log.clear();
        EXPECT_EQ(bridge({method, path, "a=b"}), 0);
        EXPECT_THAT(log.records(), testing::SizeIs(1));
        EXPECT_THAT(frameLines(), ElementsAre(error("[EPG callback] Invalid param")));
        EXPECT_THAT(calls, ElementsAre("parse path \"" + std::string(path) + "\" -1",
                                       "parse query \"a=b\" -1", record ? "delete path" : "delete no path",
                                       "delete query", "destroy no document"));
    }
}

TEST_F(RequestBridge, RefusesAPathRecordWithoutParts) {
    TARNO_rstr_uri_path_st record{2, nullptr};
    host.pathRecord = &record;
    EXPECT_EQ(bridge({"GET", "epg2/channels"}), 0);
    EXPECT_THAT(frameLines(), ElementsAre(error("[EPG callback] Invalid param")));
    EXPECT_THAT(calls, Contains("delete path"));
}

TEST_F(RequestBridge, RefusesAPathRecordOfANegativeCount) {
    char part[] = "epg2";
    char* parts[] = {part};
    TARNO_rstr_uri_path_st record{-1, parts};
    host.pathRecord = &record;
    EXPECT_EQ(bridge({"GET", "epg2"}), 0);
    EXPECT_THAT(frameLines(), ElementsAre(error("[EPG callback] Invalid param")));
}

TEST_F(RequestBridge, RefusesARequestWithoutADocument) {
    epgset::failDocumentObjectsAfter(0);
    EXPECT_EQ(bridge(FakeRequest("GET", "epg2/channels").withBody("{}")), 0);
    EXPECT_THAT(frameLines(), ElementsAre(debug("epg2"), error("[EPG callback] Cannot craete rdoc_root")));
    EXPECT_THAT(calls, ElementsAre("parse path \"epg2/channels\" -1", "parse query \"\" -1",
                                   "make no document", "delete path", "delete query", "destroy no document"));
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
}

// Paths of others -------------------------------------------------------------------------------------

TEST_F(RequestBridge, TouchesNothingForAnotherSinglePart) {
    for (const char* path : {"other", "EPG2", "epg", "epg22", "/epg%2f2/", " epg2"}) {
        SCOPED_TRACE(path);
        calls.clear();
        log.clear();
        EXPECT_EQ(bridge({"GET", path, "sql=SELECT+1"}), 1);
        EXPECT_THAT(calls, ElementsAre("parse path \"" + std::string(path) + "\" -1",
                                       "parse query \"sql=SELECT+1\" -1", "make document", "delete path",
                                       "delete query", "destroy document"));
        ASSERT_FALSE(frameLines().empty());
        EXPECT_EQ(frameLines().back(), trace("URL not recognised!\n"));
    }
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
}

TEST_F(RequestBridge, Answers404BelowAnotherFirstPart) {
    for (const char* path : {"other/channels", "EPG2/channels", "a/b/c"}) {
        SCOPED_TRACE(path);
        calls.clear();
        log.clear();
        EXPECT_EQ(bridge({"GET", path}), 1);
        EXPECT_THAT(calls, ElementsAre("parse path \"" + std::string(path) + "\" -1", "parse query \"\" -1",
                                       "make document", "setStatus 404", jsonHeader, uncachedHeader,
                                       "commitHeaders", "delete path", "delete query", "destroy document"));
        EXPECT_THAT(frameLines(), Not(Contains(trace("URL not recognised!\n"))));
        EXPECT_EQ(frameLines().back(), debug("Call to EPG 2 plugin\n"));
    }
    EXPECT_FALSE(OpenPlugin::epgSQLPluginInstance);
}

TEST_F(RequestBridge, DoesNotCountEmptyParts) {
    answerQueriesWith(200);
    EXPECT_EQ(bridge({"GET", "//epg2///channels/"}), 1);
    EXPECT_EQ(response.status, 200);
}

// The bare service path ---------------------------------------------------------------------------------

TEST_F(RequestBridge, RunsTheCommandOfTheBarePath) {
    service.command = [](TARNO_rstr_uri_query_st* query, void* document) {
        EXPECT_STREQ(query->values[0], "SELECT 1");
        TARNO_rdoc_add_integer(document, "one", 1);
        return 200;
    };
    EXPECT_EQ(bridge({"GET", "epg2", "sql=SELECT+1&x=1"}), 1);
    EXPECT_THAT(calls, ElementsAre("parse path \"epg2\" -1", "parse query \"sql=SELECT+1&x=1\" -1",
                                   "make document", "check", "command", "setStatus 200", jsonHeader,
                                   uncachedHeader, "commitHeaders", "print 2 option 1", "getOutputStream",
                                   "delete path", "delete query", "destroy document"));
    EXPECT_EQ(response.body(), "{\"one\":1}");
}

TEST_F(RequestBridge, Answers404ToTheBarePathWithoutALeadingCommand) {
    for (const char* query : {"", "x=1&sql=SELECT+1", "SQL=SELECT+1", "sql2=1", "=sql", "sql=1%00"}) {
        SCOPED_TRACE(query);
        calls.clear();
        EXPECT_EQ(bridge(FakeRequest("GET", "epg2", query).withVariable("HTTP_ACCEPT", "text/xml")), 1);
        calls.erase(calls.begin(), calls.begin() + 3);
        EXPECT_THAT(calls, ElementsAre("check", "setStatus 404", xmlHeader, uncachedHeader, "commitHeaders",
                                       "delete path", testing::AnyOf("delete query", "delete no query"),
                                       "destroy document"));
        EXPECT_EQ(response.body(), "");
    }
}

TEST_F(RequestBridge, RunsACommandForAnyMethod) {
    service.command = [](TARNO_rstr_uri_query_st*, void*) { return 204; };
    for (const char* method : {"POST", "HEAD", "x"}) {
        calls.clear();
        EXPECT_EQ(bridge({method, "epg2", "sql=1"}), 1);
        EXPECT_THAT(calls, IsSupersetOf({"command", "setStatus 204"}));
    }
}

TEST_F(RequestBridge, PassesOverAMissingSecondPart) {
    char part[] = "epg2";
    char* parts[] = {part, nullptr};
    TARNO_rstr_uri_path_st record{2, parts};
    host.pathRecord = &record;
    EXPECT_EQ(bridge({"GET", "epg2/channels"}), 1);
    EXPECT_EQ(response.status, 404);
    EXPECT_THAT(calls, Not(Contains("query")));
    EXPECT_EQ(frameLines().back(), debug(" URL path parts: epg2, (null)\n"));
}

TEST_F(RequestBridge, TakesAQueryThatCannotBeParsedAsNone) {
    service.query = [](const ServiceQuery& query) {
        EXPECT_EQ(query.query, nullptr);
        return 200;
    };
    EXPECT_EQ(bridge({"GET", "epg2/channels", "a=%00"}), 1);
    EXPECT_EQ(response.status, 200);
    EXPECT_THAT(calls, Contains("delete no query"));
}

// Statuses ----------------------------------------------------------------------------------------------

TEST_F(RequestBridge, SendsADocumentWithA2xxStatusOnly) {
    struct {
        int result;
        int status;
        bool printed;
    } const cases[] = {{0, 200, true},    {200, 200, true},  {201, 201, true},  {204, 204, true},
                       {299, 299, true},  {199, 199, false}, {300, 300, false}, {400, 400, false},
                       {403, 403, false}, {404, 404, false}, {409, 409, false}, {-1, -1, false}};
    for (const auto& [result, status, printed] : cases) {
        SCOPED_TRACE(result);
        calls.clear();
        answerQueriesWith(result);
        EXPECT_EQ(bridge({"GET", "epg2/channels"}), 1);
        calls.erase(calls.begin(), calls.begin() + 5);
        std::vector<std::string> expected{"setStatus " + std::to_string(status), jsonHeader, uncachedHeader,
                                          "commitHeaders"};
        if (printed) expected.insert(expected.end(), {"print 2 option 1", "getOutputStream"});
        expected.insert(expected.end(), {"delete path", "delete query", "destroy document"});
        EXPECT_EQ(calls, expected);
    }
}

TEST_F(RequestBridge, TakesAStatusOfZeroFromACommandAs200) {
    service.command = [](TARNO_rstr_uri_query_st*, void*) { return 0; };
    bridge({"GET", "epg2", "sql=1"});
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body(), "{}");
}

TEST_F(RequestBridge, SendsNoBodyWhenPrintingFails) {
    epgset::failDocumentPrinting(true);
    answerQueriesWith(200);
    EXPECT_EQ(bridge({"GET", "epg2/channels"}), 1);
    EXPECT_EQ(response.status, 200);
    EXPECT_THAT(calls, Contains("commitHeaders").Times(1));
    EXPECT_THAT(calls, Contains("setStatus 200").Times(1));
    EXPECT_THAT(calls, Not(Contains("setStatus 404")));
    EXPECT_THAT(calls, Not(Contains("getOutputStream")));
}

TEST_F(RequestBridge, SendsNoBodyWhenPrintingGivesNoText) {
    host.print = [](char** text, int* length) {
        *text = nullptr;
        *length = 5;
        return 0;
    };
    answerQueriesWith(200);
    EXPECT_EQ(bridge({"GET", "epg2/channels"}), 1);
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body(), "");
}

TEST_F(RequestBridge, WritesThePrintedTextWhole) {
    const std::string printed(3 << 20, 'x');
    host.print = [&printed](char** text, int* length) {
        *text = strdup(printed.c_str());
        *length = static_cast<int>(printed.size());
        return 0;
    };
    answerQueriesWith(200);
    bridge({"GET", "epg2/channels"});
    EXPECT_TRUE(response.body() == printed);
}

// Keeping the table current -----------------------------------------------------------------------------

TEST_F(RequestBridge, ChecksForChangesOnEveryRequestToTheService) {
    makeInstance();
    const ForwardingTelevision television;
    struct {
        const char* path;
        const char* query;
        int status;
    } const cases[] = {{"epg2", "", 404},
                       {"epg2/nonsense", "", 400},
                       {"epg2/channels/a/b/c/d", "", 400},
                       {"epg2/channels", "sort=x", 400},
                       {"epg2/channels", "", 204}};
    std::size_t rows = 0;
    for (const auto& [path, query, status] : cases) {
        SCOPED_TRACE(path);
        calls.clear();
        EXPECT_EQ(bridge({"GET", path, query}), 1);
        EXPECT_EQ(response.status, status);
        EXPECT_THAT(calls, Contains("check").Times(1));
        EXPECT_THAT(calls, Not(Contains("rebuild forced")));
        EXPECT_EQ(television.sourceTypesAsked.size(), rows += antennaRowCount);
    }
}

TEST_F(RequestBridge, RebuildsByForceBeforeTheQueryWhenSomethingChanged) {
    service.check = [] { return true; };
    answerQueriesWith(200);
    bridge({"GET", "epg2/channels"});
    calls.erase(calls.begin(), calls.begin() + 3);
    calls.resize(3);
    EXPECT_THAT(calls, ElementsAre("check", "rebuild forced", "query"));
}

TEST_F(RequestBridge, RebuildsForTheBarePathToo) {
    service.check = [] { return true; };
    bridge({"GET", "epg2"});
    EXPECT_THAT(calls, IsSupersetOf({"check", "rebuild forced", "setStatus 404"}));
}

TEST_F(RequestBridge, AnswersFromTheGuideAsItIsNow) {
    bridge({"GET", "epg2/channels"});
    EXPECT_EQ(response.status, 204);

    TestGuide guide;
    guide.programmes(guide.channel(Air, 5, 0, "Brand new"), 1);
    guide.use();
    RecordingResponse next;
    FakeRequest request("GET", "epg2/channels");
    BridgeToWebConvIF(request, next);
    EXPECT_EQ(next.status, 200);
    EXPECT_THAT(next.body(), HasSubstr("Brand new"));
}

TEST_F(RequestBridge, FillsTheTableTwiceOnTheFirstRequest) {
    TestGuide guide;
    guide.programmes(guide.channel(Air, 5), 1);
    guide.use();
    bridge({"GET", "epg2/channels"});
    EXPECT_THAT(pluginLog(), Contains("Table and DB created\n").Times(1));
    EXPECT_THAT(pluginLog(), Contains("Table created\n").Times(1));
    log.clear();
    bridge({"GET", "epg2/channels"});
    EXPECT_THAT(pluginLog(), Not(Contains("Table created\n")));
}

// Exceptions ----------------------------------------------------------------------------------------------

TEST_F(RequestBridge, CleansUpInOrderWhenAnExceptionPasses) {
    service.query = [](const ServiceQuery&) -> int { throw 1; };
    EXPECT_THROW(bridge({"GET", "epg2/channels"}), int);
    calls.erase(calls.begin(), calls.begin() + 5);
    EXPECT_THAT(calls, ElementsAre("delete path", "delete query", "destroy document"));
}

TEST_F(RequestBridge, CleansUpWhenTheRebuildFails) {
    service.check = [] { return true; };
    service.rebuild = [](bool) { throw 1; };
    EXPECT_THROW(bridge({"GET", "epg2"}), int);
    calls.erase(calls.begin(), calls.begin() + 5);
    EXPECT_THAT(calls, ElementsAre("delete path", "delete query", "destroy document"));
}

}  // namespace
}  // namespace epgtest
