// What the recorder is asked for, and what is shown meanwhile.
#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/DueRemindersFixture.h"
#include "tests/set/reminders/Times.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Recordings of channel 7 from 2'000'000 on.
class RecordingOrdersTest : public DueRemindersFixture {
protected:
    RecordingOrdersTest() {
        GuideBuilder builder;
        Channel seven = makeChannel(0, 7, 0, "Seven");
        seven.source = "http://127.0.0.1/seven";
        builder.addChannel(seven);
        useGuide(builder.finish());
    }

    unsigned long addDaily() {
        CRemindInfo daily = manualEntry(2'000'000, 100);
        daily.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
        return add(daily);
    }
};

TEST_F(RecordingOrdersTest, BeginWithTheFirstSecondAndEndWithTheLast) {
    add(manualEntry(2'000'000, 100));
    checkAt(1'999'999);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    checkAt(2'000'000);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    checkAt(2'000'001);
    checkAt(2'000'099);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    checkAt(2'000'100);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Ended"));
    checkAt(2'000'101);
    EXPECT_EQ(recorder_.calls.size(), 2U);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(RecordingOrdersTest, SayWhatIsToBeRecorded) {
    CRemindInfo info = manualEntry(2'000'000, 100);
    info.SetTitle({0x4E00, 0x6500});  // "Ne"
    info.SetSynopsis({'x'});
    const unsigned long uid = add(info);
    checkAt(2'000'005);
    const RecordingOrder& order = recorder_.orders.at(0);
    EXPECT_EQ(order.uid, uid);
    ASSERT_TRUE(order.channel);
    EXPECT_EQ(order.channel->source, "http://127.0.0.1/seven");
    EXPECT_EQ(order.tvMode, 0);
    EXPECT_EQ(order.major, 7);
    EXPECT_EQ(order.minor, 0);
    EXPECT_EQ(order.start, 2'000'000);
    EXPECT_EQ(order.end, 2'000'100);
    EXPECT_EQ(order.title, "Ne");
    EXPECT_EQ(order.synopsis, "x");
}

TEST_F(RecordingOrdersTest, NameAChannelThatTheLineupDoesNotHave) {
    CRemindInfo info = manualEntry(2'000'000, 100);
    info.Set(9, 1, 0, Satellite, 0);
    add(info);
    checkAt(2'000'000);
    EXPECT_FALSE(recorder_.orders.at(0).channel);
    EXPECT_EQ(recorder_.orders.at(0).tvMode, 3);
    EXPECT_EQ(recorder_.orders.at(0).major, 9);
    EXPECT_EQ(recorder_.orders.at(0).minor, 1);
}

TEST_F(RecordingOrdersTest, ShowTheEntryAsRecordingMeanwhile) {
    CRemindInfo info = manualEntry(2'000'000, 100);
    info.SetEventId(17);
    const unsigned long uid = add(info);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    checkAt(2'000'000);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
    EXPECT_EQ(all().front().ReserveType(), CReminder::RESERVE_RECORDING);

    Programme programme;
    programme.eventId = 17;
    const Channel seven = makeChannel(0, 7, 0);
    CRemindInfo found;
    ASSERT_TRUE(store().FindRemindItemFromProgram(
        TCProgram(std::make_shared<const Programme>(programme), &seven), found));
    EXPECT_EQ(found.ReserveType(), CReminder::RESERVE_RECORDING);

    open();  // it is not on disk
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
}

TEST_F(RecordingOrdersTest, ShowNoRecordingThatCameToItsEndByItself) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    recorder_.lost.insert(uid);
    checkAt(2'000'010);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    checkAt(2'000'020);
    checkAt(2'000'100);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(RecordingOrdersTest, ShowARepeatingEntryAsRecordingOnlyWhileItDoes) {
    const ProcessZone zone("UTC");
    const unsigned long uid = addDaily();
    checkAt(2'000'000);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
    checkAt(2'000'100);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    checkAt(2'000'000 + day);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Ended", "begin 1 2086400"));
}

TEST_F(RecordingOrdersTest, AreNotGivenAgainWhenTheyAreRefused) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    recorder_.refused = {uid};
    checkAt(2'000'000);
    checkAt(2'000'050);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    checkAt(2'000'100);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
}

TEST_F(RecordingOrdersTest, AreGivenAgainAfterAStart) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    restart();
    checkAt(2'000'030);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
}

TEST_F(RecordingOrdersTest, EndWhenTheSetStops) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    add(manualEntry(3'000'000, 100));
    checkAt(2'000'000);
    due_->stop();
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 SetStops"));
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
}

TEST_F(RecordingOrdersTest, EndWhenTheEntryIsRemoved) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    EXPECT_NE(store().UserDeleteRemindItemByUid(uid), 0);
    checkAt(2'000'001);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Removed"));
}

