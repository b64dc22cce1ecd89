// The schedules, answered from the table and completed from the reminder store.
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/plugin/QueryTest.h"
#include "tests/support/DocumentCalls.h"
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

constexpr std::uint32_t midnight = 1'787'443'200;  // 2026-08-23T00:00:00Z

const std::string selectSchedules =
    "SELECT  ScheduleId, ScheduleType, EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, "
    "AntennaType, ProgramStartTime, ProgramEndTime, Repeat FROM myView WHERE NOT ScheduleId='';";
const std::string selectSchedule =
    "SELECT ScheduleId, ScheduleType, Repeat, ChannelId, ChannelName, ChannelNumber, AntennaType, "
    "ProgramStartTime, ProgramEndTime, EventId FROM myView WHERE ";

/// A reminder store that keeps what it was asked about.
class AskedReminders : public TestReminders {
public:
    bool FindRemindItemFromProgram(const TCProgram& program, CRemindInfo& info) override {
        askedEvents.push_back(program.EventId());
        handedIn = std::make_unique<CRemindInfo>(info);
        return TestReminders::FindRemindItemFromProgram(program, info);
    }

    std::vector<int> askedEvents;
    std::unique_ptr<CRemindInfo> handedIn;  ///< the record of the last question, as it came
};

/// Three programmes on two channels, of which "Morning" is recorded (sch_id_5) and "Live" is viewed
/// (sch_id_6).
class ScheduleQueries : public QueryTest {
protected:
    ScheduleQueries() {
        useGuide(true, true);
        plugin();
        schedule("pid-000-7-2-1", "sch_id_5", "RECORD", "ONCE");
        schedule("pid-001-10-0-3", "sch_id_6", "VIEW", "EVERYDAY");
        keep(1, 5, Air, 7, 2);
        keep(3, 6, Cable, 10, 0);
        reminders->askedEvents.clear();  // the import has asked for each programme
        log.clear();
    }

    /// Makes the guide, with or without the channel "News 24" and its programme "Morning".
    static void useGuide(bool withNews, bool withMorning) {
        TestGuide guide;
        if (withNews) {
            const auto news = guide.channel(Air, 7, 2, "News 24");
            if (withMorning) guide.programme(news, midnight, midnight + 3600, "Morning", 1);
            guide.programme(news, midnight + 3600, midnight + 7200, "Football", 2);
        }
        guide.programme(guide.channel(Cable, 10, 0, "Sport"), midnight, midnight + 1800, "Live", 3);
        guide.use();
    }

    /// Marks a programme's row as the mirror does.
    static void schedule(const std::string& programId, const std::string& scheduleId,
                         const std::string& status, const std::string& repeat) {
        table("UPDATE myView SET ScheduleId='" + scheduleId + "', ScheduleType='" + status + "', Repeat='" +
              repeat + "' WHERE EventId='" + programId + "'");
    }

    /// Keeps an entry of the store for a programme.
    CRemindInfo& keep(int eventId, unsigned long uid, int tvMode, short major, short minor) {
        CRemindInfo& info = reminders->book(eventId, uid, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE);
        info.Set(major, minor, 0, TCChannel::GetDigitalChType(tvMode), 0);
        return info;
    }

    static Answer list(const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execSchedulesSqlQuery(document, method, OpenPlugin::epgDBConnection);
        });
    }
    static Answer info(const char* scheduleId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execSchedInfoSqlQuery(scheduleId, document, method,
                                                       OpenPlugin::epgDBConnection);
        });
    }
    static Answer ofProgramme(const char* programId, const char* method = "GET") {
        return answerOf([&](void* document) {
            return OpenPlugin::m_execPrgmSchedInfoSqlQuery(programId, document, method,
                                                           OpenPlugin::epgDBConnection);
        });
    }

    std::unique_ptr<AskedReminders> reminders = std::make_unique<AskedReminders>();
};

// The members of schedule 5, as one schedule and as its programme's.
const std::string scheduleOfTable =
    R"({"antenna":"AIR","channel_id":"cid-000-7-2","channel_name":"News 24","channel_num":"7-2",)"
    R"("end":"2026-08-23T01:00:00+00:00","id":"sch_id_5","program_id":"pid-000-7-2-1","repeat":"ONCE",)"
    R"("start":"2026-08-23T00:00:00+00:00","status":"RECORD")";
