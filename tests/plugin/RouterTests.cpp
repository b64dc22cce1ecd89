#include <gmock/gmock.h>

#include <algorithm>
#include <initializer_list>

#include "tests/support/PluginTest.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/TestReminders.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A path record that goes with the object.
class TestPath {
public:
    explicit TestPath(const std::string& path) : record_(TARNO_rstr_uri_parse_path(path.c_str(), -1)) {}
    ~TestPath() { TARNO_rstr_uri_delete_path(record_); }
    TestPath(const TestPath&) = delete;
    TestPath& operator=(const TestPath&) = delete;

    operator TARNO_rstr_uri_path_st*() const { return record_; }  // NOLINT: stands where a record is wanted

private:
    TARNO_rstr_uri_path_st* record_;
};

constexpr const char* serviceResources[] = {"recordingAvailable", "recordingSpec", "antennas",
                                            "stopRecording", "UPnP_Info"};

class Router : public PluginTest {
protected:
    Router() {
        TestGuide guide;
        guide.programmes(guide.channel(Air, 7, 0, "Seven"), 2);
        guide.use();
        plugin();
        log.clear();
    }

    /// The status of a request for what stands below "epg2".
    int route(const char* method, const std::string& path, const char* query = "") {
        const TestPath record("epg2/" + path);
        const TestQuery parameters(query);
        const TestDocument document;
        const int status =
            plugin()->ExecuteClientQuery(document, method, record, parameters, nullptr, 0, nullptr);
        answer = document.json();
        return status;
    }

    int command(const char* query) {
        const TestQuery parameters(query);
        const TestDocument document;
        return plugin()->ExecuteClientCommand(parameters, document);
    }

    std::vector<std::string> linesAt(Logger::Level level) const {
        return log.messagesOf("Vexmoor/EpgSQLPluginVexmoor", level);
    }

    std::string answer;
};

TEST_F(Router, AnswersTheChannelList) {
    EXPECT_EQ(route("GET", "channels"), 200);
    EXPECT_THAT(answer, HasSubstr("\"items_total\":1"));
    EXPECT_THAT(linesAt(Logger::Debug), Contains("Channels query against EpgSQLPlug-in\n").Times(1));
}

TEST_F(Router, HandsTheQueryToTheChannelList) {
    EXPECT_EQ(route("GET", "channels", "name=Eight"), 204);
    EXPECT_EQ(route("GET", "channels", "items_max=0"), 400);
}

TEST_F(Router, AnswersOneChannelByItsIdentifier) {
    EXPECT_EQ(route("GET", "channels/cid-000-7"), 200);
    EXPECT_THAT(answer, HasSubstr("\"name\":\"Seven\""));
    EXPECT_EQ(route("GET", "channels/cid-000-8"), 404);
    EXPECT_THAT(linesAt(Logger::Debug), Not(Contains("Channels query against EpgSQLPlug-in\n")));
}

TEST_F(Router, HandsEveryMethodToTheChannelHandlers) {
    for (const char* path : {"channels", "channels/cid-000-7"}) {
        for (const char* method : {"POST", "PUT", "DELETE", "HEAD", "get", "x"}) {
            SCOPED_TRACE(std::string(method) + " " + path);
            log.clear();
            EXPECT_EQ(route(method, path), 404);
            EXPECT_THAT(linesAt(Logger::Warning),
                        ElementsAre("Function does not support this " + std::string(method) + " method"));
        }
    }
}

TEST_F(Router, AnnouncesTheListsOfProgrammesAndSchedules) {
    route("GET", "programs");
    EXPECT_THAT(linesAt(Logger::Debug), Contains("Programs query against EpgSQLPlug-in\n").Times(1));
    for (const char* method : {"GET", "PUT", "POST", "DELETE"}) {
        SCOPED_TRACE(method);
        log.clear();
        route(method, "schedules");
        EXPECT_THAT(linesAt(Logger::Debug), Contains("Schedule query against EpgSQLPlug-in\n").Times(1));
    }
}

TEST_F(Router, TracesThatAProgrammesScheduleIsAskedFor) {
    for (const char* method : {"GET", "HEAD", "PUT", "POST", "DELETE"}) {
        SCOPED_TRACE(method);
        log.clear();
        route(method, "programs/pid-000-7-0-1/schedule");
        EXPECT_THAT(linesAt(Logger::Trace), Contains("Schedule method being invoked!!\n").Times(1));
    }
}

