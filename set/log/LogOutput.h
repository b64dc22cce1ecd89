// Writes log lines to standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>

#include "host/Logger.h"
#include "set/log/ErrorStream.h"
#include "set/log/RateLimit.h"

namespace spdlog {
class formatter;
}

namespace epgset {

/// Longest line, its line break included, in bytes.
constexpr std::size_t maxLogLine = 8192;

/// Writes one line a message, `TIME LEVEL LOGGER: MESSAGE`, each with a single write. Warnings and
/// errors are limited to a burst of 1000 and 100 a second after it; a line of its own tells how many
/// were dropped. Who logs is not held up by who reads (ErrorStream): a line that standard error does not take
/// now is dropped too, and told in the same way once it takes lines again. Used by any thread.
class LogOutput {
public:
    LogOutput();
    ~LogOutput();

    void write(Container::Logger::Level level, std::string_view logger, std::string_view message);

private:
    bool writeLine(Container::Logger::Level level, std::string_view logger, std::string_view message);
    void tellDropped();

    std::mutex mutex_;  ///< guards what follows
    std::unique_ptr<spdlog::formatter> formatter_;
    ErrorStream stream_;
    RateLimit limit_{1000, 100};
    std::uint64_t untaken_ = 0;  ///< lines that standard error did not take and nobody was told of
};

}  // namespace epgset