const std::string programmesScheduleOfTable =
    R"({"antenna":"AIR","channel_id":"cid-000-7-2","channel_name":"News 24","channel_num":"7-2",)"
    R"("end":"2026-08-23T01:00:00+00:00","id":"pid-000-7-2-1","repeat":"ONCE","schedule_id":"sch_id_5",)"
    R"("start":"2026-08-23T00:00:00+00:00","status":"RECORD")";
const std::string ofMiddleware =
    R"(,"source_path":"/ws/epg2/channels/cid-000-7-2","storage_path":null,"method":"EPG"})";

// The list --------------------------------------------------------------------------------------------

TEST_F(ScheduleQueries, ListHoldsEachScheduleAndTheirNumber) {
    const Answer answer = list();
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json,
              R"({"items":[{"antenna":"AIR","channel_name":"News 24","channel_num":"7-2",)"
              R"("channel_path":"/ws/epg2/channels/cid-000-7-2","end":"2026-08-23T01:00:00+00:00",)"
              R"("id":"sch_id_5","program_id":"pid-000-7-2-1","program_name":"Morning","repeat":"ONCE",)"
              R"("start":"2026-08-23T00:00:00+00:00","status":"RECORD"},)"
              R"({"antenna":"CABLE","channel_name":"Sport","channel_num":"10",)"
              R"("channel_path":"/ws/epg2/channels/cid-001-10","end":"2026-08-23T00:30:00+00:00",)"
              R"("id":"sch_id_6","program_id":"pid-001-10-0-3","program_name":"Live","repeat":"EVERYDAY",)"
              R"("start":"2026-08-23T00:00:00+00:00","status":"VIEW"}],"items_total":2})");
}

TEST_F(ScheduleQueries, ListRunsThisStatement) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    list();
    EXPECT_THAT(trace.statements, ElementsAre(selectSchedules));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Debug, "selectSql statement\n"),
                                      LogLine(Logger::Trace, "SQL query set as: " + selectSchedules)));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, ListPaysNoHeedToThePageOfARequest) {
    CRemindInfo* const entries[] = {&keep(1, 5, Air, 7, 2), &keep(3, 6, Cable, 10, 0)};
    for (CRemindInfo* entry : entries)
        entry->SetTitle(unitsOf("Booked", std::endian::big));
    const std::unique_ptr<TARNO_rstr_uri_path_st, decltype(&TARNO_rstr_uri_delete_path)> path(
        TARNO_rstr_uri_parse_path("epg2/schedules", -1), &TARNO_rstr_uri_delete_path);
    for (const char* query : {"", "items_max=1", "items_max=0", "items_start_index=1", "sort=name"}) {
        SCOPED_TRACE(query);
        const TestDocument document;
        EXPECT_EQ(
            plugin()->ExecuteClientQuery(document, "GET", path.get(), TestQuery(query), nullptr, 0, nullptr),
            200);
        EXPECT_THAT(document.json(), HasSubstr(R"("id":"sch_id_5")"));
        EXPECT_THAT(document.json(), HasSubstr(R"("id":"sch_id_6")"));
        EXPECT_THAT(document.json(), testing::EndsWith(R"(],"items_total":2})"));
    }
}

TEST_F(ScheduleQueries, ListHoldsMoreThanAPage) {
    table("UPDATE myView SET ScheduleId=''");
    table(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n LIMIT 1500) "
        "INSERT INTO myView (ScheduleId) SELECT 'sch_id_' || i FROM n");
    EXPECT_THAT(list().json, testing::EndsWith(R"(],"items_total":1500})"));
}

TEST_F(ScheduleQueries, ListAttachesEachObjectBeforeItIsFilled) {
    schedule("pid-001-10-0-3", "", "", "");
    const DocumentCalls calls;
    list();
    EXPECT_THAT(calls.lines,
                ElementsAre("make object 1", R"(root "items": object 1)", "make object 2",
                            "object 1 unnamed: object 2", R"(object 2 "antenna": text AIR)",
                            R"(object 2 "channel_name": text News 24)", R"(object 2 "channel_num": text 7-2)",
                            R"(object 2 "channel_path": text /ws/epg2/channels/cid-000-7-2)",
                            R"(object 2 "end": text 2026-08-23T01:00:00+00:00)",
                            R"(object 2 "id": text sch_id_5)", R"(object 2 "program_id": text pid-000-7-2-1)",
                            R"(object 2 "program_name": text Morning)", R"(object 2 "repeat": text ONCE)",
                            R"(object 2 "start": text 2026-08-23T00:00:00+00:00)",
                            R"(object 2 "status": text RECORD)", R"(root "items_total": integer 1)"));
}