TEST_F(Router, Answers200ForTheServicesWhateverTheyDo) {
    for (const char* resource : serviceResources) {
        for (const char* method : {"GET", "POST", "PUT", "DELETE", "HEAD", "get", "x"}) {
            SCOPED_TRACE(std::string(method) + " " + resource);
            EXPECT_EQ(route(method, resource), 200);
        }
    }
}

TEST_F(Router, Answers400ForAServiceWithFurtherParts) {
    for (const char* resource : serviceResources) {
        SCOPED_TRACE(resource);
        EXPECT_EQ(route("GET", std::string(resource) + "/x"), 400);
        EXPECT_EQ(route("GET", std::string(resource) + "/x/y"), 400);
    }
}

TEST_F(Router, Answers400ForWhatItDoesNotKnow) {
    for (const char* path :
         {"nonsense", "Channels", "channel", "channels2", "nonsense/x", "upnp_info", "Antennas",
          "channels/cid-000-7/foo", "channels/cid-000-7/Programs", "channels/cid-000-7/programs/x",
          "channels/cid-000-7/programs/x/y", "programs/pid-000-7-0-1/x", "programs/pid-000-7-0-1/Detail",
          "programs/pid-000-7-0-1/detail/x", "programs/pid-000-7-0-1/schedule/x", "schedules/sch_id_1/x",
          "schedules/sch_id_1/x/y"}) {
        SCOPED_TRACE(path);
        for (const char* method : {"GET", "POST", "DELETE"})
            EXPECT_EQ(route(method, path), 400) << method;
        EXPECT_EQ(answer, "{}");
    }
}

TEST_F(Router, Answers400ForOtherMethodsOnSchedules) {
    for (const char* path : {"schedules", "schedules/sch_id_1"}) {
        for (const char* method : {"HEAD", "OPTIONS", "get", "Put", "POST ", "x"}) {
            SCOPED_TRACE(std::string(method) + " " + path);
            EXPECT_EQ(route(method, path), 400);
            EXPECT_EQ(answer, "{}");
        }
    }
    EXPECT_THAT(adapterLog(), IsEmpty()) << "no handler is called";
}

TEST_F(Router, ValidatesTheQueryBeforeItRoutes) {
    for (const char* path :
         {"channels", "channels/cid-000-7", "programs", "schedules", "antennas", "UPnP_Info",
          "recordingAvailable", "recordingSpec", "stopRecording", "nonsense"}) {
        for (const char* method : {"GET", "DELETE", "x"}) {
            SCOPED_TRACE(std::string(method) + " " + path);
            log.clear();
            EXPECT_EQ(route(method, path, "sort=x"), 400);
            EXPECT_THAT(linesAt(Logger::Trace), Not(Contains(HasSubstr("REQUEST DATA"))));
            EXPECT_THAT(linesAt(Logger::Debug), IsEmpty());
            EXPECT_THAT(linesAt(Logger::Warning), IsEmpty());
        }
    }
}

TEST_F(Router, Answers404WithoutAPathOrAMethod) {
    const TestPath path("epg2/channels");
    const TestQuery invalid("sort=x");
    const TestDocument document;
    constexpr const char* message = "Null parameters supplied to m_ExecuteClientQuery\n";
    EXPECT_EQ(plugin()->ExecuteClientQuery(document, "GET", nullptr, invalid, nullptr, 0, nullptr), 404);
    EXPECT_THAT(linesAt(Logger::Trace), Contains(message).Times(1));
    log.clear();
    EXPECT_EQ(plugin()->ExecuteClientQuery(document, nullptr, path, invalid, nullptr, 0, nullptr), 404);
    EXPECT_THAT(linesAt(Logger::Trace), Contains(message).Times(1));
}

