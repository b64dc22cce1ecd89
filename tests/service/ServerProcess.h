// What a running process takes of the machine.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace epgset::test {

/// How many files a process has open.
std::size_t openFilesOf(pid_t process);

/// The most resident memory, in bytes, that a process has had since it was begun to be measured.
std::size_t peakMemoryOf(pid_t process);
void beginPeakMemoryOf(pid_t process);

}  // namespace epgset::test
