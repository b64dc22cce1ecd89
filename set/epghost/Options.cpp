#include "set/epghost/Options.h"

#include <pwd.h>
#include <strings.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

#include "set/epghost/TimeOption.h"
#include "set/log/LogControl.h"

namespace epgset {
namespace {

/// Refuses what is not a decimal number from `minimum` to `maximum`; a sign, a blank or another base
/// included.
CLI::Validator decimalFrom(std::uint64_t minimum, std::uint64_t maximum) {
    return {[minimum, maximum](const std::string& text) -> std::string {
                const bool digits =
                    !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
                const std::uint64_t number = digits && text.size() < 19 ? std::stoull(text) : maximum + 1;
                return number >= minimum && number <= maximum
                           ? ""
                           : "\"" + text + "\" is no number from " + std::to_string(minimum) + " to " +
                                 std::to_string(maximum);
            },
            "N"};
}

CLI::Validator decimalUpTo(std::uint64_t maximum) {
    return decimalFrom(0, maximum);
}

/// Refuses an option that is given without a text.
const CLI::Validator notEmpty([](const std::string& text) { return text.empty() ? "a text is missing" : ""; },
                              "");

void readPort(Options& options, const std::string& text) {
    options.port = static_cast<std::uint16_t>(std::stoul(text));
}

void readNow(Options& options, const std::string& text) {
    options.now = parseTimeOption(text);
    if (!options.now) {
        throw StartError("--now: \"" + text + "\" is no time such as 2026-08-23T00:00:00Z");
    }
}

void addGuideOptions(CLI::App& app, Options& options) {
    app.add_option("--guide", options.guides,
                   "An XMLTV guide (.xml, .xml.gz); may be repeated; the demo guide where there is none")
        ->check(notEmpty)
        ->type_name("PATH")
        ->allow_extra_args(false);
    app.add_option("--lineup", options.lineup,
                   "The channel line-up (TOML), for the demo guide too, whose ids are "
                   "ANTENNA-MAJOR-MINOR.demo such as AIR-1-0.demo")
        ->check(notEmpty)
        ->type_name("PATH");
    app.add_option_function<std::string>(
           "--max-programmes",
           [&options](const std::string& text) { options.maxProgrammes = std::stoull(text); },
           "How many programmes the guide cache holds; 0: no bound")
        ->check(decimalUpTo(1'000'000'000))
        ->type_name("N")
        ->default_str("90000");
}

void addFolderOptions(CLI::App& app, Options& options) {
    app.add_option("--state", options.state, "Where reminders are kept")
        ->check(notEmpty)
        ->type_name("DIR")
        ->default_str("$XDG_STATE_HOME/epghost");
    app.add_option("--recordings", options.recordings, "Where recordings are written")
        ->check(notEmpty)
        ->type_name("DIR")
        ->default_str("recordings below the state folder");
    app.add_option("--web-root", options.webRoot, "The UPnP web root")->check(notEmpty)->type_name("DIR");
    app.add_option("--plugin", options.plugin, "The plug-in to load")
        ->check(notEmpty)
        ->type_name("PATH")
        ->default_str("EpgSQLPlugin.so beside the program or in ../lib");
}

void addRecordingOptions(CLI::App& app, Options& options) {
    app.add_option_function<std::string>(
           "--tuners", [&options](const std::string& text) { options.tuners = std::stoi(text); },
           "How many recordings may run at once")
        ->check(decimalFrom(1, 64))
        ->type_name("N")
        ->default_str("2");
    app.add_option_function<std::string>(
           "--recordings-max",
           [&options](const std::string& text) { options.recordingsMax = std::stoull(text); },
           "How many bytes the recordings may hold; 0: no bound")
        ->check(decimalUpTo(1'000'000'000'000'000))
        ->type_name("BYTES")
        ->default_str("0");
}

void addServerOptions(CLI::App& app, Options& options) {
    app.add_option("--listen", options.listen, "Address to listen on")
        ->check(notEmpty)
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option_function<std::string>(
           "--port", [&options](const std::string& text) { readPort(options, text); },
           "Port to listen on; 0 takes a free one")
        ->check(decimalUpTo(65535))
        ->type_name("N")
        ->default_str("8080");
}

void addSetOptions(CLI::App& app, Options& options) {
    static const std::map<std::string, Zone> zones = {{"utc", Zone::Utc}, {"local", Zone::Local}};
    app.add_option("--pvr", options.pvr, "What the set says of its ability to record")
        ->check(CLI::IsMember({"on", "off", "no-device", "unformatted"}))
        ->type_name("on|off|no-device|unformatted")
        ->capture_default_str();
    app.add_option_function<std::string>(
           "--now", [&options](const std::string& text) { readNow(options, text); },
           "The set's clock starts at this time (ISO 8601) and runs on from it")
        ->type_name("TIME")
        ->default_str("the system clock");
    app.add_option_function<std::string>(
           "--zone", [&options](const std::string& word) { options.zone = zones.at(word); },
           "The zone in which the set's middleware clock runs")
        ->check(CLI::IsMember({"utc", "local"}))
        ->type_name("utc|local")
        ->default_str("utc");
    app.add_option_function<std::string>(
           "--log-level",
           [&options](const std::string& word) { options.logLevel = LogControl::levelOf(word).value(); },
           "What is logged, to standard error")
        ->check(CLI::IsMember({"trace", "debug", "warning", "error", "off"}))
        ->type_name("trace|debug|warning|error|off")
        ->default_str("warning");
}

void checkGuides(const Options& options) {
    for (const std::string& guide : options.guides) {
        // The scheme of a URL has no letter case.
        if (strncasecmp(guide.c_str(), "http://", 7) == 0 || strncasecmp(guide.c_str(), "https://", 8) == 0) {
            throw StartError("--guide: " + guide + ": a guide from a URL is not supported, only from a file");
        }
    }
}

/// A folder that is named must be there; what the set writes itself may still be missing.
void checkFolders(const Options& options) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (!options.webRoot.empty() && !fs::is_directory(options.webRoot, ignored)) {
        throw StartError("--web-root: " + options.webRoot + " is no folder");
    }
    if (fs::exists(options.recordings, ignored) && !fs::is_directory(options.recordings, ignored)) {
        throw StartError("--recordings: " + options.recordings + " is no folder");
    }
}

}  // namespace

std::optional<Options> readOptions(int count, const char* const* arguments) {
    Options options;
    CLI::App app("A programme guide for companion applications: a television's middleware and web server.",
                 "epghost");
    app.set_version_flag("--version", "epghost " EPGHOST_VERSION);
    app.set_help_flag("--help", "Print this help message and exit");
    addGuideOptions(app, options);
    addFolderOptions(app, options);
    addRecordingOptions(app, options);
    addServerOptions(app, options);
    addSetOptions(app, options);
    try {
        app.parse(count, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw StartError(error.what());
        app.exit(error, std::cout, std::cerr);
        return std::nullopt;
    }
    checkGuides(options);
    checkFolders(options);
    return options;
}

std::string defaultStateFolder() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') return std::string(state) + "/epghost";
    const char* home = std::getenv("HOME");
    if (home == nullptr || home[0] == '\0') {
        const passwd* user = getpwuid(getuid());
        home = user == nullptr ? nullptr : user->pw_dir;
    }
    if (home == nullptr || home[0] == '\0')
        throw StartError("--state is missing and there is no home folder");
    return std::string(home) + "/.local/state/epghost";
}

}  // namespace epgset
