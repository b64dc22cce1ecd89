#include "set/log/LogOutput.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>
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

/// Standard error as a pipe, which is read only when the test says so.
class UnreadPipe {
public:
    UnreadPipe() : before_(dup(STDERR_FILENO)) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        reader_ = ends[0];
        fcntl(reader_, F_SETFL, O_NONBLOCK);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
    }
    ~UnreadPipe() {
        dup2(before_, STDERR_FILENO);
        close(before_);
        close(reader_);
    }
    UnreadPipe(const UnreadPipe&) = delete;
    UnreadPipe& operator=(const UnreadPipe&) = delete;

    /// What it holds now.
    std::string read() const {
        std::string text;
        std::array<char, 65536> buffer{};
        for (ssize_t count = 0; (count = ::read(reader_, buffer.data(), buffer.size())) > 0;)
            text.append(buffer.data(), static_cast<std::size_t>(count));
        return text;
    }

private:
    int before_;
    int reader_ = -1;
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

TEST(LogOutput, NeverWaitsForAPipeThatNobodyReads) {
    const UnreadPipe pipe;
    LogOutput output;
    const auto begun = std::chrono::steady_clock::now();
    for (int line = 0; line < 20000; ++line)
        output.write(Logger::Debug, "a", std::string(100, 'x'));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(5));
}

TEST(LogOutput, LosesNothingToAReaderThatIsBusyForAMoment) {
    const UnreadPipe pipe;
    LogOutput output;
    std::atomic<bool> written = false;
    std::string text;
    std::thread reader([&] {
        while (!written) {
            text += pipe.read();
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        text += pipe.read();
    });
    for (int line = 0; line < 500; ++line) {
        output.write(Logger::Debug, "a", std::string(1000, 'x'));
        std::this_thread::sleep_for(std::chrono::microseconds(10));
    }
    written = true;
    reader.join();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 500);
}

TEST(LogOutput, TellsHowManyLinesAPipeDidNotTakeOnceItTakesLinesAgain) {
    constexpr int lines = 2000;
    const UnreadPipe pipe;
    LogOutput output;
    for (int line = 0; line < lines; ++line)
        output.write(Logger::Debug, "a", std::string(6000, 'x'));
    std::string text = pipe.read();
    output.write(Logger::Debug, "a", "after");
    text += pipe.read();
    output.write(Logger::Debug, "a", "last");
    text += pipe.read();

    std::istringstream stream(text);
    int whole = 0;
    int told = 0;
    std::string last;
    for (std::string line; std::getline(stream, line); last = line) {
        const std::size_t at = line.find(" warning set/log: ");
        if (at != std::string::npos)
            std::sscanf(line.c_str() + at,
                        " warning set/log: %d lines were dropped that standard error did not take", &told);
        whole += line.ends_with(std::string(6000, 'x'));
        EXPECT_THAT(line, MatchesRegex(std::string(timePattern) + "(debug|warning) .*"));
    }
    EXPECT_GT(told, 0);
    EXPECT_EQ(whole + told, lines) << "a line is whole or told of";
    EXPECT_THAT(last, testing::EndsWith(" debug a: last"));
}

TEST(LogOutput, FollowsStandardErrorToAnotherFile) {
    LogOutput output;
    const UnreadPipe first;
    output.write(Logger::Debug, "a", "one");
    EXPECT_THAT(first.read(), testing::HasSubstr("one"));
    const UnreadPipe second;
    output.write(Logger::Debug, "a", "two");
    EXPECT_THAT(second.read(), testing::HasSubstr("two"));
    EXPECT_EQ(first.read(), "");
}

TEST(LogOutput, WritesToASocket) {
    std::array<int, 2> ends{};
    ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()));
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    LogOutput output;
    for (int line = 0; line < 20000; ++line)
        output.write(Logger::Debug, "a", "line");
    dup2(before, STDERR_FILENO);
    close(before);
    close(ends[1]);
    std::string text(100, '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read(ends[0], text.data(), text.size()))));
    close(ends[0]);
    EXPECT_THAT(text, testing::HasSubstr(" debug a: line\n"));
}

}  // namespace
}  // namespace epgset
