// Entries that record a series.
#include "tests/set/reminders/DueRemindersFixture.h"

namespace epgset {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// One programme of channel 7, an hour long where it has no stop.
struct Show {
    std::uint32_t start;
    std::string title;
    std::string series;
    std::uint32_t stop = 0;
};

class SeriesTest : public DueRemindersFixture {
protected:
    static constexpr std::uint32_t hour = 3'600;
    static constexpr std::uint32_t eight = 2'000'000;  ///< when the first programme begins

    static void useShows(const std::vector<Show>& shows) {
        GuideBuilder builder;
        const std::size_t channel = builder.addChannel(makeChannel(0, 7, 0, "Seven"));
        builder.addChannel(makeChannel(0, 8, 0, "Eight"));
        for (const Show& show : shows) {
            GuideBuilder::ProgrammeDraft draft;
            draft.start = show.start;
            draft.stop = show.stop == 0 ? show.start + hour : show.stop;
            draft.eventId = static_cast<std::uint16_t>(show.start / 60 % 65535 + 1);
            draft.title = show.title;
            draft.series = show.series;
            builder.addProgramme(channel, draft);
        }
        useGuide(builder.finish());
    }

    /// Puts another guide in use, as a reload does.
    void reload(const std::vector<Show>& shows) {
        useShows(shows);
        store().followGuide(clock_.now());
    }

    static std::optional<TCProgram> programmeAt(std::uint32_t start) {
        const auto guide = currentGuide();
        const Channel* const channel = guide->find(0, 7, 0);
        for (const Programme& programme : guide->programmesOf(*channel)) {
            if (programme.start == start) {
                return TCProgram(std::shared_ptr<const Programme>(guide, &programme), channel);
            }
        }
        return std::nullopt;
    }

    unsigned long book(std::uint32_t start, CReminder::RESERVE_TYPE type = CReminder::RESERVE_SERIES) {
        CRemindInfo info;
        info.Set(programmeAt(start).value(), type, 0);
        return add(info);
    }

    /// UID of the entry that is shown at the programme with that start; 0 for none.
    unsigned long bookedAt(std::uint32_t start) {
        const auto programme = programmeAt(start);
        CRemindInfo info;
        return programme && store().FindRemindItemFromProgram(*programme, info) ? info.UID() : 0;
    }

    bool waits(unsigned long uid) { return store().find(uid)->waits(); }

    std::vector<CRemindInfo> overlapping(const CRemindInfo& info) {
        std::vector<CRemindInfo> items;
        store().GetOverlappingRemindItems(info, items);
        return items;
    }

    void checkThrough(std::int64_t first, std::int64_t last) {
        for (std::int64_t now = first; now <= last; now += 600)
            checkAt(now);
    }
};

TEST_F(SeriesTest, RecordsEachProgrammeOfItsTitleOnItsChannel) {
    useShows({{eight, "Soap", ""},
              {eight + hour, "News", ""},
              {eight + 2 * hour, "Soap", ""},
              {eight + 9 * hour, "Soap", ""}});
    book(eight);
    checkThrough(eight - 600, eight + 20 * hour);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Ended", "begin 1 2007200",
                                             "end 1 Ended", "begin 1 2032400", "end 1 Ended"));
}

TEST_F(SeriesTest, RecordsProgrammesThatFollowAtOnce) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}});
    book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "end 1 Ended", "begin 1 2003600"));
}

TEST_F(SeriesTest, FollowsTheTitleThatTheGuideMarks) {
    useShows({{eight, "Pilot", "Soap"}, {eight + hour, "Pilot", ""}, {eight + 2 * hour, "Wedding", "Soap"}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_EQ(bookedAt(eight + 2 * hour), uid);
    EXPECT_EQ(titleOf(entry(uid)), "Wedding");
    EXPECT_EQ(entry(uid).Duration(), hour);
}

TEST_F(SeriesTest, StaysASeriesWhileItIsShownAsRecording) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_SERIES);
    checkAt(eight);
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_RECORDING);
    EXPECT_TRUE(store().UpdateRemindItemByUid(uid, entry(uid), 0, 1));
    checkAt(eight + 1);
    EXPECT_THAT(recorder_.calls, SizeIs(1));
    restart();
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_SERIES);
    checkAt(eight + hour);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2003600"));
}

TEST_F(SeriesTest, WaitsWhereTheGuideHasNoNextProgramme) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    open();
    EXPECT_TRUE(waits(uid));
    EXPECT_EQ(shownTypeOf(uid), CReminder::RESERVE_SERIES);
    EXPECT_EQ(entry(uid).StartTime(), eight);
    EXPECT_EQ(titleOf(entry(uid)), "");
    EXPECT_EQ(bookedAt(eight), 0U);
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
    EXPECT_THAT(store().nextDue(0, 9), IsEmpty());
    EXPECT_THAT(overlapping(manualEntry(eight, hour)), IsEmpty());
    store().removeEnded(eight + 1'000 * hour);
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
}

