// Tells the web server that a function of host/ went without memory, where its signature cannot.
#pragma once

namespace epgset {

/// Notes for this thread that something was left out for want of memory.
void noteMemoryShortage() noexcept;

/// Whether that was noted in this thread since the last call, which this forgets.
bool takeMemoryShortage() noexcept;

}  // namespace epgset
