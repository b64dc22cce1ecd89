#include "set/epghost/OptionTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <system_error>

#include "set/epghost/TimeOption.h"
#include "set/log/LogControl.h"
#include "set/recorder/PvrState.h"
#include "set/web/AccessRules.h"

namespace epgset {
namespace {

using Form = OptionEntry::Form;
using Text = const std::string&;

const std::string good;

std::string inQuotes(Text text) {
    return '"' + text + '"';
}

std::string takeText(std::string& into, Text text) {
    if (text.empty()) return "a text is missing";
    into = text;
    return good;
}

/// Takes a decimal number from `minimum` to `maximum`; a sign, a blank or another base is refused.
template <typename Number>
std::string takeNumber(Number& into, Text text, std::uint64_t minimum, std::uint64_t maximum) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc() || stopped != end || number < minimum || number > maximum) {
        return fmt::format("{} is no number from {} to {}", inQuotes(text), minimum, maximum);
    }
    into = static_cast<Number>(number);
    return good;
}

std::string notOneOf(Text text, std::string_view words) {
    return fmt::format("{} is none of {}", inQuotes(text), words);
}

constexpr std::string_view pvrWords = "on|off|no-device|unformatted";
constexpr std::string_view zoneWords = "utc|local";
constexpr std::string_view levelWords = "trace|debug|warning|error|off";
constexpr std::uint64_t mostProgrammes = 1'000'000'000;
constexpr std::uint64_t mostTuners = 64;
constexpr std::uint64_t mostBytes = 1'000'000'000'000'000;
constexpr std::uint64_t mostMemory = std::numeric_limits<std::size_t>::max() / 2;

constexpr std::uint64_t mostConnections = 100'000;
constexpr std::uint64_t mostSeconds = 86'400;
constexpr std::uint64_t leastHead = 4096;
constexpr std::uint64_t mostHead = std::uint64_t{16} << 20U;

std::string takeSeconds(std::chrono::seconds& into, Text text) {
    std::int64_t seconds = into.count();
    std::string fault = takeNumber(seconds, text, 1, mostSeconds);
    into = std::chrono::seconds(seconds);
    return fault;
}

std::string takeConnections(Options& options, Text text) {
    return takeNumber(options.web.connections, text, 1, mostConnections);
}

std::string takeConnectionsPerAddress(Options& options, Text text) {
    return takeNumber(options.web.connectionsPerAddress, text, 1, mostConnections);
}

std::string takeIdleTime(Options& options, Text text) {
    return takeSeconds(options.web.idleTime, text);
}

std::string takeHeadTime(Options& options, Text text) {
    return takeSeconds(options.web.headTime, text);
}

std::string takeBodyTime(Options& options, Text text) {
    return takeSeconds(options.web.bodyTime, text);
}

std::string takeAnswerTime(Options& options, Text text) {
    return takeSeconds(options.web.answerTime, text);
}

std::string takeMaxHead(Options& options, Text text) {
    return takeNumber(options.web.headMemory, text, leastHead, mostHead);
}

/// What the plug-in takes is always read.
std::string takeMaxBody(Options& options, Text text) {
    return takeNumber(options.web.statedBody, text, maximumRequestBody, mostBytes);
}

std::string takeMaxChunkedBody(Options& options, Text text) {
    return takeNumber(options.web.chunkedBody, text, maximumRequestBody, mostBytes);
}

std::string takeBodyMemory(Options& options, Text text) {
    return takeNumber(options.web.bodyMemory, text, maximumRequestBody, mostMemory);
}

std::string takeAnswerMemory(Options& options, Text text) {
    return takeNumber(options.web.answerMemory, text, 1, mostMemory);
}

std::string takeGuide(Options& options, Text text) {
    std::string guide;
    std::string fault = takeText(guide, text);
    if (fault.empty()) options.guides.push_back(guide);
    return fault;
}

std::string takeLineup(Options& options, Text text) {
    return takeText(options.lineup, text);
}

std::string takeProgrammes(Options& options, Text text) {
    return takeNumber(options.maxProgrammes, text, 0, mostProgrammes);
}

