#include "set/reminders/ReminderStore.h"

#include "host/AppTV.h"
#include "host/TCProgram.h"
#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A store beside a guide of two channels that share their number, on two antennas, and their event ids.
class ReminderStoreTest : public ReminderFixture {
protected:
    ReminderStoreTest() { useProgrammes({2'000'000, 2'003'600}); }

    static void useProgrammes(const std::vector<std::uint32_t>& starts) {
        GuideBuilder builder;
        for (const int tvMode : {0, 3}) {
            const std::size_t channel = builder.addChannel(makeChannel(tvMode, 7, 2, "Seven"));
            for (const std::uint32_t start : starts)
                addProgramme(builder, channel, start, start + 3600);
        }
        useGuide(builder.finish());
    }

    /// The programme of the antenna with that start.
    static TCProgram programme(int channelType, std::uint32_t start) {
        TCChannel channel;
        EXPECT_NE(
            g_pAppTV->ExistChannel(std::make_unique<TCChannelKey>(channelType, 7, 2).get(), &channel, 0), 0);
        CCSortedList list;
        g_pAppTV->GetProgramList(&list, &channel, start, 1);
        EXPECT_TRUE(list.Seek(CCSortedList::First, 0));
        return *list.Data();
    }

    static CRemindInfo viewOf(const TCProgram& program) {
        CRemindInfo info;
        info.SetTimerViewing(program);
        return info;
    }

    bool finds(const TCProgram& program) {
        CRemindInfo info;
        return store().FindRemindItemFromProgram(program, info);
    }
};

TEST_F(ReminderStoreTest, IsEmptyWhenNew) {
    EXPECT_THAT(all(), IsEmpty());
    CRemindInfo info;
    EXPECT_FALSE(store().GetRemindItemByUid(1, info));
    EXPECT_FALSE(finds(programme(Air, 2'000'000)));
}

TEST_F(ReminderStoreTest, GivesEachEntryAUidOfItsOwn) {
    EXPECT_EQ(add(manualEntry(2'000'000, 60)), 1U);
    EXPECT_EQ(add(manualEntry(3'000'000, 60)), 2U);
}

TEST_F(ReminderStoreTest, NeverUsesAUidTwice) {
    const unsigned long first = add(manualEntry(2'000'000, 60));
    EXPECT_EQ(store().DeleteRemindItemByUid(first), 1);
    const unsigned long second = add(manualEntry(2'000'000, 60));
    EXPECT_EQ(store().UserDeleteRemindItemByUid(second), 1);
    open();
    EXPECT_EQ(add(manualEntry(2'000'000, 60)), second + 1);
}

TEST_F(ReminderStoreTest, KeepsAllOfAnEntryAcrossARestart) {
    CRemindInfo info = manualEntry(2'000'000, 5400, static_cast<CReminder::RESERVE_TYPE>(7));
    info.Set(-3, 12, 65535, Satellite, 65534);
    info.SetEventId(65535);
    info.SetRepeat(CReminder::REPEAT_MANUAL, 0x7F);
    info.SetTitle({0x4100, 0x3DD8, 0x00DE});  // "A", and a pair of surrogates
    info.SetSynopsis({'s', '\n', 0x20AC, 0xFFFF});
    const unsigned long uid = add(info);
    open();
    const CRemindInfo kept = entry(uid);
    EXPECT_EQ(kept.UID(), uid);
    EXPECT_EQ(kept.ReserveType(), 7);
    EXPECT_EQ(kept.CreationMethod(), CReminder::CREATED_MANUALLY);
    EXPECT_EQ(kept.Major(), -3);
    EXPECT_EQ(kept.Minor(), 12);
    EXPECT_EQ(kept.PTC(), 65535);
    EXPECT_EQ(kept.ProgramNumber(), 65534);
    EXPECT_EQ(kept.ChannelType(), Satellite);
    EXPECT_EQ(kept.EventId(), 65535);
    EXPECT_EQ(kept.RepeatType(), CReminder::REPEAT_MANUAL);
    EXPECT_EQ(kept.ManualRepeat(), 0x7F);
    EXPECT_EQ(kept.StartTime(), 2'000'000U);
    EXPECT_EQ(kept.Duration(), 5400U);
    EXPECT_EQ(CRemindInfo::Text(kept.GetTitle()), CRemindInfo::Text(info.GetTitle()));
    EXPECT_EQ(CRemindInfo::Text(kept.Synopsis()), CRemindInfo::Text(info.Synopsis()));
}

TEST_F(ReminderStoreTest, ReplacesAnEntryUnderItsUid) {
    const unsigned long uid = add(manualEntry(2'000'000, 60));
    CRemindInfo changed = manualEntry(3'000'000, 120, CReminder::RESERVE_VIEW);
    changed.SetUid(99);
    EXPECT_TRUE(store().UpdateRemindItemByUid(uid, changed, 0, 1));
    for (int start = 0; start < 2; ++start) {
        EXPECT_EQ(entry(uid).StartTime(), 3'000'000U);
        EXPECT_EQ(entry(uid).Duration(), 120U);
        EXPECT_EQ(entry(uid).ReserveType(), CReminder::RESERVE_VIEW);
        EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
        open();
    }
}

