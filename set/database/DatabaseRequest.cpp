#include "set/database/DatabaseRequest.h"

#include <exception>

#include "host/Logger.h"
#include "set/database/OpenConnections.h"

namespace epgset {
namespace {

using SteadyClock = std::chrono::steady_clock;

const Container::Logger logger = Container::Logger::logger("set/database");

struct ThreadState {
    bool inRequest = false;
    bool interruptionLogged = false;
    std::chrono::milliseconds limit{};
    SteadyClock::time_point deadline;
    std::string lastError;
};

ThreadState& threadState() {
    thread_local ThreadState state;
    return state;
}

#ifdef NDEBUG
void logOpenStatements() {}
#else
void logOpenStatements() {
    const std::size_t count = openStatementCount();
    if (count > 0) logger.warning("A request left %zu statements open", count);
}
#endif

}  // namespace

DatabaseRequest::DatabaseRequest(std::chrono::milliseconds limit) {
    ThreadState& state = threadState();
    state.inRequest = true;
    state.interruptionLogged = false;
    state.limit = limit;
    state.deadline = SteadyClock::now() + limit;
    state.lastError.clear();
}

DatabaseRequest::~DatabaseRequest() {
    threadState().inRequest = false;
    rollBackOpenTransactions();
    logOpenStatements();
}

const std::string& lastDatabaseError() {
    return threadState().lastError;
}

void noteDatabaseError(std::string_view message) {
    threadState().lastError = message;
}

void beginStatementTime() {
    ThreadState& state = threadState();
    if (state.inRequest) state.deadline = SteadyClock::now() + state.limit;
}

bool statementTimeIsUp() {
    ThreadState& state = threadState();
    if (!state.inRequest || SteadyClock::now() < state.deadline) return false;
    if (!state.interruptionLogged) {
        state.interruptionLogged = true;
        logger.warning("Ended a statement that ran longer than %lld ms",
                       static_cast<long long>(state.limit.count()));
    }
    return true;
}

}  // namespace epgset
