// The indexes beside the table: there when there is room, and nobody sees them in an answer.
#include <gmock/gmock.h>

#include "tests/support/PluginTest.h"

namespace {

using epgtest::OpenPlugin;
using epgtest::Row;
using epgtest::TestGuide;
using testing::ElementsAre;
using testing::IsEmpty;

class Indexes : public epgtest::PluginTest {
protected:
    /// Two channels with a few programmes each, three of which are booked in an order of their own.
    static void fill() {
        TestGuide guide;
        guide.programmes(guide.channel(epgtest::Air, 10), 4);
        guide.programmes(guide.channel(epgtest::Air, 9), 4);
        guide.use();
        plugin();
        table("UPDATE myView SET ScheduleId='sch_id_3' WHERE EventId='pid-000-9-0-2'");
        table("UPDATE myView SET ScheduleId='sch_id_1' WHERE EventId='pid-000-10-0-1'");
        table("UPDATE myView SET ScheduleId='sch_id_2' WHERE EventId='pid-000-10-0-4'");
    }

    static std::vector<Row> names() {
        return table("SELECT name FROM sqlite_master WHERE type='index' ORDER BY name");
    }
};

TEST_F(Indexes, AreMadeAfterTheFill) {
    fill();
    EXPECT_THAT(names(), ElementsAre(Row{"myViewBooked"}, Row{"myViewChannel"}, Row{"myViewEvent"},
                                     Row{"myViewSchedule"}, Row{"myViewStub"}));
}

TEST_F(Indexes, AreMadeAgainByARebuild) {
    fill();
    plugin()->rebuildDB(true);
    EXPECT_THAT(names(), ElementsAre(Row{"myViewBooked"}, Row{"myViewChannel"}, Row{"myViewEvent"},
                                     Row{"myViewSchedule"}, Row{"myViewStub"}));
}

TEST_F(Indexes, ServeTheStatementsOfEveryRequest) {
    fill();
    const auto plan = [](const std::string& sql) {
        return table("EXPLAIN QUERY PLAN " + sql).front().back();
    };
    EXPECT_THAT(plan("SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';"),
                testing::HasSubstr("myViewBooked"));
    EXPECT_THAT(plan("UPDATE myView SET Repeat=NULL WHERE ScheduleId='sch_id_1';"),
                testing::HasSubstr("myViewSchedule"));
    EXPECT_THAT(plan("UPDATE myView SET Repeat='' WHERE ChannelId='cid-000-9' AND EventId='pid-000-9-0-1';"),
                testing::HasSubstr("myViewEvent"));
    EXPECT_THAT(plan("SELECT EventId From myView WHERE EventId='pid-000-9-0-1';"),
                testing::HasSubstr("myViewEvent"));
    EXPECT_THAT(plan("SELECT ChannelId From myView WHERE ChannelId='cid-000-9';"),
                testing::HasSubstr("myViewChannel"));
    EXPECT_THAT(plan("SELECT EventId FROM myView WHERE ChannelId='cid-000-9'  AND NOT "
                     "ProgramName='channel_stub' ;"),
                testing::HasSubstr("myViewChannel"));
    EXPECT_THAT(plan("SELECT count(*) FROM myView WHERE ProgramName='channel_stub' OR ProgramName IS NULL;"),
                testing::HasSubstr("myViewStub"));
}

TEST_F(Indexes, ChangeNoAnswerAndNoOrderOfRows) {
    fill();
    const std::vector<std::string> statements = {
        "SELECT ScheduleId, ProgramName FROM myView WHERE NOT ScheduleId='';",
        "SELECT  ScheduleId, ScheduleType, EventId FROM myView WHERE NOT ScheduleId='';",
        "SELECT ChannelId, ProgramStartTime FROM myView WHERE ScheduleId='' AND NOT ServiceType='' AND NOT "
        "AntennaType='' GROUP BY ChannelId ;",
        "SELECT ChannelId, ProgramStartTime FROM myView WHERE ScheduleId='' AND NOT ServiceType='' AND NOT "
        "AntennaType='' GROUP BY ChannelId  ORDER BY AntennaType DESC;",
        "SELECT  EventId, ProgramName FROM myView WHERE NOT ProgramName='channel_stub' ;",
        "SELECT EventId FROM myView WHERE ChannelId='cid-000-9'  AND NOT ProgramName='channel_stub' ;",
        "SELECT ChannelId, EventId FROM myView WHERE ScheduleId='' AND NOT ChannelId='' AND NOT EventId='' "
        "AND "
        "NOT ChannelName='No_channel_name' ORDER BY ProgramStartTime DESC LIMIT 5;",
    };
    std::vector<std::vector<Row>> with;
    for (const std::string& sql : statements)
        with.push_back(table(sql));
    for (const Row& name : names())
        table("DROP INDEX " + name.front());
    for (std::size_t i = 0; i < statements.size(); ++i)
        EXPECT_EQ(table(statements[i]), with[i]) << statements[i];
}

TEST_F(Indexes, AreLeftOutOfATableThatIsNearlyFull) {
    fill();
    for (const Row& name : names())
        table("DROP INDEX " + name.front());
    table(
        "CREATE TABLE filler AS SELECT zeroblob(3000000) AS bytes UNION ALL SELECT zeroblob(3000000) UNION "
        "ALL "
        "SELECT zeroblob(3000000) UNION ALL SELECT zeroblob(3000000) UNION ALL SELECT zeroblob(3000000) "
        "UNION "
        "ALL SELECT zeroblob(3000000)");
    OpenPlugin::m_createIndexes(OpenPlugin::epgDBConnection);
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(table("SELECT count(*) FROM myView").front().front(), "8");
}

}  // namespace
