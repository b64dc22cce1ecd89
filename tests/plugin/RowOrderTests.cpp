// The order of rows: that of the table for whoever asks for none, with the indexes beside it and without.
#include <gmock/gmock.h>

#include <bit>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/SqlTrace.h"
#include "tests/support/TestReminders.h"

namespace epgtest {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

/// Statements of clients that name the indexed columns in every way that might read them from an index. Joins
/// are left out: SQLite makes indexes of its own for them, whose order is theirs.
const std::vector<std::string> clientStatements = {
    "SELECT * FROM myView",
    "SELECT EventId FROM myView",
    "SELECT ScheduleId FROM myView",
    "SELECT EventId, ScheduleId FROM myView LIMIT 5",
    "SELECT rowid FROM myView",
    "SELECT 1, ScheduleId FROM myView LIMIT 3 OFFSET 2",
    "SELECT EventId FROM myView WHERE NOT EventId=''",
    "SELECT EventId FROM myView WHERE EventId<>''",
    "SELECT EventId FROM myView WHERE EventId IS NOT NULL",
    "SELECT EventId FROM myView WHERE EventId=''",
    "SELECT ChannelId, EventId FROM myView WHERE EventId='pid-000-9-0-2'",
    "SELECT EventId FROM myView WHERE EventId>'pid-000-9'",
    "SELECT * FROM myView WHERE EventId>='pid-000-10' AND EventId<'pid-000-9-0-3'",
    "SELECT EventId FROM myView WHERE EventId BETWEEN 'pid-000-10' AND 'pid-000-9-0-3'",
    "SELECT EventId FROM myView WHERE EventId IN ('pid-000-9-0-2','pid-000-10-0-4','pid-000-10-0-1')",
    "SELECT * FROM myView WHERE EventId IN ('pid-000-9-0-2','pid-000-10-0-4')",
    "SELECT EventId FROM myView WHERE EventId='pid-000-9-0-2' OR EventId='pid-000-10-0-4'",
    "SELECT * FROM myView WHERE EventId='pid-000-9-0-2' OR EventId='pid-000-10-0-4'",
    "SELECT EventId FROM myView WHERE EventId IN (SELECT EventId FROM myView WHERE ProgramStartTime>0)",
    "SELECT ProgramName FROM myView WHERE EventId NOT IN ('pid-000-9-0-2','')",
    "SELECT EventId FROM myView WHERE EventId GLOB 'pid-000-*'",
    "SELECT EventId FROM myView WHERE EventId LIKE 'pid-000-%'",
    "SELECT EventId FROM myView WHERE substr(EventId,1,3)='pid'",
    "SELECT DISTINCT EventId FROM myView",
    "SELECT DISTINCT ScheduleId FROM myView",
    "SELECT EventId, count(*), ProgramName FROM myView GROUP BY EventId",
    "SELECT ScheduleId, count(*), ProgramName FROM myView GROUP BY ScheduleId",
    "SELECT ChannelName, EventId FROM myView ORDER BY EventId",
    "SELECT ChannelName, EventId FROM myView ORDER BY EventId DESC",
    "SELECT ChannelName, EventId FROM myView ORDER BY EventId DESC LIMIT 3",
    "SELECT EventId, ScheduleId FROM myView ORDER BY ScheduleId",
    "SELECT EventId, ScheduleId FROM myView ORDER BY ScheduleId DESC",
    "SELECT max(EventId), ChannelName FROM myView",
    "SELECT min(ScheduleId), EventId FROM myView",
    "SELECT count(*) FROM myView",
    "SELECT ScheduleId FROM myView WHERE NOT ScheduleId=''",
    "SELECT ScheduleId FROM myView WHERE ScheduleId<>''",
    "SELECT ScheduleId FROM myView WHERE ScheduleId!=''",
    "SELECT ScheduleId FROM myView WHERE ScheduleId>''",
    "SELECT ScheduleId FROM myView WHERE ScheduleId IS NOT NULL",
    "SELECT EventId FROM myView WHERE ScheduleId IS NULL",
    "SELECT EventId FROM myView WHERE ScheduleId=''",
    "SELECT ScheduleId FROM myView WHERE ScheduleId='sch_id_30'",
    "SELECT ScheduleId FROM myView WHERE ScheduleId IN ('sch_id_5','sch_id_100','sch_id_30')",
    "SELECT EventId FROM myView WHERE ScheduleId IN ('sch_id_5','sch_id_100','sch_id_30')",
    "SELECT EventId FROM myView WHERE ScheduleId='sch_id_5' OR ScheduleId='sch_id_100'",
    "SELECT EventId FROM myView WHERE ScheduleId='sch_id_30' OR EventId='pid-000-10-0-1'",
    "SELECT ScheduleId FROM myView WHERE ScheduleId LIKE 'sch%'",
    "SELECT ScheduleId FROM myView WHERE ScheduleId GLOB 'sch*'",
    "SELECT EventId FROM myView WHERE ChannelId='cid-000-9' AND NOT ScheduleId=''",
    "SELECT ScheduleId, EventId FROM myView WHERE ScheduleId='' AND EventId IN ('pid-000-9-0-3','')",
    "SELECT EventId FROM myView WHERE NOT ScheduleId='' ORDER BY rowid DESC",
    "SELECT EventId FROM myView WHERE (EventId,ScheduleId) IN (VALUES('pid-000-9-0-2','sch_id_30'))",
    "SELECT EventId FROM myView m WHERE EventId=(SELECT max(EventId) FROM myView WHERE "
    "ChannelId=m.ChannelId)",
    "SELECT EventId FROM myView WHERE EventId='pid-000-9-0-2' UNION ALL SELECT ScheduleId FROM myView",
    "SELECT EventId FROM myView UNION SELECT ScheduleId FROM myView",
    "SELECT ProgramName FROM (SELECT * FROM myView WHERE EventId>'') WHERE NOT ScheduleId=''",
    "SELECT group_concat(EventId) FROM myView",
    "SELECT group_concat(ScheduleId) FROM myView WHERE ScheduleId>''",
    "SELECT EventId, row_number() OVER () FROM myView",
    "SELECT ChannelId FROM myView",
    "SELECT EventId FROM myView WHERE ChannelId='cid-000-9'",
    "SELECT * FROM myView WHERE ChannelId>'cid-000-10'",
    "SELECT ChannelId FROM myView WHERE ChannelId IS NOT NULL",
    "SELECT ChannelId FROM myView WHERE ChannelId BETWEEN 'cid-000-10' AND 'cid-000-9'",
    "SELECT EventId FROM myView WHERE ChannelId IN ('cid-000-9','cid-000-10')",
    "SELECT ChannelId FROM myView WHERE ChannelId='cid-000-9' OR ChannelId='cid-000-10'",
    "SELECT ChannelId FROM myView WHERE ChannelId LIKE 'cid%'",
    "SELECT DISTINCT ChannelId FROM myView",
    "SELECT ChannelId, count(*), EventId FROM myView GROUP BY ChannelId",
    "SELECT EventId FROM myView ORDER BY ChannelId",
    "SELECT EventId FROM myView ORDER BY ChannelId DESC",
    "SELECT max(ChannelId), EventId FROM myView",
    "SELECT EventId FROM myView WHERE ProgramName='channel_stub' OR ProgramName IS NULL",
};

/// Queries of the lists, after "epg2/".
struct List {
    const char* path;
    const char* query;
};
const std::vector<List> lists = {
    {"channels", ""},
    {"channels", "name=Channel"},
    {"channels", "program_name=Programme"},
    {"channels", "channel_num=9"},
    {"channels", "antenna=AIR&scrambled=false&service_type=TV"},
    {"channels", "sort=name"},
    {"channels", "sort=antenna&sort_order=descend"},
    {"channels", "sort=channel_num&sort_order=ascend"},
    {"channels", "select=id"},
    {"channels", "items_max=2&items_start_index=1"},
    {"channels", "start=1970-01-01T00:00:00Z&end=2026-12-31T00:00:00Z"},
    {"programs", ""},
    {"programs", "name=Programme"},
    {"programs", "select=id"},
    {"programs", "sort=name"},
    {"programs", "sort=start&sort_order=descend"},
    {"programs", "sort=id&sort_order=descend"},
    {"programs", "channel_num=9&items_max=3"},
    {"programs", "start=1970-01-01T00:00:00Z"},
    {"channels/cid-000-9/programs", ""},
    {"channels/cid-000-9/programs", "select=id"},
    {"channels/cid-000-10/programs", "sort=name&sort_order=descend"},
    {"schedules", ""},
};

/// Two channels with programmes, two without, and bookings whose identifiers stand in another order than
/// their rows do: on two programmes of each channel and two by hand.
class RowOrder : public PluginTest {
protected:
    RowOrder() {
        TestGuide guide;
        guide.programmes(guide.channel(Air, 9), 6);
        guide.programmes(guide.channel(Air, 10), 6);
        guide.channel(Satellite, 3);
        guide.channel(Cable, 5);
        guide.use();
        plugin();
        book(2, 30, 9, "Programme");
        book(3, 100, 9, "Programme");
        book(1, 4, 10, "Programme");
        book(4, 200, 10, "Programme");
        book(5, 50, 9, "");
        book(6, 5, 10, "");
        mirror();
    }

