// Writes log lines to standard error.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string_view>

#include "host/Logger.h"
#include "set/log/RateLimit.h"

namespace spdlog::sinks {
class sink;
}

namespace epgset {

/// Longest line, its line break included, in bytes.
constexpr std::size_t maxLogLine = 8192;

/// Writes one line a message, `TIME LEVEL LOGGER: MESSAGE`, each with a single write. Warnings and
/// errors are limited to a burst of 1000 and 100 a second after it; a line of its own tells how many
/// were dropped. Used by any thread.
class LogOutput {
public:
    LogOutput();
    ~LogOutput();

    void write(Container::Logger::Level level, std::string_view logger, std::string_view message);

private:
    void writeLine(Container::Logger::Level level, std::string_view logger, std::string_view message);

    std::unique_ptr<spdlog::sinks::sink> sink_;
    std::mutex mutex_;  ///< guards limit_
    RateLimit limit_{1000, 100};
};

}  // namespace epgset
