// Printf-style formatting of log messages from typed arguments.
#pragma once

#include <cstddef>
#include <string>

#include "host/Logger.h"

namespace epgset {

/// Largest width and precision that a directive of a log format may ask for.
constexpr int maxLogFieldWidth = 4096;

/// The message that `format` and its `count` arguments make. A format that does not fit them comes
/// back as it stands: one with an argument missing or of another kind, with "%n" or an unknown
/// directive, a "*" or "$", or a width or precision above maxLogFieldWidth. Arguments left over are
/// ignored. An integer is printed by its own width; a null text prints as "(null)", and so does a null
/// format.
std::string formatLogMessage(const char* format, const Container::LogArgument* arguments, std::size_t count);

}  // namespace epgset