TEST_F(Router, MirrorsTheStoreBeforeItLooksAtTheRequest) {
    TestReminders store;
    CRemindInfo& booking = store.book(1, 17, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE);
    booking.SetTitle({0x4100});
    booking.Set(7, 0, 0, TCChannel::GetDigitalChType(Air), 0);
    const TestPath path("epg2/antennas");
    const TestQuery valid("");
    const TestQuery invalid("sort=x");
    const TestDocument document;
    const auto booked = [] { return table("SELECT EventId FROM myView WHERE ScheduleId='sch_id_17'"); };
    const auto ask = [&](const char* method, TARNO_rstr_uri_path_st* pathRecord, const TestQuery& query) {
        table("UPDATE myView SET ScheduleId=''");
        log.clear();
        const int status =
            plugin()->ExecuteClientQuery(document, method, pathRecord, query, nullptr, 0, nullptr);
        EXPECT_EQ(linesAt(Logger::Trace).front(), "Getting remind items\n") << "nothing is traced before";
        EXPECT_THAT(booked(), ElementsAre(Row{"pid-000-7-0-1"}));
        return status;
    };
    EXPECT_EQ(ask("GET", path, valid), 200);
    EXPECT_EQ(ask("GET", path, invalid), 400);
    EXPECT_EQ(ask("GET", nullptr, invalid), 404);
    EXPECT_EQ(ask(nullptr, path, invalid), 404);
}

TEST_F(Router, ClearsTheMirrorBeforeItFillsIt) {
    TestReminders store;
    CRemindInfo& booking = store.book(2, 5, CReminder::RESERVE_VIEW, CReminder::REPEAT_ONCE);
    booking.SetTitle({0x4100});
    booking.Set(7, 0, 0, TCChannel::GetDigitalChType(Air), 0);
    route("GET", "antennas");
    SqlTrace trace(*OpenPlugin::epgDBConnection);
    route("GET", "antennas");
    EXPECT_THAT(
        trace.statements,
        ElementsAre("SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';",
                    "UPDATE myView SET ScheduleId=NULL, ScheduleType=NULL, Repeat=NULL WHERE "
                    "ScheduleId='sch_id_5';",
                    "UPDATE myView SET ScheduleId='sch_id_5', ScheduleType='VIEW', Repeat='ONCE' WHERE "
                    "ChannelId='cid-000-7' AND EventId='pid-000-7-0-2';"));
}

TEST_F(Router, DoesNotMirrorForACommand) {
    SqlTrace trace(*OpenPlugin::epgDBConnection);
    command("sql=SELECT+1");
    EXPECT_THAT(trace.statements, ElementsAre("SELECT 1"));
    EXPECT_THAT(linesAt(Logger::Trace), Not(Contains("Getting remind items\n")));
}

TEST_F(Router, TracesTheCallThatChangesAProgrammesSchedule) {
    for (const char* method : {"PUT", "POST", "DELETE"}) {
        SCOPED_TRACE(method);
        log.clear();
        EXPECT_EQ(route(method, "programs/pid-000-7-0-1/schedule"), 404);  // there is no store
        auto lines = linesAt(Logger::Trace);
        lines.erase(lines.begin(), std::ranges::find(lines, "Schedule method being invoked!!\n"));
        EXPECT_THAT(lines,
                    ElementsAre("Schedule method being invoked!!\n", "Pre call to t_programs_id_schedule\n",
                                "Return values from t_programs_id_schedule: 404\n",
                                "Post call to t_programs_id_schedule\n",
                                "return val from t_programs_id_schedule: 404 \n"));
        EXPECT_THAT(adapterLog(), ElementsAre("t_programs_id_schedule"));
    }
}

TEST_F(Router, TracesTheCallThatChangesASchedule) {
    for (const char* method : {"PUT", "DELETE"}) {
        SCOPED_TRACE(method);
        log.clear();
        EXPECT_EQ(route(method, "schedules/sch_id_1"), 404);
        auto lines = linesAt(Logger::Trace);
        lines.erase(lines.begin(), std::ranges::find(lines, "Pre call to t_schedules_id\n"));
        EXPECT_THAT(lines, ElementsAre("Pre call to t_schedules_id\n", "Post call to t_schedules_id\n",
                                       "return val from t_schedules_id: 404 \n"));
    }
}

