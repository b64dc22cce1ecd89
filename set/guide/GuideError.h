// What is wrong with a file that a guide is made from.
#pragma once

#include <stdexcept>
#include <string>

namespace epgset {

/// A guide or a line-up that cannot be used. what() reads "FILE:LINE: message", or "FILE: message" where no
/// line is concerned, and is one line.
class GuideError : public std::runtime_error {
public:
    /// `line` counts from 1; 0: none.
    GuideError(const std::string& file, int line, const std::string& message)
        : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + message),
          file_(file),
          line_(line),
          message_(message) {}

    const std::string& file() const { return file_; }
    int line() const { return line_; }
    const std::string& message() const { return message_; }

private:
    std::string file_;
    int line_;
    std::string message_;
};

}  // namespace epgset
