// The signals that steer the set.
#pragma once

#include <chrono>

namespace epgset {

/// What a signal asks the set to do; Nothing when none came.
enum class Command { Stop, Reload, Nothing };

/// Lets SIGTERM and SIGINT end the process there and then, with status 0, until blockSignals(). A signal to
/// reload waits until then.
void endOnStop();

/// Keeps the signals from ending the process, for this thread and those that it starts from now on; to be
/// called before any is started. A connection that breaks does not end it either.
void blockSignals();

/// Waits for the next signal, but no longer than `limit`.
Command waitForCommand(std::chrono::milliseconds limit);

/// Whether a signal to stop has already come; it is left for waitForCommand().
bool stopIsPending();

}  // namespace epgset
