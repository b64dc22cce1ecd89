#include "set/epghost/GuideOption.h"

#include <CLI/CLI.hpp>

#include "set/epghost/Options.h"
#include "set/guide/GuideDownload.h"

namespace epgset {

CLI::Option* addGuideOption(CLI::App& command, std::vector<std::string>& guides, const std::string& meaning) {
    return command.add_option("--guide", guides, meaning)->type_name("PATH")->allow_extra_args(false);
}

void checkGuideNames(const std::vector<std::string>& guides) {
    for (const std::string& guide : guides) {
        if (guide.empty()) throw StartError("--guide: a text is missing");
        if (isGuideUrl(guide)) {
            throw StartError("--guide: " + guide + ": the command reads files alone, no URL");
        }
    }
}

}  // namespace epgset