TEST_F(Router, TracesTheCallThatAddsASchedule) {
    for (const char* method : {"PUT", "POST", "DELETE"}) {
        SCOPED_TRACE(method);
        log.clear();
        EXPECT_EQ(route(method, "schedules"), 204);  // there is no store
        EXPECT_EQ(linesAt(Logger::Trace).back(), "Pre call to t_schedules\n");
        EXPECT_THAT(adapterLog(), ElementsAre("t_schedules"));
    }
}

TEST_F(Router, TakesNoQueryRecordForNoParameters) {
    const TestPath path("epg2/channels");
    const TestDocument document;
    EXPECT_EQ(plugin()->ExecuteClientQuery(document, "GET", path, nullptr, nullptr, 0, nullptr), 200);
}

TEST_F(Router, TracesTheBody) {
    const TestPath path("epg2/nonsense");
    const TestDocument document;
    char body[] = "{\"name\": \"100%n\"}";
    EXPECT_EQ(plugin()->ExecuteClientQuery(document, "PUT", path, nullptr, body, 17, nullptr), 400);
    EXPECT_THAT(linesAt(Logger::Trace), Contains("REQUEST DATA - Exec Query: {\"name\": \"100%n\"}\n\n"));
    EXPECT_EQ(plugin()->ExecuteClientQuery(document, "PUT", path, nullptr, nullptr, 0, nullptr), 400);
    EXPECT_THAT(linesAt(Logger::Trace), Contains("REQUEST DATA - Exec Query: (null)\n\n"));
}

TEST_F(Router, Answers404ToACommandWithoutText) {
    const TestQuery query("sql=SELECT+1");
    const TestDocument document;
    char name[] = "sql";
    char* names[] = {name};
    char* values[] = {nullptr};
    TARNO_rstr_uri_query_st withoutValue{1, names, values};
    EXPECT_EQ(plugin()->ExecuteClientCommand(nullptr, document), 404);
    EXPECT_EQ(plugin()->ExecuteClientCommand(query, nullptr), 404);
    EXPECT_EQ(plugin()->ExecuteClientCommand(&withoutValue, document), 404);
    EXPECT_EQ(command(""), 404);
    EXPECT_THAT(pluginLog(), IsEmpty());
}

TEST_F(Router, RefusesCommandsThatMakeAView) {
    const auto before = table("SELECT type, name, sql FROM sqlite_master");
    for (const char* query : {"sql=CREATE+VIEW+v+AS+SELECT+1", "sql=SELECT+'CREATE+VIEW'",
                              "sql=DELETE+FROM+myView;--CREATE+VIEWS", "x=CREATE+VIEW"}) {
        SCOPED_TRACE(query);
        log.clear();
        EXPECT_EQ(command(query), 404);
        EXPECT_THAT(log.records(), testing::SizeIs(1));
        EXPECT_THAT(linesAt(Logger::Trace), ElementsAre("A CREATE VIEW statement has been entered\n"));
    }
    EXPECT_EQ(table("SELECT type, name, sql FROM sqlite_master"), before);
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"2"}));
}

TEST_F(Router, DoesNotTakeLookalikesForMakingAView) {
    for (const char* query : {"sql=create+view", "sql=CREATE++VIEW", "sql=CREATE%0AVIEW", "sql=SELECT+1"}) {
        SCOPED_TRACE(query);
        log.clear();
        command(query);
        EXPECT_THAT(linesAt(Logger::Trace), Not(Contains("A CREATE VIEW statement has been entered\n")));
        EXPECT_THAT(linesAt(Logger::Trace), Contains("A standard SQL statement has been entered\n").Times(1));
    }
}

TEST_F(Router, TellsACommandByTheNameOfItsFirstParameter) {
    const TestDocument document;
    struct {
        const char* query;
        int result;
        const char* line;
    } const cases[] = {{"sql=SELECT+1&x=2", 0, "SQL QUERY VALUE: sql, SELECT 1 \n"},
                       {"x=2&sql=SELECT+1", -1, nullptr},
                       {"SQL=1", -1, nullptr}};
    for (const auto& [query, result, line] : cases) {
        SCOPED_TRACE(query);
        log.clear();
        EXPECT_EQ(OpenPlugin::m_ParseClientCommand(TestQuery(query), document), result);
        if (line != nullptr) {
            EXPECT_THAT(linesAt(Logger::Debug), ElementsAre(line));
        }
    }
}

}  // namespace
}  // namespace epgtest