TEST_F(SeriesTest, GoesOnFromWaitingWhenAReloadBringsAProgramme) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    reload({{eight, "Soap", ""}, {eight + 30 * hour, "News", ""}});
    EXPECT_TRUE(waits(uid));
    reload({{eight, "Soap", ""}, {eight + 30 * hour, "Soap", ""}});
    EXPECT_FALSE(waits(uid));
    EXPECT_EQ(bookedAt(eight + 30 * hour), uid);
    EXPECT_EQ(titleOf(entry(uid)), "Soap");
    restart();
    checkAt(eight + 30 * hour);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2108000"));
}

TEST_F(SeriesTest, StillWaitsWhenItIsHandedBackAsItWasRead) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight + hour);
    ASSERT_TRUE(waits(uid));
    EXPECT_TRUE(store().UpdateRemindItemByUid(uid, entry(uid), 0, 1));
    open();
    EXPECT_TRUE(waits(uid));
    EXPECT_EQ(store().find(uid)->seriesTitle, "Soap");
}

TEST_F(SeriesTest, IsRemovedByTheUserWhileItWaitsToo) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight + hour);
    EXPECT_NE(store().UserDeleteRemindItemByUid(uid), 0);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(SeriesTest, GoesToAnotherProgrammeWhenTheUserEndsOne) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    clock_.setNow(eight + 1);
    EXPECT_TRUE(store().endOccurrence(uid, eight));
    EXPECT_EQ(entry(uid).StartTime(), eight + hour);
    store().followGuide(eight + 2);
    restart();
    checkAt(eight + 3);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    clock_.setNow(eight + hour + 1);
    EXPECT_TRUE(store().endOccurrence(uid, eight + hour));
    EXPECT_TRUE(waits(uid));
    store().followGuide(eight + hour + 2);
    EXPECT_TRUE(waits(uid));
}

TEST_F(SeriesTest, GoesOnAlsoAfterAProgrammeThatWasNotRecorded) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    recorder_.refused = {uid};
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000", "begin 1 2003600"));
}

TEST_F(SeriesTest, RecordsNoProgrammeTwiceWhenTheClockGoesBack) {
    useShows({{eight, "Soap", ""}, {eight + 5 * hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    checkAt(eight - hour);
    store().followGuide(eight - hour);
    EXPECT_EQ(entry(uid).StartTime(), eight + 5 * hour);
    restart();
    clock_.setNow(eight - hour);
    store().followGuide(eight - hour);
    EXPECT_EQ(entry(uid).StartTime(), eight + 5 * hour);
}

TEST_F(SeriesTest, DoesNotGoBackToAProgrammeThatCameDueWhenTheClockGoesBack) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    recorder_.refused = {uid};
    checkAt(eight);
    checkAt(eight + hour);
    checkAt(eight - hour);
    store().followGuide(eight - hour);
    EXPECT_TRUE(waits(uid));
}

TEST_F(SeriesTest, RecordsNoProgrammeTwiceThatTheGuideMovesMeanwhile) {
    useShows({{eight, "Soap", ""}, {eight + 5 * hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    clock_.setNow(eight + 60);
    reload({{eight + 600, "Soap", ""}, {eight + 5 * hour, "Soap", ""}});
    EXPECT_EQ(entry(uid).StartTime(), eight);  // runs on
    EXPECT_TRUE(store().endOccurrence(uid, eight));
    EXPECT_EQ(entry(uid).StartTime(), eight + 5 * hour);
}

TEST_F(SeriesTest, RecordsNoProgrammeThatWasRecordedAlone) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}, {eight + 2 * hour, "Soap", ""}});
    book(eight + hour, CReminder::RESERVE_RECORD);
    checkAt(eight + hour);
    checkAt(eight + 2 * hour);
    checkAt(eight - hour);  // the clock goes back
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_EQ(entry(uid).StartTime(), eight + 2 * hour);
}

TEST_F(SeriesTest, LeavesOutAProgrammeThatAnotherEntryOverlapsAndSaysSoOnce) {
    const std::vector<Show> shows{
        {eight, "Soap", ""}, {eight + 2 * hour, "Soap", ""}, {eight + 4 * hour, "Soap", ""}};
    useShows(shows);
    const unsigned long uid = book(eight);
    const unsigned long other = add(manualEntry(eight + 3 * hour - 1, 60, CReminder::RESERVE_VIEW));
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_EQ(entry(uid).StartTime(), eight + 4 * hour);
    reload(shows);
    EXPECT_EQ(entry(uid).StartTime(), eight + 4 * hour);
    EXPECT_THAT(log_.messagesOf("set/reminders"),
                ElementsAre(AllOf(HasSubstr("Series 1 leaves out \"Soap\" of 1970-01-24T05:33:20Z"),
                                  HasSubstr("reminder " + std::to_string(other)))));
}

TEST_F(SeriesTest, LeavesProgrammesThatTouchAnotherEntry) {
    useShows({{eight, "Soap", ""}, {eight + 2 * hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    add(manualEntry(eight + hour, hour));
    add(manualEntry(eight + 3 * hour, hour));
    checkAt(eight + hour);
    EXPECT_EQ(entry(uid).StartTime(), eight + 2 * hour);
}

TEST_F(SeriesTest, DoesNotTakeAProgrammeOfAnotherEntryOfTheSameSeries) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}, {eight + 2 * hour, "Soap", ""}});
    const unsigned long first = book(eight);
    const unsigned long second = book(eight + hour);
    checkAt(eight);
    checkAt(eight + hour - 1);
    store().removeEnded(eight + hour);
    EXPECT_EQ(entry(first).StartTime(), eight + 2 * hour);
    EXPECT_EQ(entry(second).StartTime(), eight + hour);
}

