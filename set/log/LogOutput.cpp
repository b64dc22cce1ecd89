#include "set/log/LogOutput.h"

#include <fmt/format.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>

#include "set/log/LogEscape.h"

using Container::Logger;

namespace epgset {
namespace {

constexpr const char* linePattern = "%Y-%m-%dT%H:%M:%S.%eZ %l %n: %v";
constexpr std::size_t timeLength = 24;

spdlog::level::level_enum spdlogLevel(Logger::Level level) {
    switch (level) {
        case Logger::Trace:
            return spdlog::level::trace;
        case Logger::Debug:
            return spdlog::level::debug;
        case Logger::Warning:
            return spdlog::level::warn;
        case Logger::Error:
        case Logger::Off:
            break;
    }
    return spdlog::level::err;
}

}  // namespace

LogOutput::LogOutput()
    : formatter_(
          std::make_unique<spdlog::pattern_formatter>(linePattern, spdlog::pattern_time_type::utc, "\n")) {}

LogOutput::~LogOutput() = default;

void LogOutput::write(Logger::Level level, std::string_view logger, std::string_view message) {
    const std::lock_guard lock(mutex_);
    const bool limited = level >= Logger::Warning;
    if (limited && !limit_.admit(std::chrono::steady_clock::now())) return;
    if (untaken_ > 0) tellDropped();
    if (limited) {
        const std::uint64_t dropped = limit_.takeDropped();
        if (dropped > 0 && !writeLine(Logger::Warning, "set/log",
                                      fmt::format("{} warnings and errors were dropped", dropped)))
            untaken_ += dropped;
    }
    if (!writeLine(level, logger, message)) ++untaken_;
}

void LogOutput::tellDropped() {
    if (writeLine(Logger::Warning, "set/log",
                  fmt::format("{} lines were dropped that standard error did not take", untaken_)))
        untaken_ = 0;
}

bool LogOutput::writeLine(Logger::Level level, std::string_view logger, std::string_view message) {
    const spdlog::level::level_enum shownLevel = spdlogLevel(level);
    const std::string_view word(spdlog::level::to_string_view(shownLevel).data(),
                                spdlog::level::to_string_view(shownLevel).size());
    const std::size_t around = timeLength + word.size() + logger.size() + std::string_view("  : \n").size();
    const std::string text = escapedLogLine(message, around < maxLogLine ? maxLogLine - around : 0);
    spdlog::memory_buf_t line;
    formatter_->format(spdlog::details::log_msg(spdlog::string_view_t(logger.data(), logger.size()),
                                                shownLevel, spdlog::string_view_t(text.data(), text.size())),
                       line);
    return stream_.write({line.data(), line.size()});
}

}  // namespace epgset
