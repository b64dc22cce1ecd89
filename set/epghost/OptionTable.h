// The options of epghost: one table for the command line, the configuration file and the manual.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "set/epghost/Options.h"

namespace epgset {

/// One option.
struct OptionEntry {
    /// How a configuration file writes its value.
    enum class Form { Text, Number };

    std::string_view name;      ///< in a configuration file; with "--" before it on the command line
    std::string_view value;     ///< what stands for the value in the help, such as "PATH"
    std::string_view meaning;   ///< a phrase without a full stop
    std::string_view standard;  ///< the default, for the help
    Form form;
    bool repeats;  ///< whether it may be given more than once; a list in a configuration file

    /// Puts a value into the options; one of a repeating option is added. Answers what is wrong with it, or
    /// an empty text.
    std::string (*take)(Options& options, const std::string& text);
};

/// All options, in the order of the help. Those that no configuration file has (--config, --help, --version)
/// are not among them.
std::span<const OptionEntry> optionTable();

/// The option of that name, or null.
const OptionEntry* findOption(std::string_view name);

}  // namespace epgset
