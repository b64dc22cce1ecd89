// Guides that come through a pipe.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include "set/guide/GuideError.h"
#include "set/guide/GuideFile.h"
#include "tests/set/guide/TemporaryFolder.h"

namespace epgset {
namespace {

using namespace std::chrono_literals;

class GuidePipe : public ::testing::Test {
protected:
    GuidePipe() { EXPECT_EQ(0, ::mkfifo(pipe_.c_str(), 0600)); }

    test::TemporaryFolder folder_;
    const std::filesystem::path pipe_ = folder_.path() / "pipe";
};

TEST_F(GuidePipe, IsReadToItsEnd) {
    std::thread writer([this] {
        std::ofstream out(pipe_);
        out << "<tv>" << std::flush;
        std::this_thread::sleep_for(50ms);  // the rest may come later
        out << "</tv>";
    });
    GuideFile file(pipe_, "guide");
    std::string text;
    char buffer[4];
    for (int got = 0; (got = file.read(buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    writer.join();
    EXPECT_EQ("<tv></tv>", text);
}

TEST_F(GuidePipe, ThatNobodyWritesToIsGivenUp) {
    try {
        const GuideFile file(pipe_, "guide", 20ms);
        FAIL() << "it was opened";
    } catch (const GuideError& error) {
        EXPECT_STREQ("guide: is a pipe that nobody writes to", error.what());
    }
}

}  // namespace
}  // namespace epgset