    void book(int eventId, unsigned long uid, short major, const std::string& title) {
        CRemindInfo& info = reminders.book(eventId, uid, CReminder::RESERVE_RECORD, CReminder::REPEAT_ONCE);
        info.SetTitle(unitsOf(title, std::endian::big));
        info.Set(major, 0, 0, TCChannel::GetDigitalChType(Air), 0);
    }

    static void mirror() {
        OpenPlugin::m_removeDBSchedData(OpenPlugin::epgDBConnection);
        OpenPlugin::m_updateDBSchedData(OpenPlugin::epgDBConnection);
    }

    static std::vector<Row> indexNames() {
        return table("SELECT name FROM sqlite_master WHERE type='index'");
    }

    static void dropIndexes() {
        for (const Row& name : indexNames())
            table("DROP INDEX " + name.front());
        ASSERT_THAT(indexNames(), IsEmpty());
    }

    /// The answer of a list, printed.
    static std::string answerOf(const List& list) {
        const TestDocument document;
        const TestQuery query(list.query);
        TARNO_rstr_uri_path_st* path =
            TARNO_rstr_uri_parse_path(("epg2/" + std::string(list.path)).c_str(), -1);
        const int status = plugin()->ExecuteClientQuery(document, "GET", path, query, nullptr, 0, nullptr);
        TARNO_rstr_uri_delete_path(path);
        return std::to_string(status) + document.json();
    }

