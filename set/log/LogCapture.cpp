#include "set/log/LogCapture.h"

using Container::Logger;

namespace epgset {

LogCapture::LogCapture(Logger::Level level) : levelBefore_(LogControl::level()) {
    LogControl::capture([this](const LogRecord& record) {
        const std::lock_guard lock(mutex_);
        records_.push_back(record);
    });
    LogControl::setLevel(level);
}

LogCapture::~LogCapture() {
    LogControl::setLevel(levelBefore_);
    LogControl::capture(nullptr);
}

std::vector<LogRecord> LogCapture::records() const {
    const std::lock_guard lock(mutex_);
    return records_;
}

std::vector<std::string> LogCapture::messagesOf(std::string_view logger) const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> messages;
    for (const LogRecord& record : records_) {
        if (record.logger == logger) messages.push_back(record.message);
    }
    return messages;
}

std::vector<std::string> LogCapture::messagesOf(std::string_view logger, Logger::Level level) const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> messages;
    for (const LogRecord& record : records_) {
        if (record.logger == logger && record.level == level) messages.push_back(record.message);
    }
    return messages;
}

void LogCapture::clear() {
    const std::lock_guard lock(mutex_);
    records_.clear();
}

}  // namespace epgset
