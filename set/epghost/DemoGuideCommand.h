// epghost demo-guide: a guide of a stated size.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace epgset {

/// Adds the command to the program. Where it is given, `task` becomes what it does and answers the exit
/// status.
void addDemoGuideCommand(CLI::App& app, std::function<int()>& task);

}  // namespace epgset
