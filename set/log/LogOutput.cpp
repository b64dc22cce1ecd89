#include "set/log/LogOutput.h"

#include <fmt/format.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/stdout_sinks.h>

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

LogOutput::LogOutput() : sink_(std::make_unique<spdlog::sinks::stderr_sink_mt>()) {
    sink_->set_level(spdlog::level::trace);
    sink_->set_formatter(
        std::make_unique<spdlog::pattern_formatter>(linePattern, spdlog::pattern_time_type::utc, "\n"));
}

LogOutput::~LogOutput() = default;

void LogOutput::write(Logger::Level level, std::string_view logger, std::string_view message) {
    std::uint64_t dropped = 0;
    if (level >= Logger::Warning) {
        const std::lock_guard lock(mutex_);
        if (!limit_.admit(std::chrono::steady_clock::now())) return;
        dropped = limit_.takeDropped();
    }
    if (dropped > 0)
        writeLine(Logger::Warning, "set/log", fmt::format("{} warnings and errors were dropped", dropped));
    writeLine(level, logger, message);
}

void LogOutput::writeLine(Logger::Level level, std::string_view logger, std::string_view message) {
    const spdlog::level::level_enum shownLevel = spdlogLevel(level);
    const std::string_view word(spdlog::level::to_string_view(shownLevel).data(),
                                spdlog::level::to_string_view(shownLevel).size());
    const std::size_t around = timeLength + word.size() + logger.size() + std::string_view("  : \n").size();
    const std::string text = escapedLogLine(message, around < maxLogLine ? maxLogLine - around : 0);
    sink_->log(spdlog::details::log_msg(spdlog::string_view_t(logger.data(), logger.size()), shownLevel,
                                        spdlog::string_view_t(text.data(), text.size())));
}

}  // namespace epgset
