// Collects log messages, for tests.
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "set/log/LogControl.h"

namespace epgset {

/// While it lives, all messages from `level` on are collected and nothing is written to standard error.
/// One at a time; messages may come from any thread.
class LogCapture {
public:
    explicit LogCapture(Container::Logger::Level level = Container::Logger::Trace);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Everything collected so far, in order.
    std::vector<LogRecord> records() const;

    /// The messages of one logger, in order.
    std::vector<std::string> messagesOf(std::string_view logger) const;

    /// The messages of one logger at one level, in order.
    std::vector<std::string> messagesOf(std::string_view logger, Container::Logger::Level level) const;

    void clear();

private:
    Container::Logger::Level levelBefore_;
    mutable std::mutex mutex_;
    std::vector<LogRecord> records_;
};

}  // namespace epgset
