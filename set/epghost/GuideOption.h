// The option --guide of the commands.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace epgset {

/// Adds --guide, which may be repeated, to a command.
CLI::Option* addGuideOption(CLI::App& command, std::vector<std::string>& guides, const std::string& meaning);

/// Throws StartError for a guide that is no file's name.
void checkGuideNames(const std::vector<std::string>& guides);

}  // namespace epgset
