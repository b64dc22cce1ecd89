#include "set/epghost/GuideOption.h"

#include <strings.h>

#include <CLI/CLI.hpp>

#include "set/epghost/Options.h"

namespace epgset {

CLI::Option* addGuideOption(CLI::App& command, std::vector<std::string>& guides, const std::string& meaning) {
    return command.add_option("--guide", guides, meaning)->type_name("PATH")->allow_extra_args(false);
}

void checkGuideNames(const std::vector<std::string>& guides) {
    for (const std::string& guide : guides) {
        if (guide.empty()) throw StartError("--guide: a text is missing");
        // The scheme of a URL has no letter case.
        if (strncasecmp(guide.c_str(), "http://", 7) == 0 || strncasecmp(guide.c_str(), "https://", 8) == 0) {
            throw StartError("--guide: " + guide + ": a guide from a URL is not supported, only from a file");
        }
    }
}

}  // namespace epgset
