// epghost: a television's middleware and web server around the programme guide plug-in.
#include <ctime>
#include <exception>
#include <iostream>

#include "set/epghost/Epghost.h"
#include "set/epghost/Options.h"

int main(int count, char** arguments) {
    tzset();
    try {
        const auto options = epgset::readOptions(count, arguments);
        if (options) epgset::runEpghost(*options);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "epghost: " << error.what() << std::endl;
        return 2;
    }
}
