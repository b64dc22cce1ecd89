// The stand-alone set, put together.
#pragma once

#include "set/epghost/Options.h"

namespace epgset {

/// Starts the set, prints the line that tells where it listens on standard output, and serves until a
/// signal stops it. Throws what keeps it from starting: StartError, ListenError, PluginError, GuideError.
void runEpghost(const Options& options);

}  // namespace epgset