std::string takeState(Options& options, Text text) {
    return takeText(options.state, text);
}

/// A folder that the set makes itself may still be missing.
std::string takeRecordings(Options& options, Text text) {
    std::error_code ignored;
    if (std::filesystem::exists(text, ignored) && !std::filesystem::is_directory(text, ignored)) {
        return text + " is no folder";
    }
    return takeText(options.recordings, text);
}

std::string takeTuners(Options& options, Text text) {
    return takeNumber(options.tuners, text, 1, mostTuners);
}

std::string takeAnswerCache(Options& options, Text text) {
    return takeNumber(options.answerCache, text, 0, mostBytes);
}

std::string takeRecordingsMax(Options& options, Text text) {
    return takeNumber(options.recordingsMax, text, 0, mostBytes);
}

std::string takeWebRoot(Options& options, Text text) {
    std::error_code ignored;
    if (!text.empty() && !std::filesystem::is_directory(text, ignored)) return text + " is no folder";
    return takeText(options.webRoot, text);
}

std::string takePlugin(Options& options, Text text) {
    return takeText(options.plugin, text);
}

std::string takeListen(Options& options, Text text) {
    return takeText(options.listen, text);
}

std::string takePort(Options& options, Text text) {
    return takeNumber(options.port, text, 0, 65535);
}

std::string takeHostName(Options& options, Text text) {
    std::string name;
    std::string fault = takeText(name, text);
    if (fault.empty()) options.hostNames.push_back(name);
    return fault;
}

std::string takeOrigin(Options& options, Text text) {
    const auto scheme = text.find("://");
    const bool isOrigin = scheme != std::string::npos && scheme + 3 < text.size() &&
                          text.find('/', scheme + 3) == std::string::npos;
    if (!isOrigin) return inQuotes(text) + " is no origin such as http://tablet.example:3000";
    options.allowedOrigins.push_back(text);
    return good;
}

