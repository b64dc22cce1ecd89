#include "set/epghost/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "set/epghost/CheckCommand.h"
#include "set/epghost/Configuration.h"
#include "set/epghost/DemoGuideCommand.h"
#include "set/epghost/HelpFormat.h"
#include "set/epghost/LineupCommand.h"
#include "set/epghost/ManPage.h"
#include "set/epghost/OptionTable.h"
#include "set/epghost/StandardOutput.h"

namespace epgset {

/// The options of the set itself, while the command line is read.
class CommandLine::SetOptions {
public:
    explicit SetOptions(CLI::App& app) {
        app.add_option(
               "--config", configuration_,
               "A configuration file (TOML) with any of the options that follow, by the same names; those "
               "that are given here as well win")
            ->type_name("PATH")
            ->allow_extra_args(false);
        for (const OptionEntry& option : optionTable()) {
            app.add_option("--" + std::string(option.name), given_[&option], std::string(option.meaning))
                ->type_name(std::string(option.value))
                ->default_str(std::string(option.standard))
                ->allow_extra_args(false);
        }
    }

    bool any() const {
        return !configuration_.empty() ||
               std::ranges::any_of(given_, [](const auto& option) { return !option.second.empty(); });
    }

    /// The options by the configuration file and by what was given. Throws StartError.
    Options read() const {
        Options options;
        if (configuration_.size() > 1) throw StartError("--config: it may be given once");
        if (!configuration_.empty()) takeConfiguration(configuration_[0], options);
        for (const OptionEntry& option : optionTable())
            take(option, given_.at(&option), "--" + std::string(option.name), options);
        return options;
    }

private:
    void takeConfiguration(const std::string& file, Options& options) const {
        if (file.empty()) throw StartError("--config: a text is missing");
        for (const ConfiguredOption& configured : readConfiguration(file)) {
            if (!given_.at(configured.option).empty()) continue;
            take(*configured.option, configured.values,
                 fmt::format("{}:{}: {}", file, configured.line, configured.option->name), options);
        }
    }

    /// `origin` names the option where it was given.
    static void take(const OptionEntry& option, const std::vector<std::string>& values,
                     const std::string& origin, Options& options) {
        if (values.size() > 1 && !option.repeats) throw StartError(origin + ": it may be given once");
        for (const std::string& value : values) {
            const std::string fault = option.take(options, value);
            if (!fault.empty()) throw StartError(origin + ": " + fault);
        }
    }

    std::vector<std::string> configuration_;
    std::map<const OptionEntry*, std::vector<std::string>> given_;
};

namespace {

/// The manual is made while building, so that the command is in no help.
void addManCommand(CLI::App& app, std::function<int()>& task) {
    CLI::App* const command = app.add_subcommand("man", "Print the manual (roff)");
    command->group("");
    command->callback([&app, &task] {
        task = [&app] {
            writeManPage(app, std::cout);
            finishStandardOutput();
            return 0;
        };
    });
}

}  // namespace

CommandLine::CommandLine(std::function<void(const Options&)> serve)
    : serve_(std::move(serve)),
      app_(std::make_unique<CLI::App>(
          "A programme guide for companion applications: a television's middleware and web server.",
          "epghost")) {
    app_->set_version_flag("--version", "epghost " EPGHOST_VERSION, "Print the version and exit");
    app_->set_help_flag("--help", "Print this help and exit");
    const auto format = std::make_shared<HelpFormat>();
    format->label("SUBCOMMAND", "COMMAND");
    app_->formatter(format);
    setOptions_ = std::make_unique<SetOptions>(*app_);
    app_->require_subcommand(0, 1);
    addLineupCommand(*app_, command_);
    addCheckCommand(*app_, command_);
    addDemoGuideCommand(*app_, command_);
    addManCommand(*app_, command_);
    for (CLI::App* const command : app_->get_subcommands([](CLI::App*) { return true; })) {
        if (!command->get_group().empty()) command->group("Commands");
    }
}

CommandLine::~CommandLine() = default;

int CommandLine::run(int count, const char* const* arguments) {
    try {
        app_->parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw StartError(error.what());
        app_->exit(error, std::cout, std::cerr);
        finishStandardOutput();
        return 0;
    }
    if (!command_) {
        serve_(setOptions_->read());
        return 0;
    }
    if (setOptions_->any()) {
        const std::string name = app_->get_subcommands().front()->get_name();
        throw StartError(name + " takes none of the set's own options; epghost " + name +
                         " --help lists those it takes");
    }
    return command_();
}

}  // namespace epgset
