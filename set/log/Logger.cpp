#include "host/Logger.h"

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "set/log/LogControl.h"
#include "set/log/LogFormat.h"
#include "set/log/LogOutput.h"

namespace Container {
namespace {

using Receiver = std::function<void(const LogRecord&)>;

/// What all loggers share. Made by the first logger, which may be a static object of a plug-in, and
/// never destroyed, since the last one may be used by the destructor of another.
struct LoggingState {
    std::mutex mutex;  ///< guards names, order and receiver
    std::set<std::string> names;
    std::vector<const std::string*> order;
    std::shared_ptr<const Receiver> receiver;  ///< null: output
    epgset::LogOutput output;
};

LoggingState& loggingState() {
    static auto* const state = new LoggingState;
    return *state;
}

}  // namespace

constinit std::atomic<int> Logger::s_threshold{Logger::Warning};

Logger Logger::logger(const std::string& name) {
    LoggingState& state = loggingState();
    const std::lock_guard lock(state.mutex);
    const auto [entry, added] = state.names.insert(name);
    if (added) state.order.push_back(&*entry);
    return Logger(&*entry);
}

void Logger::write(Level level, const char* format, const LogArgument* arguments, std::size_t count) const {
    try {
        LoggingState& state = loggingState();
        std::shared_ptr<const Receiver> receiver;
        {
            const std::lock_guard lock(state.mutex);
            receiver = state.receiver;
        }
        const std::string message = epgset::formatLogMessage(format, arguments, count);
        if (receiver) {
            (*receiver)({level, *m_name, format ? format : "(null)", message});
        } else {
            state.output.write(level, *m_name, message);
        }
    } catch (const std::exception&) {
        // Out of memory: a message is lost, but never the work of the one who logs.
    }
}

std::optional<Logger::Level> LogControl::levelOf(std::string_view word) {
    constexpr std::pair<std::string_view, Logger::Level> words[] = {{"trace", Logger::Trace},
                                                                    {"debug", Logger::Debug},
                                                                    {"warning", Logger::Warning},
                                                                    {"error", Logger::Error},
                                                                    {"off", Logger::Off}};
    for (const auto& [name, level] : words) {
        if (name == word) return level;
    }
    return std::nullopt;
}

void LogControl::setLevel(Logger::Level level) {
    Logger::s_threshold.store(level, std::memory_order_relaxed);
}

Logger::Level LogControl::level() {
    return static_cast<Logger::Level>(Logger::s_threshold.load(std::memory_order_relaxed));
}

void LogControl::capture(Receiver receiver) {
    std::shared_ptr<const Receiver> shared;
    if (receiver) shared = std::make_shared<const Receiver>(std::move(receiver));
    LoggingState& state = loggingState();
    const std::lock_guard lock(state.mutex);
    state.receiver.swap(shared);
}

std::vector<std::string> LogControl::loggerNames() {
    LoggingState& state = loggingState();
    const std::lock_guard lock(state.mutex);
    std::vector<std::string> names;
    for (const std::string* name : state.order)
        names.push_back(*name);
    return names;
}

}  // namespace Container