TEST_F(ReminderStoreTest, RefusesToChangeOrRemoveWhatIsNotThere) {
    EXPECT_FALSE(store().UpdateRemindItemByUid(5, manualEntry(2'000'000, 60), 0, 1));
    EXPECT_EQ(store().DeleteRemindItemByUid(5), 0);
    EXPECT_EQ(store().UserDeleteRemindItemByUid(5), 0);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(ReminderStoreTest, RemovesAnEntryForGood) {
    const unsigned long uid = add(manualEntry(2'000'000, 60));
    EXPECT_EQ(store().DeleteRemindItemByUid(uid), 1);
    EXPECT_EQ(store().DeleteRemindItemByUid(uid), 0);
    open();
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(ReminderStoreTest, RefusesAnEntryThatCanNeverBeDone) {
    CRemindInfo invalid = manualEntry(2'000'000, 60);
    invalid.SetRepeat(CReminder::REPEAT_INVALID, 0);
    CRemindInfo never = manualEntry(2'000'000, 60);
    never.SetRepeat(CReminder::REPEAT_MANUAL, 0x80);
    CRemindInfo nowhere = manualEntry(2'000'000, 60);
    nowhere.Set(7, 0, 0, 3, 0);  // no antenna has this type
    for (const CRemindInfo& info : {CRemindInfo(), manualEntry(2'000'000, 0), manualEntry(4'294'967'290U, 60),
                                    invalid, never, nowhere}) {
        CRemindInfo tried = info;
        EXPECT_FALSE(store().AddRemindItem(tried, 0));
        EXPECT_EQ(tried.UID(), 0U);
    }
    EXPECT_EQ(log_.messagesOf("set/reminders").size(), 6U);
    EXPECT_THAT(log_.messagesOf("set/reminders").front(), HasSubstr("no channel"));
    const unsigned long uid = add(manualEntry(2'000'000, 60));
    EXPECT_FALSE(store().UpdateRemindItemByUid(uid, CRemindInfo(), 0, 1));
    EXPECT_EQ(entry(uid).Duration(), 60U);
}

TEST_F(ReminderStoreTest, TakesAnEntryUpToTheEndOfTime) {
    EXPECT_EQ(entry(add(manualEntry(4'294'967'235U, 60))).StartTime(), 4'294'967'235U);
}

TEST_F(ReminderStoreTest, ListsEntriesByStartThenUid) {
    const unsigned long late = add(manualEntry(4'000'000, 60));
    const unsigned long early = add(manualEntry(2'000'000, 60));
    const unsigned long alsoLate = add(manualEntry(4'000'000, 90));
    EXPECT_THAT(uidsOf(all()), ElementsAre(early, late, alsoLate));
}

TEST_F(ReminderStoreTest, ListsNoOtherKind) {
    add(manualEntry(2'000'000, 60));
    int count = 9;
    std::vector<CRemindInfo> items(3);
    EXPECT_FALSE(store().GetRemindItemByType(count, items, 1));
    EXPECT_EQ(count, 0);
    EXPECT_THAT(items, IsEmpty());
}

TEST_F(ReminderStoreTest, FindsTheEntryOfAProgrammeByChannelAndEvent) {
    const unsigned long uid = add(viewOf(programme(Satellite, 2'000'000)));
    CRemindInfo found;
    ASSERT_TRUE(store().FindRemindItemFromProgram(programme(Satellite, 2'000'000), found));
    EXPECT_EQ(found.UID(), uid);
    EXPECT_EQ(found.StartTime(), 2'000'000U);
    EXPECT_FALSE(finds(programme(Satellite, 2'003'600)));
    EXPECT_FALSE(finds(programme(Air, 2'000'000)));
    EXPECT_FALSE(finds(TCProgram()));
}

TEST_F(ReminderStoreTest, FindsTheEntryAfterAReloadThatKeepsTheProgramme) {
    add(viewOf(programme(Air, 2'003'600)));
    useProgrammes({1'996'400, 2'003'600});
    open();
    EXPECT_TRUE(finds(programme(Air, 2'003'600)));
    EXPECT_FALSE(finds(programme(Air, 1'996'400)));
}

TEST_F(ReminderStoreTest, FindsTheOlderOfTwoEntriesOfAProgramme) {
    const TCProgram program = programme(Air, 2'000'000);
    const unsigned long first = add(viewOf(program));
    const unsigned long second = add(viewOf(program));
    CRemindInfo found;
    ASSERT_TRUE(store().FindRemindItemFromProgram(program, found));
    EXPECT_EQ(found.UID(), first);
    store().DeleteRemindItemByUid(first);
    ASSERT_TRUE(store().FindRemindItemFromProgram(program, found));
    EXPECT_EQ(found.UID(), second);
    store().DeleteRemindItemByUid(second);
    EXPECT_FALSE(finds(program));
}

TEST_F(ReminderStoreTest, DoesNotFindAnEntryThatWasChangedIntoAManualOne) {
    const TCProgram program = programme(Air, 2'000'000);
    const unsigned long uid = add(viewOf(program));
    EXPECT_TRUE(store().UpdateRemindItemByUid(uid, manualEntry(2'000'000, 3600), 0, 1));
    EXPECT_FALSE(finds(program));
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
}

TEST_F(ReminderStoreTest, KeepsWhatAProgrammeWasWhenItHasLeftTheGuide) {
    const unsigned long uid = add(viewOf(programme(Air, 2'000'000)));
    useProgrammes({});
    open();
    TCProgram details;
    entry(uid).CopyDetailsInto(details);
    EXPECT_EQ(details.StartTime(), 2'000'000U);
    EXPECT_EQ(details.EndTime(), 2'003'600U);
    EXPECT_EQ(details.TitleLength(), 2 * static_cast<int>(std::string("from 2000000").size()));
}

TEST_F(ReminderStoreTest, HandsOutStartsInTheLocalSecondsOfNow) {
    clock_.setZone(540, false);
    const unsigned long uid = add(manualEntry(2'000'000 + 9 * 3600, 60));
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000U + 9 * 3600);
    clock_.setZone(540, true);  // daylight saving has begun; the entry stays where it is in UNIX time
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000U + 10 * 3600);
    clock_.setZone(0, false);  // started again with another zone
    open();
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000U);
}

}  // namespace
}  // namespace epgset