TEST_F(ScheduleQueries, ListWithoutSchedulesIsEmptyAndUncounted) {
    table("UPDATE myView SET ScheduleId='' WHERE ScheduleId='sch_id_5'");
    table("UPDATE myView SET ScheduleId=NULL WHERE ScheduleId='sch_id_6'");
    const Answer answer = list();
    EXPECT_EQ(answer.status, 204);
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ScheduleQueries, ListIsEmptyWithoutATable) {
    table("DROP TABLE myView");
    const Answer answer = list();
    EXPECT_EQ(answer.status, 204);
    EXPECT_EQ(answer.json, R"({"items":[]})");
}

TEST_F(ScheduleQueries, ListEndsWhenAnObjectCannotBeMade) {
    const std::string first = list().json.substr(0, list().json.find(R"(,{"antenna":"CABLE")"));
    const std::string soFar[] = {"{}", R"({"items":[]})", first + "]}"};
    for (int objects = 0; objects < 3; ++objects) {
        const TestDocument document;
        epgset::failDocumentObjectsAfter(objects);
        EXPECT_EQ(OpenPlugin::m_execSchedulesSqlQuery(document, "GET", OpenPlugin::epgDBConnection), -1);
        epgset::failDocumentObjectsAfter(-1);
        EXPECT_EQ(document.json(), soFar[objects]);
        EXPECT_TRUE(leavesNoStatement());
    }
}

// Methods ---------------------------------------------------------------------------------------------

TEST_F(ScheduleQueries, AnswerOnlyGet) {
    for (const char* method : {"POST", "PUT", "DELETE", "HEAD", "get", "GET ", ""}) {
        SCOPED_TRACE(method);
        log.clear();
        const SqlTrace trace(*OpenPlugin::epgDBConnection);
        for (const Answer& answer :
             {list(method), info("sch_id_5", method), ofProgramme("pid-000-7-2-1", method)}) {
            EXPECT_EQ(answer.status, 404);
            EXPECT_EQ(answer.json, "{}");
        }
        const LogLine warning(Logger::Warning,
                              "Function does not support this " + std::string(method) + " method");
        EXPECT_THAT(logged(), ElementsAre(warning, warning, warning));
        EXPECT_EQ(log.records()[0].format, "Function does not support this %s method");
        EXPECT_THAT(trace.statements, IsEmpty());
    }
}

TEST_F(ScheduleQueries, AnswerNothingWithoutAMethod) {
    for (const Answer& answer :
         {list(nullptr), info("sch_id_5", nullptr), ofProgramme("pid-000-7-2-1", nullptr)})
        EXPECT_EQ(answer.status, 404);
    EXPECT_THAT(logged(), testing::SizeIs(3));
    EXPECT_THAT(logged(), testing::Each(testing::Key(Logger::Warning)));
}

// One schedule ----------------------------------------------------------------------------------------

TEST_F(ScheduleQueries, InfoEndsWithWhatTheMiddlewareKnows) {
    const Answer answer = info("sch_id_5");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, scheduleOfTable + ofMiddleware);
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, InfoTracesItsSteps) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    info("sch_id_5");
    const std::string sql = selectSchedule + "ScheduleId='sch_id_5';";
    EXPECT_THAT(trace.statements, ElementsAre(sql));
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Debug, "selectSql statement\n"),
                                      LogLine(Logger::Trace, "SQL query set as: " + sql),
                                      LogLine(Logger::Trace, "Retrieving ChannelId from the DB\n"),
                                      LogLine(Logger::Trace, "ChannelID val: cid-000-7-2\n"),
                                      LogLine(Logger::Trace, "Creating channel object\n"),
                                      LogLine(Logger::Trace, "Channel pointer is not null\n"),
                                      LogLine(Logger::Trace,
                                              "Retrieving/Writting additional schedule data to output\n")));
}

