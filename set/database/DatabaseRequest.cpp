#include "set/database/DatabaseRequest.h"

#include <malloc.h>

#include <cstdint>
#include <exception>

#include "host/Logger.h"
#include "set/database/DatabaseGuard.h"
#include "set/database/OpenConnections.h"

namespace epgset {
namespace {

using SteadyClock = std::chrono::steady_clock;

const Container::Logger logger = Container::Logger::logger("set/database");

struct ThreadState {
    bool inRequest = false;
    bool interruptionLogged = false;
    std::chrono::milliseconds limit{};
    DatabaseRequest::Bound bound{};
    SteadyClock::duration worked{};        ///< by statements that count
    SteadyClock::time_point countedUntil;  ///< of the statement that runs
    std::uint64_t tablesBefore = 0;
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

DatabaseRequest::DatabaseRequest(std::chrono::milliseconds limit, Bound bound) {
    ThreadState& state = threadState();
    state.inRequest = true;
    state.interruptionLogged = false;
    state.limit = limit;
    state.bound = bound;
    state.worked = {};
    state.countedUntil = SteadyClock::now();
    state.tablesBefore = tablesMade();
    state.lastError.clear();
}

DatabaseRequest::~DatabaseRequest() {
    threadState().inRequest = false;
    rollBackOpenTransactions();
    logOpenStatements();
    // Filling a table and sorting its indexes takes memory that the rest of the time is not needed.
    if (tablesMade() != threadState().tablesBefore) ::malloc_trim(0);
}

const std::string& lastDatabaseError() {
    return threadState().lastError;
}

void noteDatabaseError(std::string_view message) {
    threadState().lastError = message;
}

void beginStatementTime() {
    ThreadState& state = threadState();
    if (!state.inRequest) return;
    if (state.bound == DatabaseRequest::Bound::EachStatement) state.worked = {};
    state.countedUntil = SteadyClock::now();
}

bool statementTimeIsUp() {
    ThreadState& state = threadState();
    if (!state.inRequest) return false;
    const auto now = SteadyClock::now();
    state.worked += now - state.countedUntil;
    state.countedUntil = now;
    if (state.worked < state.limit) return false;
    if (!state.interruptionLogged) {
        state.interruptionLogged = true;
        const bool each = state.bound == DatabaseRequest::Bound::EachStatement;
        logger.warning("Ended a statement: %s longer than %lld ms",
                       each ? "it worked" : "the statements of a request worked",
                       static_cast<long long>(state.limit.count()));
    }
    return true;
}

}  // namespace epgset
