// epghost lineup: a line-up to edit.
#pragma once

#include <functional>
#include <iosfwd>

#include "set/guide/Guide.h"

namespace CLI {
class App;
}

namespace epgset {

/// Adds the command to the program. Where it is given, `task` becomes what it does and answers the exit
/// status.
void addLineupCommand(CLI::App& app, std::function<int()>& task);

/// Writes a line-up that states of every channel what the guide states already, so that a set that is given
/// it answers as before. TOML.
void writeLineup(const Guide& guide, std::ostream& out);

}  // namespace epgset