    /// How SQLite runs a statement: a line a table.
    static std::string planOf(const std::string& sql) {
        std::string plan;
        for (const Row& row : table("EXPLAIN QUERY PLAN " + sql))
            plan += row.back() + '\n';
        return plan;
    }

    /// The rows of every client statement.
    static std::vector<std::vector<Row>> clientRows() {
        std::vector<std::vector<Row>> rows;
        for (const std::string& sql : clientStatements)
            rows.push_back(table(sql));
        return rows;
    }

    void expectClientRowsAsWithoutIndexes() {
        const auto with = clientRows();
        dropIndexes();
        for (std::size_t i = 0; i < clientStatements.size(); ++i)
            EXPECT_EQ(table(clientStatements[i]), with[i]) << clientStatements[i];
    }

    TestReminders reminders;
};

TEST_F(RowOrder, OfClientStatementsIsTheSameWithIndexesAndWithout) {
    ASSERT_THAT(indexNames(), SizeIs(5));
    ASSERT_THAT(table("SELECT 1 FROM myView WHERE NOT ScheduleId=''"), SizeIs(6));
    expectClientRowsAsWithoutIndexes();
}

TEST_F(RowOrder, StaysAfterAClientsVacuumAndAnalysis) {
    for (const char* sql : {"sql=VACUUM", "sql=ANALYZE", "sql=REINDEX"}) {
        const TestDocument document;
        EXPECT_EQ(plugin()->ExecuteClientCommand(TestQuery(sql), document), 204) << sql;
    }
    ASSERT_THAT(indexNames(), SizeIs(5));
    expectClientRowsAsWithoutIndexes();
}

TEST_F(RowOrder, StaysAfterARebuild) {
    plugin()->rebuildDB(true);
    mirror();
    ASSERT_THAT(indexNames(), SizeIs(5));
    expectClientRowsAsWithoutIndexes();
}

TEST_F(RowOrder, OfListsIsTheSameWithIndexesAndWithout) {
    std::vector<std::string> with;
    for (const List& list : lists)
        with.push_back(answerOf(list));
    dropIndexes();
    for (std::size_t i = 0; i < lists.size(); ++i) {
        EXPECT_EQ(answerOf(lists[i]), with[i]) << lists[i].path << '?' << lists[i].query;
        EXPECT_THAT(with[i], HasSubstr("200{\"items\":[{")) << lists[i].path << '?' << lists[i].query;
    }
}

TEST_F(RowOrder, OfChannelAndProgrammeListsComesFromTheTableItself) {
    for (const List& list : lists) {
        const std::string path = list.path;
        if (path == "schedules" || path.starts_with("channels/")) continue;
        std::vector<std::string> statements;
        {
            SqlTrace trace(*OpenPlugin::epgDBConnection);
            answerOf(list);
            statements = trace.statements;
        }
        const std::string plan = planOf(statements.back());
        EXPECT_THAT(plan, HasSubstr("SCAN myView")) << statements.back();
        EXPECT_THAT(plan, Not(AnyOf(HasSubstr("USING INDEX"), HasSubstr("USING COVERING INDEX"))))
            << statements.back();
    }
}

TEST_F(RowOrder, IsKeptBesideATableAlone) {
    const auto tables = table("SELECT name FROM sqlite_master WHERE type='table'");
    EXPECT_THAT(tables, testing::ElementsAre(Row{"myView"}));
}

}  // namespace
}  // namespace epgtest