TEST_F(RecordingOrdersTest, EndWhenTheEntryIsReplaced) {
    const unsigned long later = add(manualEntry(2'000'000, 100));
    const unsigned long longer = add(manualEntry(2'000'000, 100));
    const unsigned long view = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    recorder_.calls.clear();
    EXPECT_TRUE(store().UpdateRemindItemByUid(later, manualEntry(2'500'000, 100), 0, 1));
    EXPECT_TRUE(store().UpdateRemindItemByUid(longer, manualEntry(2'000'000, 200), 0, 1));
    EXPECT_TRUE(
        store().UpdateRemindItemByUid(view, manualEntry(2'000'000, 100, CReminder::RESERVE_VIEW), 0, 1));
    EXPECT_EQ(shownTypeOf(later), CReminder::RESERVE_RECORD);
    checkAt(2'000'001);
    EXPECT_THAT(recorder_.calls,
                ElementsAre("end 1 Replaced", "end 2 Replaced", "end 3 Replaced", "begin 2 2000000"));
    EXPECT_EQ(window_.channel()->major, 7);
}

TEST_F(RecordingOrdersTest, GoOnWhenTheEntryIsHandedBackAsItWasRead) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    EXPECT_TRUE(store().UpdateRemindItemByUid(uid, entry(uid), 0, 1));
    checkAt(2'000'001);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
    open();
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
}

TEST_F(RecordingOrdersTest, BeginForAnEntryThatIsAddedAsRecording) {
    const unsigned long uid = add(manualEntry(2'000'000, 100, CReminder::RESERVE_RECORDING));
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    checkAt(2'000'000);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
}

TEST_F(RecordingOrdersTest, NeverResumeAnOccurrenceThatTheUserEnded) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    EXPECT_TRUE(store().endOccurrence(uid, 2'000'000));
    EXPECT_THAT(all(), IsEmpty());
    checkAt(2'000'001);
    restart();
    checkAt(2'000'002);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(RecordingOrdersTest, ComeAgainAtTheNextTimeWhenTheUserEndedOne) {
    const ProcessZone zone("UTC");
    const unsigned long uid = addDaily();
    checkAt(2'000'000);
    clock_.setNow(2'000'010);
    EXPECT_TRUE(store().endOccurrence(uid, 2'000'000));
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000 + day);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORD);
    EXPECT_FALSE(store().endOccurrence(uid, 2'000'000));
    restart();
    checkAt(2'000'011);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    checkAt(2'000'000 + day);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2086400"));
}

TEST_F(RecordingOrdersTest, DoNotComeAgainAtATimeThatHasBegunWhenTheUserEndedOne) {
    const ProcessZone zone("UTC");
    CRemindInfo moreThanADay = manualEntry(2'000'000, day + 3'600);
    moreThanADay.SetRepeat(CReminder::REPEAT_EVERYDAY, 0);
    const unsigned long uid = add(moreThanADay);
    checkAt(2'000'000 + day + 60);
    EXPECT_TRUE(store().endOccurrence(uid, 2'000'000));
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000 + 2 * day);
}

TEST_F(RecordingOrdersTest, AreNotEndedByAnotherOccurrence) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    EXPECT_FALSE(store().endOccurrence(uid, 1'999'000));
    EXPECT_FALSE(store().endOccurrence(uid + 1, 2'000'000));
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
}

TEST_F(RecordingOrdersTest, GoOnWhenTheClockGoesBackAndBeginOnce) {
    add(manualEntry(2'000'000, 100));
    checkAt(2'000'010);
    checkAt(1'990'000);
    EXPECT_THAT(log_.messagesOf("set/reminders"), ElementsAre(HasSubstr("went back by 10010 s")));
    checkAt(2'000'000);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
    checkAt(2'000'100);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Ended"));
}

TEST_F(RecordingOrdersTest, BeginLateWhereTheClockIsMovedIntoTheirTime) {
    add(manualEntry(2'000'000, 100));
    checkAt(1'000'000);
    checkAt(2'000'099);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
}

TEST_F(RecordingOrdersTest, AreMissedWithAWordWhereTheClockPassesOverThem) {
    add(manualEntry(2'000'000, 100));
    checkAt(1'000'000);
    checkAt(3'000'000);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    EXPECT_THAT(log_.messagesOf("set/reminders"), ElementsAre(HasSubstr("passed over it")));
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(RecordingOrdersTest, AreMissedWithAWordWhereTheSetWasOff) {
    add(manualEntry(2'000'000, 100));
    restart();
    checkAt(3'000'000);
    EXPECT_THAT(log_.messagesOf("set/reminders"), ElementsAre(HasSubstr("the set was off")));
}

TEST_F(RecordingOrdersTest, AreToldAsDueOnce) {
    const unsigned long uid = add(manualEntry(2'000'000, 100));
    checkAt(2'000'000);
    checkAt(2'000'001);
    checkAt(2'000'100);
    const std::string path = " /ws/epg2/schedules/sch_id_" + std::to_string(uid);
    EXPECT_THAT(published(),
                ElementsAre("schedule-added" + path, "schedule-due" + path, "schedule-removed" + path));
}

}  // namespace
}  // namespace epgset
