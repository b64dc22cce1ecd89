#include "set/epghost/Signals.h"

#include <csignal>
#include <ctime>
#include <initializer_list>

namespace epgset {
namespace {

sigset_t handledSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&set, signal);
    }
    return set;
}

}  // namespace

void blockSignals() {
    const sigset_t set = handledSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

Command waitForCommand(std::chrono::seconds limit) {
    const sigset_t set = handledSignals();
    const timespec wait = {limit.count(), 0};
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
