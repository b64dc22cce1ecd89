// The configuration file.
#pragma once

#include <string>
#include <vector>

#include "set/epghost/OptionTable.h"

namespace epgset {

/// An option as a configuration file gives it.
struct ConfiguredOption {
    const OptionEntry* option = nullptr;
    std::vector<std::string> values;  ///< one, unless the option repeats
    int line = 0;
};

/// Reads a TOML file whose keys are the names of options. Throws StartError, with file and line, for a file
/// that cannot be read or is no TOML, for a key that is no option and for a value of the wrong type. What a
/// value says is not looked at.
std::vector<ConfiguredOption> readConfiguration(const std::string& file);

}  // namespace epgset
