// Repeating entries over days.
#include <cstdio>
#include <map>
#include <utility>

#include "tests/set/middleware/ProcessZone.h"
#include "tests/set/reminders/DueRemindersFixture.h"
#include "tests/set/reminders/Times.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RepeatingOrdersTest : public DueRemindersFixture {
protected:
    static CRemindInfo repeating(std::int64_t start, std::uint32_t duration,
                                 CReminder::REMINDER_REPEAT_TYPE repeat, int days = 0) {
        CRemindInfo info = manualEntry(static_cast<std::uint32_t>(start), duration);
        info.SetRepeat(repeat, days);
        return info;
    }

    /// Runs the set's checks from `first` on, one each `step` seconds, and answers when orders began.
    std::vector<std::int64_t> begunThrough(std::int64_t first, std::int64_t last, std::int64_t step) {
        std::vector<std::int64_t> begun;
        for (std::int64_t now = first; now < last; now += step) {
            const std::size_t before = recorder_.orders.size();
            checkAt(now);
            begun.insert(begun.end(), recorder_.orders.size() - before, now);
        }
        return begun;
    }
};

TEST_F(RepeatingOrdersTest, ComeOnceADayWhereTheClockSkipsTheirTime) {
    const ProcessZone zone("Europe/Paris");
    add(repeating(march29 - day + hour + 1800, 1200, CReminder::REPEAT_EVERYDAY));  // 02:30 in Paris
    EXPECT_THAT(begunThrough(march29 - day, march29 + 2 * day, 60),
                ElementsAre(march29 - day + hour + 1800, march29 + hour + 1800,  // shown as 03:30
                            march29 + day + 1800));
}

TEST_F(RepeatingOrdersTest, ComeOnceADayWhereTheClockShowsTheirTimeTwice) {
    const ProcessZone zone("Europe/Paris");
    add(repeating(october25 - day + 1800, 1200, CReminder::REPEAT_EVERYDAY));  // 02:30 in Paris
    EXPECT_THAT(begunThrough(october25 - day, october25 + 2 * day, 60),
                ElementsAre(october25 - day + 1800, october25 + 1800, october25 + day + hour + 1800));
}

TEST_F(RepeatingOrdersTest, GoOnThroughTheChangeOfTheClock) {
    const ProcessZone zone("Europe/Paris");
    const std::uint32_t threeHours = 3 * 3'600;
    add(repeating(march29 - hour, threeHours, CReminder::REPEAT_EVERYDAY));  // 00:00 in Paris
    begunThrough(march29 - 2 * hour, march29 + 3 * hour, 60);
    EXPECT_THAT(recorder_.calls, ElementsAre("begin 1 " + std::to_string(march29 - hour), "end 1 Ended"));
    EXPECT_EQ(recorder_.orders.front().end, march29 + 2 * hour);
    EXPECT_EQ(store().find(1)->start, march29 + 22 * hour);  // 00:00 in Paris
}

TEST_F(RepeatingOrdersTest, ComeOnTheirDaysOverBothChangesOfAYear) {
    const ProcessZone zone("Europe/Paris");
    const std::int64_t march2 = march29 - 27 * day;  // a Monday
    add(repeating(march2 + 19 * hour, 1800, CReminder::REPEAT_WEEKDAYS));
    const auto begun = begunThrough(march2, march2 + 36 * 7 * day, 600);
    ASSERT_EQ(begun.size(), 36U * 5);
    for (std::size_t time = 0; time < begun.size(); ++time) {
        const auto days = static_cast<std::int64_t>(time / 5 * 7 + time % 5);
        EXPECT_EQ(wallClockAt(begun[time]), march2 + days * day + 20 * hour) << time;
    }
}

TEST_F(RepeatingOrdersTest, ComeDueOnceAtTheirTimeFiftyOfThemOverADay) {
    const ProcessZone zone("Europe/Paris");
    const std::int64_t midnight = october25 - 2 * hour - 7 * day;  // in Paris; a Sunday
    constexpr int entries = 50;
    const CReminder::REMINDER_REPEAT_TYPE repeats[] = {CReminder::REPEAT_EVERYDAY, CReminder::REPEAT_WEEKEND,
                                                       CReminder::REPEAT_MANUAL};
    std::map<unsigned long, std::int64_t> planned;
    for (int number = 0; number < entries; ++number) {
        const std::int64_t start = midnight + number * 1'727 + 1;  // spread over the day; many overlap
        CRemindInfo info = repeating(start, 3'000, repeats[number % 3], 1);
        if (number % 2 == 1) info.SetReserveType(CReminder::RESERVE_VIEW);
        planned.emplace(add(info), start);
    }

    std::map<unsigned long, std::vector<std::int64_t>> due;
    const auto before = all();
    std::uint64_t seen = events().last();
    for (std::int64_t now = midnight; now < midnight + day; ++now) {
        checkAt(now);
        const auto since = events().after(std::exchange(seen, events().last()));
        for (const Event& event : since.value()) {
            if (event.name != event::scheduleDue) continue;
            due[std::stoul(event.path.substr(event.path.rfind('_') + 1))].push_back(now);
        }
    }

    int once = 0;
    for (const auto& [uid, start] : planned) {
        EXPECT_THAT(due[uid], ElementsAre(start)) << uid;
        once += due[uid] == std::vector{start} ? 1 : 0;
    }
    EXPECT_EQ(due.size(), planned.size());
    for (const RecordingOrder& order : recorder_.orders)
        EXPECT_EQ(order.start, planned.at(order.uid));
    EXPECT_EQ(recorder_.orders.size(), entries / 2U);
    EXPECT_EQ(all().size(), before.size());
    EXPECT_THAT(log_.messagesOf("set/reminders", Container::Logger::Error), IsEmpty());
    std::printf("figure: %d of %d repeating entries came due once, at their second, in 24 simulated hours\n",
                once, entries);
}

}  // namespace
}  // namespace epgset
