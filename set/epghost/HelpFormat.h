// How --help is laid out.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace epgset {

/// Options and commands in two columns, within 80 characters, defaults behind what an option means.
class HelpFormat : public CLI::Formatter {
public:
    std::string make_description(const CLI::App* app) const override;
    std::string make_option(const CLI::Option* option, bool positional) const override;
    std::string make_subcommand(const CLI::App* command) const override;
};

}  // namespace epgset
