#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "host/AppTV.h"
#include "tests/set/middleware/GuideInUse.h"

namespace epgset {
namespace {

/// `size` channels, each with `size` programmes.
std::shared_ptr<const Guide> squareGuide(int size) {
    GuideBuilder builder;
    for (int number = 1; number <= size; ++number) {
        const auto channel = builder.addChannel(makeChannel(0, static_cast<std::int16_t>(number), 0));
        for (int hour = 0; hour < size; ++hour) {
            const auto start = static_cast<std::uint32_t>(hour * 3600);
            addProgramme(builder, channel, start, start + 3600);
        }
    }
    return builder.finish();
}

/// Walks every programme of the line-up once and answers how many there were.
int walk() {
    TCChannel pattern;
    pattern.SetType(airSource);
    TCObjectSortedList keys;
    int count = 0;
    g_pAppTV->GetChannelKeyList(&keys, &pattern, &count);
    int programmes = 0;
    for (bool more = keys.Seek(TCObjectSortedList::First, 0); more;
         more = keys.Seek(TCObjectSortedList::Current, 1)) {
        TCChannel channel;
        if (!g_pAppTV->ExistChannel(keys.Data(), &channel, 0)) continue;
        CCSortedList list;
        g_pAppTV->GetProgramList(&list, &channel, 0, 4294967295LL);
        for (bool next = list.Seek(CCSortedList::First, 0); next;
             next = list.Seek(CCSortedList::Current, 1)) {
            EXPECT_EQ(list.Data()->EndTime() - list.Data()->StartTime(), 3600U);
            EXPECT_GT(list.Data()->TitleLength(), 0);
            ++programmes;
        }
    }
    return programmes;
}

TEST(GuideSwap, LeavesThoseAloneThatWalkTheOldGuide) {
    const GuideInUse use(squareGuide(3));
    std::atomic<int> walking{3};
    std::vector<std::thread> walkers;
    for (int number = 0; number < 3; ++number) {
        walkers.emplace_back([&walking] {
            for (int round = 0; round < 150; ++round) {
                const int programmes = walk();
                EXPECT_GE(programmes, 3 * 3);
                EXPECT_LE(programmes, 8 * 8);
            }
            --walking;
        });
    }
    for (int size = 3; walking > 0; size = size == 8 ? 3 : size + 1)
        useGuide(squareGuide(size));
    for (std::thread& walker : walkers)
        walker.join();
}

}  // namespace
}  // namespace epgset
