// epghost: a television's middleware and web server around the programme guide plug-in.
#include <cstddef>
#include <ctime>
#include <exception>
#include <iostream>

#include "set/epghost/CommandLine.h"
#include "set/epghost/Epghost.h"
#include "set/log/LogEscape.h"

namespace {

constexpr std::size_t maximumErrorBytes = 8192;

}  // namespace

int main(int count, char** arguments) {
    tzset();
    try {
        return epgset::CommandLine(epgset::runEpghost).run(count, arguments);
    } catch (const std::exception& error) {
        // One line whatever bytes a path, an option or a guide brought into the message.
        std::cerr << "epghost: " << epgset::escapedLogLine(error.what(), maximumErrorBytes) << std::endl;
        return 2;
    }
}