TEST_F(SeriesTest, LeavesOutAProgrammeThatOverlapsOneThatAnotherSeriesGoesToAtTheSameTime) {
    useShows({{eight, "Soap", ""},
              {eight, "Game", ""},
              {eight + 2 * hour, "Soap", ""},
              {eight + 2 * hour + 60, "Game", ""},
              {eight + 9 * hour, "Game", ""}});
    const unsigned long soap = book(eight);
    CRemindInfo info = entry(soap);
    info.SetTitle({0x4700, 0x6100, 0x6D00, 0x6500});  // "Game"
    info.SetEventId(0);
    const unsigned long game = add(info);
    ASSERT_EQ(store().find(game)->seriesTitle, "Game");
    checkAt(eight + hour);
    EXPECT_EQ(entry(soap).StartTime(), eight + 2 * hour);
    EXPECT_EQ(entry(game).StartTime(), eight + 9 * hour);
}

TEST_F(SeriesTest, FollowsItsProgrammeToWhereAnotherSeriesWasBeforeTheSameReload) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Game", ""}});
    const unsigned long soap = book(eight);
    const unsigned long game = book(eight + hour);
    reload({{eight + 1800, "Soap", ""}, {eight + hour + 1800, "Game", ""}});
    EXPECT_EQ(entry(soap).StartTime(), eight + 1800);
    EXPECT_EQ(entry(game).StartTime(), eight + hour + 1800);
}

TEST_F(SeriesTest, FollowsItsProgrammeWhenAReloadMovesIt) {
    useShows({{eight, "Soap", ""}, {eight + 5 * hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    reload({{eight + 600, "Soap", ""}, {eight + 5 * hour, "Soap", ""}});
    EXPECT_EQ(bookedAt(eight + 600), uid);
}

TEST_F(SeriesTest, StaysAtTheProgrammeThatTheUserChose) {
    useShows({{eight + 5 * hour, "Soap", ""}});
    const unsigned long uid = book(eight + 5 * hour);
    reload({{eight, "Soap", ""}, {eight + 5 * hour, "Soap", "", eight + 7 * hour}});
    EXPECT_EQ(bookedAt(eight + 5 * hour), uid);
    EXPECT_EQ(entry(uid).Duration(), 2 * hour);
}

TEST_F(SeriesTest, GoesToAnEarlierProgrammeOnceItHasBegunItsSeries) {
    useShows({{eight, "Soap", ""}, {eight + 9 * hour, "Soap", ""}});
    const unsigned long uid = book(eight);
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_EQ(bookedAt(eight + 9 * hour), uid);
    reload({{eight, "Soap", ""}, {eight + 5 * hour, "Soap", ""}, {eight + 9 * hour, "Soap", ""}});
    EXPECT_EQ(bookedAt(eight + 5 * hour), uid);
}

TEST_F(SeriesTest, StaysWhereItIsWhenAReloadHasNoProgrammeForIt) {
    useShows({{eight, "Soap", ""}});
    const unsigned long uid = book(eight);
    reload({});
    EXPECT_EQ(entry(uid).StartTime(), eight);
    useGuide(nullptr);  // not even its channel
    store().followGuide(clock_.now());
    EXPECT_EQ(entry(uid).StartTime(), eight);
    checkAt(eight);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 2000000"));
}

TEST_F(SeriesTest, IsToldAsChangedWhenItGoesOn) {
    useShows({{eight, "Soap", ""}, {eight + hour, "Soap", ""}});
    book(eight);
    store().followGuide(clock_.now());
    store().removeEnded(eight + hour);
    EXPECT_THAT(published(), ElementsAre("schedule-added /ws/epg2/schedules/sch_id_1",
                                         "schedule-changed /ws/epg2/schedules/sch_id_1"));
}

TEST_F(SeriesTest, IsRemovedAtItsEndWhereItHasNoTitle) {
    add(manualEntry(eight, hour, CReminder::RESERVE_SERIES));
    checkAt(eight + hour);
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(SeriesTest, ForgetsWhatWasRecordedTwoMonthsAgo) {
    constexpr std::uint32_t month = 30 * 24 * hour;
    useShows({{eight, "Soap", ""}, {eight + 3 * month, "Soap", ""}});
    book(eight);
    const auto remembered = [this] {
        OwnStatement statement(store().file().database(), "SELECT count(*) FROM recorded");
        statement.step();
        return statement.integer(0);
    };
    checkAt(eight);
    checkAt(eight + hour);
    EXPECT_EQ(remembered(), 1);
    checkAt(eight + 3 * month);
    EXPECT_EQ(remembered(), 1);
    restart();
    EXPECT_EQ(remembered(), 1);
}

}  // namespace
}  // namespace epgset
