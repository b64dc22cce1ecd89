// epghost check: what is wrong with guides and a line-up.
#pragma once

#include <functional>
#include <iosfwd>

#include "set/epghost/GuideCheck.h"

namespace CLI {
class App;
}

namespace epgset {

/// Adds the command to the program. Where it is given, `task` becomes what it does and answers the exit
/// status: 2 when the set could not use the files.
void addCheckCommand(CLI::App& app, std::function<int()>& task);

/// Writes one line a finding, then the counts.
void writeCheckReport(const CheckReport& report, std::ostream& out);

/// The same as one JSON object on a line.
void writeCheckJson(const CheckReport& report, std::ostream& out);

}  // namespace epgset
