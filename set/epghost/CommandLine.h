// The command line: the set's options and the commands.
#pragma once

#include <functional>
#include <memory>

#include "set/epghost/Options.h"

namespace CLI {
class App;
}

namespace epgset {

/// The program as the command line, its help and its manual know it.
class CommandLine {
public:
    /// `serve` runs the set until it is stopped.
    explicit CommandLine(std::function<void(const Options&)> serve);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Does what the arguments ask for and answers the exit status. Throws StartError, which names the option
    /// or the file, and what the command throws.
    int run(int count, const char* const* arguments);

private:
    class SetOptions;

    std::function<void(const Options&)> serve_;
    std::function<int()> command_;  ///< empty: none was given
    std::unique_ptr<CLI::App> app_;
    std::unique_ptr<SetOptions> setOptions_;
};

}  // namespace epgset
