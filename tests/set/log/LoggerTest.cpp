#include "host/Logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "set/log/LogCapture.h"
#include "set/log/LogControl.h"

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace epgset {
namespace {

// As plug-ins do: a logger that is made during static initialisation.
const Logger staticLogger = Logger::logger("tests/static");

TEST(Logger, MayBeAStaticObject) {
    LogCapture capture;
    staticLogger.error("made early\n");
    EXPECT_THAT(capture.messagesOf("tests/static"), ElementsAre("made early\n"));
}

TEST(Logger, LogsAtFourLevels) {
    LogCapture capture;
    const Logger logger = Logger::logger("tests/levels");
    logger.trace("a %d", 1);
    logger.debug("b %s", "two");
    logger.warning("c");
    logger.error("");
    EXPECT_THAT(capture.messagesOf("tests/levels"), ElementsAre("a 1", "b two", "c", ""));
    EXPECT_THAT(capture.messagesOf("tests/levels", Logger::Trace), ElementsAre("a 1"));
    EXPECT_THAT(capture.messagesOf("tests/levels", Logger::Debug), ElementsAre("b two"));
    EXPECT_THAT(capture.messagesOf("tests/levels", Logger::Warning), ElementsAre("c"));
    EXPECT_THAT(capture.messagesOf("tests/levels", Logger::Error), ElementsAre(""));
}

TEST(Logger, LogsNothingBelowTheLevel) {
    LogCapture capture(Logger::Warning);
    const Logger logger = Logger::logger("tests/threshold");
    EXPECT_FALSE(logger.isTraceEnabled());
    EXPECT_FALSE(logger.isLevelEnabled(Logger::Debug));
    EXPECT_TRUE(logger.isLevelEnabled(Logger::Warning));
    logger.trace("no");
    logger.debug("no");
    logger.warning("yes");
    EXPECT_THAT(capture.messagesOf("tests/threshold"), ElementsAre("yes"));

    LogControl::setLevel(Logger::Off);
    logger.error("no");
    EXPECT_EQ(capture.records().size(), 1u);
}

TEST(Logger, TakesAClientsTextAsItsFormatWithoutHarm) {
    LogCapture capture;
    const Logger logger = Logger::logger("tests/client");
    for (const char* text : {"%n%n%n", "%s%s%s", "%999999999d", "%*c", "100%"})
        logger.debug(text);
    EXPECT_THAT(capture.messagesOf("tests/client"),
                ElementsAre("%n%n%n", "%s%s%s", "%999999999d", "%*c", "100%"));
}

TEST(Logger, RecordsTheFormatAsItWasHandedOver) {
    LogCapture capture;
    Logger::logger("tests/format").debug("val %s\n", "x");
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_EQ(capture.records()[0].format, "val %s\n");
    EXPECT_EQ(capture.records()[0].message, "val x\n");
}

TEST(Logger, IsNotLimitedWhileItIsCaptured) {
    LogCapture capture;
    const Logger logger = Logger::logger("tests/many");
    for (int line = 0; line < 5000; ++line)
        logger.error("%d", line);
    EXPECT_EQ(capture.records().size(), 5000u);
}

TEST(Logger, MayBeUsedByManyThreads) {
    LogCapture capture;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int line = 0; line < 500; ++line)
                Logger::logger("tests/thread" + std::to_string(line % 7)).debug("%d-%d", number, line);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(capture.records().size(), 2000u);
}

TEST(LogControl, KnowsTheWordsOfTheLevels) {
    EXPECT_EQ(LogControl::levelOf("trace"), Logger::Trace);
    EXPECT_EQ(LogControl::levelOf("debug"), Logger::Debug);
    EXPECT_EQ(LogControl::levelOf("warning"), Logger::Warning);
    EXPECT_EQ(LogControl::levelOf("error"), Logger::Error);
    EXPECT_EQ(LogControl::levelOf("off"), Logger::Off);
    EXPECT_EQ(LogControl::levelOf("Warning"), std::nullopt);
    EXPECT_EQ(LogControl::levelOf(""), std::nullopt);
}

TEST(LogControl, ListsLoggersOnceInTheOrderInWhichTheyWereAskedFor) {
    Logger::logger("tests/order-b");
    Logger::logger("tests/order-a");
    Logger::logger("tests/order-b");
    std::vector<std::string> names = LogControl::loggerNames();
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("tests/order-"); });
    EXPECT_THAT(names, ElementsAre("tests/order-b", "tests/order-a"));
}

TEST(LogControl, StartsAtWarning) {
    EXPECT_EQ(LogControl::level(), Logger::Warning);
}

}  // namespace
}  // namespace epgset
