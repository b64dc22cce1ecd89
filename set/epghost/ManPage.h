// The manual.
#pragma once

#include <iosfwd>

namespace CLI {
class App;
}

namespace epgset {

/// Writes the manual page of the program, in roff: what its help says of options and commands, and what there
/// is to know beside them.
void writeManPage(const CLI::App& app, std::ostream& out);

}  // namespace epgset
