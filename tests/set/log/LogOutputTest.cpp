#include "set/log/LogOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using Container::Logger;
using testing::MatchesRegex;

namespace epgset {
namespace {

/// Collects what the process writes to standard error.
class StandardError {
public:
    StandardError() : file_(std::tmpfile(), &std::fclose), before_(dup(STDERR_FILENO)) {
        dup2(fileno(file_.get()), STDERR_FILENO);
    }
    ~StandardError() { restore(); }

    std::vector<std::string> lines() {
        restore();
        std::rewind(file_.get());
        std::string text;
        for (int c = std::fgetc(file_.get()); c != EOF; c = std::fgetc(file_.get()))
            text += static_cast<char>(c);
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

private:
    void restore() {
        if (before_ < 0) return;
        dup2(before_, STDERR_FILENO);
        close(before_);
        before_ = -1;
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    int before_;
};

constexpr const char* timePattern = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z ";

TEST(LogOutput, WritesTimeLevelLoggerAndMessage) {
    StandardError captured;
    LogOutput output;
    output.write(Logger::Trace, "EpgSQLPlugin", "one\n");
    output.write(Logger::Debug, "a/b", "two");
    output.write(Logger::Warning, "a/b", "");
    output.write(Logger::Error, "a/b", "x\ny");
    const std::vector<std::string> lines = captured.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_THAT(lines[0], MatchesRegex(std::string(timePattern) + "trace EpgSQLPlugin: one"));
    EXPECT_THAT(lines[1], MatchesRegex(std::string(timePattern) + "debug a/b: two"));
    EXPECT_THAT(lines[2], MatchesRegex(std::string(timePattern) + "warning a/b: "));
    EXPECT_THAT(lines[3], MatchesRegex(std::string(timePattern) + "error a/b: x\\\\ny"));
}

TEST(LogOutput, CutsALineAtEightKibibytesBreakIncluded) {
    StandardError captured;
    LogOutput output;
    output.write(Logger::Debug, "a", std::string(20000, 'x'));
    const std::vector<std::string> lines = captured.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].size(), 8191u);
}

TEST(LogOutput, DropsAFloodOfWarningsAndTellsHowMany) {
    StandardError captured;
    LogOutput output;
    for (int line = 0; line < 3000; ++line)
        output.write(Logger::Warning, "a", "flood");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    output.write(Logger::Error, "a", "after");
    const std::vector<std::string> lines = captured.lines();
    ASSERT_GE(lines.size(), 1002u);
    EXPECT_LT(lines.size(), 2000u) << "1000 at once and 100 a second";
    EXPECT_THAT(lines.back(), testing::HasSubstr(" error a: after"));
    int told = 0;
    int written = 0;
    for (const std::string& line : lines) {
        int dropped = 0;
        const std::size_t at = line.find(" warning set/log: ");
        if (at != std::string::npos &&
            std::sscanf(line.c_str() + at, " warning set/log: %d warnings", &dropped) == 1)
            told += dropped;
        written += line.ends_with("flood");
    }
    EXPECT_EQ(told + written, 3000);
}

TEST(LogOutput, DoesNotLimitTraceAndDebug) {
    StandardError captured;
    LogOutput output;
    for (int line = 0; line < 1500; ++line) {
        output.write(Logger::Trace, "a", "t");
        output.write(Logger::Debug, "a", "d");
    }
    EXPECT_EQ(captured.lines().size(), 3000u);
}

TEST(LogOutput, KeepsLinesOfManyThreadsApart) {
    StandardError captured;
    LogOutput output;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&output, number] {
            for (int line = 0; line < 200; ++line)
                output.write(Logger::Debug, "a", std::string(300, static_cast<char>('a' + number)));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const std::vector<std::string> lines = captured.lines();
    ASSERT_EQ(lines.size(), 800u);
    for (const std::string& line : lines) {
        const std::string message = line.substr(line.size() - 300);
        ASSERT_EQ(message, std::string(300, message[0]));
    }
}

}  // namespace
}  // namespace epgset
