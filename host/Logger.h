// Named loggers with printf-style messages.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "host/Export.h"

namespace Container {

/// One argument of a log message, with its type kept beside it, so that a format can never read it
/// as something that it is not. Texts are borrowed for the length of the call.
struct LogArgument {
    enum class Kind { Signed, Unsigned, Floating, Text, Character, Pointer };

    template <typename T>
    LogArgument(const T& value) {  // NOLINT: converts on purpose, one argument at a time
        using Plain = std::decay_t<T>;
        if constexpr (std::is_same_v<Plain, char>) {
            kind = Kind::Character;
            integer = static_cast<unsigned char>(value);
            bytes = 1;
        } else if constexpr (std::is_enum_v<Plain>) {
            kind = Kind::Signed;
            integer = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
            bytes = sizeof(Plain);
        } else if constexpr (std::is_integral_v<Plain>) {
            kind = std::is_signed_v<Plain> ? Kind::Signed : Kind::Unsigned;
            integer = static_cast<std::uint64_t>(value);
            bytes = sizeof(Plain);
        } else if constexpr (std::is_floating_point_v<Plain>) {
            kind = Kind::Floating;
            floating = static_cast<double>(value);
        } else if constexpr (std::is_same_v<Plain, std::string>) {
            kind = Kind::Text;
            text = value.c_str();
        } else if constexpr (std::is_convertible_v<T, const char*>) {
            kind = Kind::Text;
            text = value;
        } else {
            static_assert(std::is_pointer_v<Plain>, "a log message takes numbers, texts and pointers");
            kind = Kind::Pointer;
            pointer = value;
        }
    }

    Kind kind;
    std::size_t bytes = 0;  ///< width of the integer as it was passed: 1, 2, 4 or 8
    union {
        std::uint64_t integer;  ///< Signed values are sign-extended
        double floating;
        const char* text;  ///< may be null, which prints as "(null)"
        const void* pointer;
    };
};

/// A named logger, a cheap handle that may be copied; used by any thread.
///
/// The four level operations take a printf-style format and its arguments and are harmless whatever
/// the format holds: arguments keep their types, a message that cannot be formatted (an argument
/// missing or of another kind, "%n", a giant width) is logged as it stands, and control characters
/// come out escaped. A line break at the end of a message ends the line and is not part of it.
class HOST_API Logger {
public:
    enum Level { Trace = 0, Debug = 1, Warning = 2, Error = 3, Off = 4 };

    /// The logger of the given name; the same name gives the same logger.
    static Logger logger(const std::string& name);

    template <typename... Arguments>
    void trace(const char* format, const Arguments&... arguments) const {
        log(Trace, format, arguments...);
    }
    template <typename... Arguments>
    void debug(const char* format, const Arguments&... arguments) const {
        log(Debug, format, arguments...);
    }
    template <typename... Arguments>
    void warning(const char* format, const Arguments&... arguments) const {
        log(Warning, format, arguments...);
    }
    template <typename... Arguments>
    void error(const char* format, const Arguments&... arguments) const {
        log(Error, format, arguments...);
    }

    /// Whether messages of `level` (0 is trace) are written at all.
    bool isLevelEnabled(int level) const { return level >= s_threshold.load(std::memory_order_relaxed); }

    bool isTraceEnabled() const { return isLevelEnabled(Trace); }

private:
    explicit Logger(const std::string* name) : m_name(name) {}

    template <typename... Arguments>
    void log(Level level, const char* format, const Arguments&... arguments) const {
        if (!isLevelEnabled(level)) return;
        if constexpr (sizeof...(Arguments) == 0) {
            write(level, format, nullptr, 0);
        } else {
            const LogArgument list[] = {LogArgument(arguments)...};
            write(level, format, list, sizeof...(Arguments));
        }
    }

    /// Formats and writes one message. A null format is logged as "(null)".
    void write(Level level, const char* format, const LogArgument* arguments, std::size_t count) const;

    /// The lowest level that is written; set by the host.
    static std::atomic<int> s_threshold;

    friend class LogControl;

    const std::string* m_name;  ///< owned by the host's list of names, which outlives every logger
};

}  // namespace Container