TEST_F(ScheduleQueries, InfoTellsHowTheScheduleWasMade) {
    keep(1, 5, Air, 7, 2).SetCreationMethod(CReminder::CREATED_MANUALLY);
    EXPECT_THAT(info("sch_id_5").json, testing::EndsWith(R"("storage_path":null,"method":"Manual"})"));
    keep(1, 5, Air, 7, 2).SetCreationMethod(static_cast<CReminder::CREATION_TYPE>(2));
    EXPECT_THAT(info("sch_id_5").json, testing::EndsWith(R"("storage_path":null,"method":null})"));
}

TEST_F(ScheduleQueries, InfoOfAnUnknownScheduleIsNotFound) {
    for (const char* scheduleId : {"sch_id_7", "SCH_ID_5", "5", "sch_id_5 ", "O'Neil"}) {
        SCOPED_TRACE(scheduleId);
        log.clear();
        const Answer answer = info(scheduleId);
        EXPECT_EQ(answer.status, 404);
        EXPECT_EQ(answer.json, "{}");
        EXPECT_THAT(logged(), Not(Contains(LogLine(Logger::Trace, "Retrieving ChannelId from the DB\n"))));
        EXPECT_TRUE(leavesNoStatement());
    }
}

TEST_F(ScheduleQueries, InfoHoldsTheFirstOfSeveralRows) {
    schedule("pid-001-10-0-3", "sch_id_5", "RECORD", "ONCE");
    EXPECT_EQ(info("sch_id_5").json, scheduleOfTable + ofMiddleware);
}

TEST_F(ScheduleQueries, InfoTakesTheIdentifierAsItCame) {
    EXPECT_THAT(info("x' OR ProgramName='Morning").json, HasSubstr(R"("id":"sch_id_5")"));
}

TEST_F(ScheduleQueries, InfoIsTheTablesAloneWithoutTheChannel) {
    useGuide(false, false);
    const Answer answer = info("sch_id_5");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, scheduleOfTable + "}");
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "Creating channel object\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, InfoIsTheTablesAloneWithoutTheSchedule) {
    schedule("pid-000-7-2-1", "sch_id_77", "RECORD", "ONCE");
    const Answer answer = info("sch_id_77");
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.json, testing::EndsWith(R"("status":"RECORD"})"));
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "Channel pointer is not null\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, InfoIsTheTablesAloneWithoutAStore) {
    reminders.reset();
    const Answer answer = info("sch_id_5");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, scheduleOfTable + "}");
}

// A programme's schedule ------------------------------------------------------------------------------

TEST_F(ScheduleQueries, OfAProgrammeHoldsBothIdentifiers) {
    const Answer answer = ofProgramme("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, programmesScheduleOfTable + ofMiddleware);
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, OfAProgrammeLooksForTheProgrammeFirst) {
    const SqlTrace trace(*OpenPlugin::epgDBConnection);
    ofProgramme("pid-000-7-2-1");
    EXPECT_THAT(trace.statements,
                ElementsAre("SELECT EventId From myView WHERE EventId='pid-000-7-2-1';",
                            selectSchedule + "EventId='pid-000-7-2-1' AND NOT ScheduleId='';"));
}

TEST_F(ScheduleQueries, OfAProgrammeTracesItsSteps) {
    ofProgramme("pid-000-7-2-1");
    auto lines = logged();
    // The statement is told before or after the look for the programme.
    const LogLine statement(Logger::Trace, "SQL query set as: " + selectSchedule +
                                               "EventId='pid-000-7-2-1' AND NOT ScheduleId='';");
    EXPECT_EQ(std::erase(lines, statement), 1U);
    EXPECT_THAT(lines, ElementsAre(LogLine(Logger::Debug, "selectSql statement\n"),
                                   LogLine(Logger::Trace, "Program exists in DB!\n"),
                                   LogLine(Logger::Trace, "Retrieving ChannelId from the DB\n"),
                                   LogLine(Logger::Trace, "ChannelID val: cid-000-7-2\n"),
                                   LogLine(Logger::Trace, "Channel pointer is not null\n"),
                                   LogLine(Logger::Trace, "ProgramObjectRetrieved\n"),
                                   LogLine(Logger::Trace,
                                           "Retrieving/Writting additional schedule data to output\n")));
}

TEST_F(ScheduleQueries, OfAProgrammeAsksTheStoreWithAnEmptyRecord) {
    ofProgramme("pid-000-7-2-1");
    EXPECT_THAT(reminders->askedEvents, ElementsAre(1));
    ASSERT_NE(reminders->handedIn, nullptr);
    EXPECT_EQ(reminders->handedIn->UID(), 0U);
    EXPECT_EQ(reminders->handedIn->EventId(), 0);
    EXPECT_EQ(reminders->handedIn->GetTitle()[0], 0);
}

TEST_F(ScheduleQueries, OfAProgrammeTellsHowTheScheduleWasMade) {
    keep(1, 5, Air, 7, 2).SetCreationMethod(CReminder::CREATED_MANUALLY);
    EXPECT_THAT(ofProgramme("pid-000-7-2-1").json,
                testing::EndsWith(R"("storage_path":null,"method":"Manual"})"));
}

TEST_F(ScheduleQueries, OfAnUnknownProgrammeIsNotFound) {
    for (const char* programId : {"pid-000-7-2-9", "PID-000-7-2-1", "O'Neil"}) {
        SCOPED_TRACE(programId);
        log.clear();
        const SqlTrace trace(*OpenPlugin::epgDBConnection);
        const Answer answer = ofProgramme(programId);
        EXPECT_EQ(answer.status, 404);
        EXPECT_EQ(answer.json, "{}");
        EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "Program ID is not valid, not in DB\n"));
        EXPECT_THAT(trace.statements, Not(Contains(HasSubstr("SELECT ScheduleId"))));
        EXPECT_TRUE(leavesNoStatement());
    }
}

