// A recording of ten minutes from a source that does not hold, with all clocks sixty times as fast.
#include <iostream>
#include <numeric>

#include "set/recorder/Recorder.h"
#include "tests/set/recorder/RecorderFixture.h"

namespace epgset {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int speed = 60;

/// What so much time of the stream takes in the test.
constexpr milliseconds sped(milliseconds time) {
    return time / speed;
}

class FastClock : public Clock {
public:
    std::int64_t now() const override {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - began_;
        return evening + static_cast<std::int64_t>(passed.count() * speed);
    }
    int zoneMinutes() const override { return 0; }
    bool daylightSaving() const override { return false; }

private:
    const std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
};

using RecorderLongTest = RecorderTest;

TEST_F(RecorderLongTest, HoldsEveryByteOfASourceThatDropsEverySevenSeconds) {
    constexpr std::uint64_t bytesPerSecond = 50'000;  // of the stream
    const RecordingTimes times;
    settings_.times.firstPause = sped(times.firstPause);
    settings_.times.longestPause = sped(times.longestPause);
    settings_.times.sync = sped(times.sync);
    settings_.times.note = sped(times.note);
    server_.sendBytesPerSecond(bytesPerSecond * speed);
    server_.dropEvery(sped(seconds(7)));
    const FastClock clock;
    useClock(&clock);
    RecordingOrder tenMinutes = order(17, server_.url());
    tenMinutes.end = tenMinutes.start + 600;
    ASSERT_TRUE(recorder().begin(tenMinutes));
    ASSERT_TRUE(isOver(17));
    recorder_.reset();
    useClock(&clock_);

    const auto runs = server_.sent();
    const std::uint64_t sent =
        std::accumulate(runs.begin(), runs.end(), std::uint64_t{0},
                        [](std::uint64_t sum, const auto& run) { return sum + run.bytes; });
    const Note told(note(17));
    EXPECT_EQ(told.state(), "ended");
    EXPECT_EQ(told.number("bytes"), std::filesystem::file_size(stream(17)));
    EXPECT_TRUE(holdsWhatWasSent(stream(17), runs));
    EXPECT_GE(runs.size(), 20U);  // some seventy, fewer on a slow machine
    EXPECT_GE(told.number("breaks") + 1, runs.size());
    std::cout << "figure: ten minutes of a stream that drops every 7 s: " << runs.size() << " connections, "
              << sent << " bytes sent, " << told.number("bytes") << " in the file, all in order\n";
}

}  // namespace
}  // namespace epgset
