// The options of epghost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Logger.h"
#include "set/middleware/Clock.h"
#include "set/web/HttpServer.h"

namespace epgset {

/// Why the set cannot start; what() is one line that names the thing.
class StartError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The options with their defaults. Paths are as they were given.
struct Options {
    std::vector<std::string> guides;          ///< none: the demo guide
    std::string lineup;                       ///< empty: none
    std::string state;                        ///< empty: defaultStateFolder()
    std::string recordings;                   ///< empty: "recordings" below the state folder
    std::string pvr = "on";                   ///< on, off, no-device or unformatted
    int tuners = 2;                           ///< how many recordings may run at once
    std::vector<std::string> hostNames;       ///< that the set is called by
    std::vector<std::string> allowedOrigins;  ///< of other sites' pages
    std::string token;                        ///< empty: none is asked for
    std::string tlsCert;                      ///< PEM file; empty: HTTP
    std::string tlsKey;                       ///< PEM file
    std::uint64_t answerCache = 16777216;     ///< bytes of answers that are kept; 0: none
    std::uint64_t recordingsMax = 0;          ///< bytes that the recordings may hold; 0: no bound
    HttpServer::Limits web;                   ///< what clients may take; certificate and key are in the files
    std::string webRoot;                      ///< empty: the one that comes with the set
    std::string listen = "127.0.0.1";
    std::uint16_t port = 8080;
    std::optional<std::int64_t> now;  ///< UNIX seconds at which the set's clock starts
    Zone zone = Zone::Utc;
    std::size_t maxProgrammes = 90000;  ///< 0: no bound
    Container::Logger::Level logLevel = Container::Logger::Warning;
    std::string plugin;  ///< empty: looked for beside the program
};

/// $XDG_STATE_HOME/epghost, else ~/.local/state/epghost. Throws StartError when there is no home folder.
std::string defaultStateFolder();

}  // namespace epgset