std::string takeToken(Options& options, Text text) {
    try {
        options.token = readToken(text);
        return good;
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

std::string takeCertificate(Options& options, Text text) {
    return takeText(options.tlsCert, text);
}

std::string takeKey(Options& options, Text text) {
    return takeText(options.tlsKey, text);
}

std::string takePvr(Options& options, Text text) {
    if (!pvrStateOf(text)) return notOneOf(text, pvrWords);
    options.pvr = text;
    return good;
}

std::string takeNow(Options& options, Text text) {
    options.now = parseTimeOption(text);
    return options.now ? good : inQuotes(text) + " is no time such as 2026-08-23T00:00:00Z";
}

std::string takeZone(Options& options, Text text) {
    if (text != "utc" && text != "local") return notOneOf(text, zoneWords);
    options.zone = text == "utc" ? Zone::Utc : Zone::Local;
    return good;
}

std::string takeLogLevel(Options& options, Text text) {
    const auto level = LogControl::levelOf(text);
    if (!level) return notOneOf(text, levelWords);
    options.logLevel = *level;
    return good;
}

constexpr auto table = std::to_array<OptionEntry>({
    {"guide", "PATH|URL",
     "An XMLTV guide (.xml, .xml.gz), fetched every 6 hours where it is a URL; may be repeated",
     "the demo guide", Form::Text, true, takeGuide},
    {"lineup", "PATH",
     "The channel line-up (TOML), for the demo guide too, whose ids are ANTENNA-MAJOR-MINOR.demo such as "
     "AIR-1-0.demo",
     "every channel of the guide", Form::Text, false, takeLineup},
    {"max-programmes", "N", "How many programmes the guide cache holds; 0: no bound", "90000", Form::Number,
     false, takeProgrammes},
    {"state", "DIR", "Where reminders are kept", "$XDG_STATE_HOME/epghost, else ~/.local/state/epghost",
     Form::Text, false, takeState},
    {"recordings", "DIR", "Where recordings are written", "recordings below the state folder", Form::Text,
     false, takeRecordings},
    {"tuners", "N", "How many recordings may run at once", "2", Form::Number, false, takeTuners},
    {"answer-cache", "BYTES", "How many bytes of answers that cannot have changed are kept; 0: none",
     "16777216", Form::Number, false, takeAnswerCache},
    {"recordings-max", "BYTES", "How many bytes the recordings may hold; 0: no bound", "0", Form::Number,
     false, takeRecordingsMax},
    {"web-root", "DIR", "The UPnP web root; it holds rcr/RemoteControlReceiver.xml",
     "the one that comes with the set", Form::Text, false, takeWebRoot},
    {"plugin", "PATH", "The plug-in to load", "EpgSQLPlugin.so beside the program or in ../lib", Form::Text,
     false, takePlugin},
    {"listen", "ADDRESS", "Address to listen on", "127.0.0.1", Form::Text, false, takeListen},
    {"port", "N", "Port to listen on; 0 takes a free one", "8080", Form::Number, false, takePort},
    {"host-name", "NAME",
     "A name that the set is called by, beside its addresses and localhost; may be repeated", "none",
     Form::Text, true, takeHostName},
    {"allow-origin", "ORIGIN", "Another site whose pages may ask the set; may be repeated", "none",
     Form::Text, true, takeOrigin},
    {"token", "FILE", "A file with the token that every request has to bring", "none is asked for",
     Form::Text, false, takeToken},
    {"tls-cert", "FILE", "Serve HTTPS with this certificate (PEM), with --tls-key", "HTTP", Form::Text, false,
     takeCertificate},
    {"tls-key", "FILE", "The certificate's key (PEM)", "none", Form::Text, false, takeKey},
    {"max-connections", "N", "How many connections may be open at a time", "256", Form::Number, false,
     takeConnections},
    {"max-connections-per-address", "N", "How many of them from one client address", "128", Form::Number,
     false, takeConnectionsPerAddress},
    {"idle-time", "SECONDS", "A connection that is silent for so long is closed", "30", Form::Number, false,
     takeIdleTime},
    {"head-time", "SECONDS", "How long a request may take until its headers have come; 408 after that", "30",
     Form::Number, false, takeHeadTime},
    {"body-time", "SECONDS", "How long the body of a request may take; 408 after that", "60", Form::Number,
     false, takeBodyTime},
    {"answer-time", "SECONDS", "How long a client may take to read an answer; closed after that", "600",
     Form::Number, false, takeAnswerTime},
    {"max-head", "BYTES", "The memory of a connection for request line and headers; 414 or 431 beyond",
     "65536", Form::Number, false, takeMaxHead},
    {"max-body", "BYTES", "The longest body of a stated length that is read; a longer one is answered unread",
     "16777216", Form::Number, false, takeMaxBody},
    {"max-chunked-body", "BYTES", "The longest body in chunks that is read; 413 beyond", "67108864",
     Form::Number, false, takeMaxChunkedBody},
    {"body-memory", "BYTES", "How much the bodies that are read may take together; 503 beyond", "67108864",
     Form::Number, false, takeBodyMemory},
    {"answer-memory", "BYTES",
     "How much the answers that are sent may take together; beyond it those that have been under way for the "
     "longest are cut",
     "268435456", Form::Number, false, takeAnswerMemory},
    {"pvr", pvrWords, "What the set says of its ability to record", "on", Form::Text, false, takePvr},
    {"now", "TIME", "The set's clock starts at this time (ISO 8601) and runs on from it", "the system clock",
     Form::Text, false, takeNow},
    {"zone", zoneWords, "The zone in which the set's middleware clock runs", "utc", Form::Text, false,
     takeZone},
    {"log-level", levelWords, "What is logged, to standard error", "warning", Form::Text, false,
     takeLogLevel},
});

}  // namespace

std::span<const OptionEntry> optionTable() {
    return table;
}

const OptionEntry* findOption(std::string_view name) {
    const auto* const found = std::ranges::find(table, name, &OptionEntry::name);
    return found == table.end() ? nullptr : found;
}

}  // namespace epgset