TEST_F(ScheduleQueries, OfAProgrammeWithoutOneIsNone) {
    const Answer never = ofProgramme("pid-000-7-2-2");
    EXPECT_EQ(never.status, 200);
    EXPECT_EQ(never.json, R"({"type":"NONE","status":"NONE"})");
    table("UPDATE myView SET ScheduleId=NULL WHERE EventId='pid-000-7-2-1'");
    const Answer noMore = ofProgramme("pid-000-7-2-1");
    EXPECT_EQ(noMore.status, 200);
    EXPECT_EQ(noMore.json, R"({"type":"NONE","status":"NONE"})");
    EXPECT_THAT(reminders->askedEvents, IsEmpty());
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, OfAProgrammeIsTheTablesAloneWithoutTheChannel) {
    useGuide(false, false);
    const Answer answer = ofProgramme("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, programmesScheduleOfTable + "}");
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "ChannelID val: cid-000-7-2\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, OfAProgrammeIsTheTablesAloneWithoutTheProgramme) {
    useGuide(true, false);
    const Answer answer = ofProgramme("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, programmesScheduleOfTable + "}");
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "ProgramObjectRetrieved\n"));
    EXPECT_THAT(reminders->askedEvents, IsEmpty());
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, OfAProgrammeIsTheTablesAloneWithoutTheReminder) {
    schedule("pid-000-7-2-2", "sch_id_8", "RECORD", "ONCE");
    const Answer answer = ofProgramme("pid-000-7-2-2");
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.json, testing::EndsWith(R"("status":"RECORD"})"));
    EXPECT_THAT(reminders->askedEvents, ElementsAre(2));
    EXPECT_EQ(logged().back(), LogLine(Logger::Trace, "ProgramObjectRetrieved\n"));
    EXPECT_TRUE(leavesNoStatement());
}

TEST_F(ScheduleQueries, OfAProgrammeIsTheTablesAloneWithoutAStore) {
    reminders.reset();
    const Answer answer = ofProgramme("pid-000-7-2-1");
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.json, programmesScheduleOfTable + "}");
}

// The table after them --------------------------------------------------------------------------------

TEST_F(ScheduleQueries, LetTheTableBeMadeAgain) {
    list();
    info("sch_id_5");
    info("sch_id_7");
    ofProgramme("pid-000-7-2-1");
    ofProgramme("pid-000-7-2-2");
    ofProgramme("pid-000-7-2-9");
    plugin()->rebuildDB(true);
    EXPECT_THAT(table("SELECT count(*) FROM myView"), ElementsAre(Row{"3"}));
}

}  // namespace
}  // namespace epgtest
