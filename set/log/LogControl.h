// What the set decides about logging: the level, and where messages go.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Logger.h"

namespace Container {

/// One message as it was logged.
struct LogRecord {
    Logger::Level level;
    std::string logger;   ///< the logger's name
    std::string format;   ///< the format as it was handed over; "(null)" for a null one
    std::string message;  ///< formatted, unescaped, with the line break that it may end in
};

/// Steers all loggers of the process. Used by any thread.
class LogControl {
public:
    LogControl() = delete;

    /// The level of a word (trace, debug, warning, error, off); nothing for another one.
    static std::optional<Logger::Level> levelOf(std::string_view word);

    /// The lowest level that is logged; Warning at first.
    static void setLevel(Logger::Level level);
    static Logger::Level level();

    /// Hands every message to `receiver` in place of standard error, before any limit; an empty one
    /// brings standard error back. It is called from the thread that logs and may log itself.
    static void capture(std::function<void(const LogRecord&)> receiver);

    /// The names of all loggers, in the order in which each was first asked for.
    static std::vector<std::string> loggerNames();
};

}  // namespace Container

namespace epgset {
using Container::LogControl;
using Container::LogRecord;
}  // namespace epgset
