// What a command prints.
#pragma once

namespace epgset {

/// To be called when all is printed. Throws StartError where standard output did not take it all, as on a
/// full disk.
void finishStandardOutput();

}  // namespace epgset
