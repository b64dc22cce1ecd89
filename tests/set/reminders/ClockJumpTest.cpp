// Clocks that are put wrong by an hour or a year, and right again.
#include <algorithm>
#include <string>

#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/DueRemindersFixture.h"

namespace epgset {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr std::uint32_t hour = 3'600;
constexpr std::uint32_t week = 7 * 86'400;
constexpr std::uint32_t year = 365 * 86'400;

constexpr std::uint32_t noon = 1'787'486'400;     // 2026-08-23T12:00:00Z, a Sunday
constexpr std::uint32_t entryStart = noon + 600;  // of all entries
constexpr std::uint32_t entryEnd = entryStart + 300;
constexpr int onSundays = 1;

/// A view, a recording, and one that is repeated on Sundays, all from 12:10 to 12:15. The parameter is by how
/// much the clock jumps.
class ClockJumpTest : public DueRemindersFixture, public ::testing::WithParamInterface<std::uint32_t> {
protected:
    ClockJumpTest() {
        GuideBuilder builder;
        for (const auto major : {std::int16_t{7}, std::int16_t{8}})
            builder.addChannel(makeChannel(0, major, 0));
        useGuide(builder.finish());
        clock_.setNow(noon);
        CRemindInfo view = manualEntry(entryStart, entryEnd - entryStart, CReminder::RESERVE_VIEW);
        view.Set(8, 0, 0, Air, 0);
        view_ = add(view);
        record_ = add(manualEntry(entryStart, entryEnd - entryStart));
        CRemindInfo weekly = manualEntry(entryStart, entryEnd - entryStart);
        weekly.SetRepeat(CReminder::REPEAT_MANUAL, onSundays);
        weekly_ = add(weekly);
        checkAt(noon);
    }

    void checkEachSecond(std::uint32_t from, std::uint32_t to) {
        for (std::uint32_t now = from; now <= to; ++now)
            checkAt(now);
    }

    static std::string begin(unsigned long uid, std::uint32_t at) {
        return "begin " + std::to_string(uid) + " " + std::to_string(at);
    }
    static std::string ended(unsigned long uid) { return "end " + std::to_string(uid) + " Ended"; }

    /// How often an entry came due.
    long timesDue(unsigned long uid) const {
        const auto lines = published();
        return std::ranges::count(lines, "schedule-due /ws/epg2/schedules/sch_id_" + std::to_string(uid));
    }

    /// That each entry came due this often.
    void expectEachDue(long times) const {
        for (const unsigned long uid : {view_, record_, weekly_})
            EXPECT_EQ(timesDue(uid), times) << uid;
    }

    /// The first time of the weekly entry that has not ended.
    static std::uint32_t sundayFrom(std::uint32_t now) {
        std::uint32_t sunday = entryStart;
        while (sunday + (entryEnd - entryStart) <= now)
            sunday += week;
        return sunday;
    }

    const ProcessZone zone_{"UTC"};
    unsigned long view_ = 0;
    unsigned long record_ = 0;
    unsigned long weekly_ = 0;
};

TEST_P(ClockJumpTest, ForwardOverWhatIsToComeMissesItWithAWordAndKeepsWhatRepeats) {
    const std::uint32_t late = noon + GetParam();
    checkAt(late);
    expectEachDue(0);
    EXPECT_THAT(recorder_.calls, IsEmpty());
    EXPECT_THAT(log_.messagesOf("set/reminders"), SizeIs(3));
    EXPECT_THAT(log_.messagesOf("set/reminders"), Each(HasSubstr("passed over it")));
    EXPECT_THAT(uidsOf(all()), ElementsAre(weekly_));
    const std::uint32_t next = sundayFrom(late);
    EXPECT_EQ(entry(weekly_).StartTime(), next);
    checkEachSecond(next - 10, next + (entryEnd - entryStart) + 10);
    EXPECT_THAT(recorder_.calls, ElementsAre(begin(weekly_, next), ended(weekly_)));
    EXPECT_EQ(entry(weekly_).StartTime(), next + week);
}

TEST_P(ClockJumpTest, ForwardAndRightAgainBringsNothingTwice) {
    checkEachSecond(entryStart, entryStart + 10);
    checkAt(entryStart + 10 + GetParam());
    EXPECT_THAT(recorder_.calls, UnorderedElementsAre(begin(record_, entryStart), begin(weekly_, entryStart),
                                                      ended(record_), ended(weekly_)));
    checkEachSecond(entryStart + 12, entryEnd + 10);
    expectEachDue(1);
    EXPECT_EQ(recorder_.calls.size(), 4U);
    EXPECT_THAT(uidsOf(all()), ElementsAre(weekly_));
    EXPECT_EQ(entry(weekly_).StartTime(), sundayFrom(entryStart + 10 + GetParam()));
}

TEST_P(ClockJumpTest, BackLeavesWhatIsToComeAtItsTime) {
    checkAt(noon - GetParam());
    const std::uint32_t sunday = entryStart - (GetParam() / week) * week;  // by the clock as it is now
    if (sunday != entryStart) checkEachSecond(sunday, sunday + 10);
    expectEachDue(0);
    EXPECT_THAT(uidsOf(all()), UnorderedElementsAre(view_, record_, weekly_));
    for (const unsigned long uid : {view_, record_, weekly_})
        EXPECT_EQ(entry(uid).StartTime(), entryStart);

    checkEachSecond(noon, entryEnd + 10);  // right again, or gone on until then
    expectEachDue(1);
    EXPECT_THAT(recorder_.calls, UnorderedElementsAre(begin(record_, entryStart), begin(weekly_, entryStart),
                                                      ended(record_), ended(weekly_)));
    EXPECT_EQ(window_.channel()->major, 8);
    EXPECT_EQ(entry(weekly_).StartTime(), entryStart + week);
}

TEST_P(ClockJumpTest, BackWhileTheyAreDueBringsNothingTwice) {
    checkEachSecond(entryStart, entryStart + 10);
    window_.ChangeChannel(7, 0);
    checkAt(entryStart + 10 - GetParam());
    EXPECT_THAT(log_.messagesOf("set/reminders"),
                ElementsAre(HasSubstr("went back by " + std::to_string(GetParam()) + " s")));
    EXPECT_EQ(shownTypeOf(record_), CReminder::RESERVE_RECORDING);
    EXPECT_EQ(shownTypeOf(weekly_), CReminder::RESERVE_RECORDING);
    checkEachSecond(entryStart - 10, entryEnd + 10);
    expectEachDue(1);
    EXPECT_EQ(window_.channel()->major, 7);
    EXPECT_THAT(recorder_.calls, UnorderedElementsAre(begin(record_, entryStart), begin(weekly_, entryStart),
                                                      ended(record_), ended(weekly_)));
    EXPECT_EQ(entry(weekly_).StartTime(), entryStart + week);
}

TEST_P(ClockJumpTest, BackBehindTheirEndBringsNothingAgain) {
    checkEachSecond(entryStart, entryEnd);
    checkAt(entryEnd - GetParam());
    checkEachSecond(entryStart - 10, entryEnd + 10);
    expectEachDue(1);
    EXPECT_EQ(recorder_.calls.size(), 4U);
    EXPECT_THAT(uidsOf(all()), ElementsAre(weekly_));
    EXPECT_EQ(entry(weekly_).StartTime(), entryStart + week);
}

INSTANTIATE_TEST_SUITE_P(AnHourAndAYear, ClockJumpTest, ::testing::Values(hour, year));

}  // namespace
}  // namespace epgset
