#include "set/epghost/Signals.h"

#include <unistd.h>

#include <csignal>
#include <ctime>
#include <initializer_list>

namespace epgset {
namespace {

sigset_t setOf(std::initializer_list<int> signals) {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals)
        sigaddset(&set, signal);
    return set;
}

sigset_t handledSignals() {
    return setOf({SIGTERM, SIGINT, SIGHUP});
}

}  // namespace

void endOnStop() {
    const sigset_t reload = setOf({SIGHUP});
    pthread_sigmask(SIG_BLOCK, &reload, nullptr);
    for (const int signal : {SIGTERM, SIGINT})
        std::signal(signal, [](int) { _exit(0); });
    const sigset_t stop = setOf({SIGTERM, SIGINT});
    pthread_sigmask(SIG_UNBLOCK, &stop, nullptr);
}

void blockSignals() {
    const sigset_t set = handledSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

Command waitForCommand(std::chrono::milliseconds limit) {
    const sigset_t set = handledSignals();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
    const std::chrono::nanoseconds rest = limit - seconds;
    timespec wait{};
    wait.tv_sec = static_cast<std::time_t>(seconds.count());
    wait.tv_nsec = static_cast<long>(rest.count());
    const int signal = sigtimedwait(&set, nullptr, &wait);
    if (signal < 0) return Command::Nothing;
    return signal == SIGHUP ? Command::Reload : Command::Stop;
}

bool stopIsPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGTERM) == 1 || sigismember(&pending, SIGINT) == 1;
}

}  // namespace epgset
