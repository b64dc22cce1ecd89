#include "set/epghost/Epghost.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <utility>

#include "host/Logger.h"
#include "set/epghost/FillRepair.h"
#include "set/epghost/GuideNews.h"
#include "set/epghost/GuideRefresh.h"
#include "set/epghost/GuideSource.h"
#include "set/epghost/OpenFileLimit.h"
#include "set/epghost/PluginFile.h"
#include "set/epghost/ProcessZone.h"
#include "set/epghost/Reminders.h"
#include "set/epghost/ServiceManager.h"
#include "set/epghost/Signals.h"
#include "set/epghost/StateFolder.h"
#include "set/events/EventRing.h"
#include "set/log/LogControl.h"
#include "set/middleware/Clock.h"
#include "set/middleware/Television.h"
#include "set/recorder/PvrState.h"
#include "set/recorder/Recorder.h"
#include "set/recorder/StorageSpace.h"
#include "set/upnp/WebRoot.h"
#include "set/web/GuardedHandler.h"
#include "set/web/HttpServer.h"
#include "set/web/ListenSocket.h"
#include "set/web/MaintenanceTimer.h"
#include "set/web/PluginHost.h"
#include "set/web/PluginLibrary.h"
#include "set/web/SetRoutes.h"

namespace epgset {
namespace {

/// The plug-in passes over small changes of the guide until its table is more than 600 s old, so that a
/// reload takes a second call of its maintenance.
constexpr std::chrono::seconds secondMaintenance{601};

const Container::Logger& programLogger() {
    static const Container::Logger logger = Container::Logger::logger("set/epghost");
    return logger;
}

/// Puts a clock in use as long as it lives.
class ClockInUse {
public:
    explicit ClockInUse(const Options& options)
        : clock_(options.now ? RunningClock(options.zone, *options.now) : RunningClock(options.zone)) {
        useClock(&clock_);
    }
    ~ClockInUse() { useClock(nullptr); }
    ClockInUse(const ClockInUse&) = delete;
    ClockInUse& operator=(const ClockInUse&) = delete;

private:
    const RunningClock clock_;
};

Recorder::Settings recorderSettings(const Options& options, const StateFolder& state) {
    Recorder::Settings settings;
    settings.folder =
        options.recordings.empty() ? state.path() / "recordings" : std::filesystem::path(options.recordings);
    settings.tuners = options.tuners;
    settings.maximumBytes = options.recordingsMax;
    return settings;
}

/// Hears of failures of the plug-in as long as it lives.
class FailureWatch {
public:
    FailureWatch(PluginHost& plugin, std::function<void()> failed) : plugin_(plugin) {
        plugin_.whenFailed(std::move(failed));
    }
    ~FailureWatch() { plugin_.whenFailed({}); }
    FailureWatch(const FailureWatch&) = delete;
    FailureWatch& operator=(const FailureWatch&) = delete;

private:
    PluginHost& plugin_;
};

/// Lets the plug-in fill its table before the first client comes.
void warmUp(PluginHost& plugin) {
    plugin.maintain();
    WebRequest request;
    request.method = "GET";
    request.path = "/ws/epg2/antennas";
    const WebResponse response = plugin.answer(request, "epg2/antennas");
    if (response.status != 200) {
        programLogger().error("the plug-in answered the first request %d: %s", response.status,
                              response.body);
    }
}

AccessSettings accessSettings(const Options& options) {
    AccessSettings settings{options.hostNames, options.allowedOrigins, options.token,
                            !options.tlsCert.empty()};
    settings.hostNames.push_back(options.listen);
    return settings;
}

/// What a file holds. Throws StartError, which names the option.
std::string textOf(const std::string& file, const char* option) {
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream || text.empty()) throw StartError(std::string(option) + ": " + file + " cannot be read");
    return text;
}

HttpServer::Limits serverLimits(const Options& options) {
    HttpServer::Limits limits = options.web;
    allowOpenFiles(HttpServer::openFiles(limits), "--max-connections");
    if (options.tlsCert.empty() != options.tlsKey.empty()) {
        throw StartError("--tls-cert and --tls-key are given together");
    }
    if (options.tlsCert.empty()) return limits;
    limits.certificate = textOf(options.tlsCert, "--tls-cert");
    limits.key = textOf(options.tlsKey, "--tls-key");
    return limits;
}

void serveUntilStopped(PluginHost& plugin, const SetFacts& facts, ListenSocket socket, GuideSource& source,
                       GuideRefresh& refresh, Reminders& reminders, const Options& options,
                       const HttpServer::Limits& limits) {
    GuideNews news(events(), secondMaintenance);
    const auto maintain = [&] {
        plugin.maintain();
        news.maintained();
    };
    MaintenanceTimer timer(maintain, plugin.maintenancePeriod());
    FillRepair repair([&timer](std::chrono::seconds delay) { timer.callIn(delay); }, secondMaintenance);
    const FailureWatch watch(plugin, [&repair] { repair.failed(); });
    const auto putInUse = [&](std::shared_ptr<const Guide> guide) {
        useGuide(std::move(guide));
        reminders.guideChanged();
        try {
            source.keep();
        } catch (const std::exception& error) {
            programLogger().error("what the next start needs of the new guide is not kept: %s", error.what());
        }
        news.reloaded();
        timer.callIn(std::chrono::seconds(0));
        timer.callIn(secondMaintenance);
    };
    SetRoutes routes(plugin, facts, PageFiles(shippedPage()), static_cast<std::size_t>(options.answerCache));
    GuardedHandler guarded(routes, accessSettings(options));
    const std::string url = socket.url(!limits.certificate.empty());
    const HttpServer server(std::move(socket), guarded, limits);
    std::cout << "listening on " << url << std::endl;
    tellServiceManager(ServiceState::Ready);
    for (;;) {
        const Command command = waitForCommand(refresh.check(putInUse));
        if (command == Command::Stop) break;
        if (command == Command::Reload) refresh.ask();
    }
    tellServiceManager(ServiceState::Stopping);
}

}  // namespace

void runEpghost(const Options& options) {
    LogControl::setLevel(options.logLevel);
    // Everything that can fail comes before the first thing that leaves a trace, so that until then a stop
    // needs no more than to end.
    endOnStop();
    ListenSocket socket(options.listen, options.port);
    StateFolder state(options.state.empty() ? defaultStateFolder() : options.state);
    const HttpServer::Limits limits = serverLimits(options);
    const PluginLibrary library(findPluginFile(options.plugin));
    const ClockInUse clock(options);
    GuideSource source(options, state);
    GuideRefresh refresh(source);
    useGuide(source.load());
    blockSignals();
    state.create();
    usePvrState(pvrStateOf(options.pvr).value());
    Reminders* store = nullptr;  // there by the time that the plug-in can stop a recording
    Recorder recorder(recorderSettings(options, state),
                      [&store](unsigned long uid, std::int64_t start) { store->endOccurrence(uid, start); });
    Reminders reminders(state.path(), recorder);
    store = &reminders;
    source.keep();
    useWebRoot(options.webRoot.empty() ? shippedWebRoot() : std::filesystem::path(options.webRoot));

    PluginHost plugin(library.descriptor());
    warmUp(plugin);
    if (stopIsPending()) return;
    const auto stateNow = [&, folder = recorderSettings(options, state).folder] {
        constexpr std::size_t nextEntries = 10;
        return SetState{source.reports(), recorder.tuners(), recorder.tunersInUse(),
                        folder.string(),  freeBytes(folder), reminders.nextDue(nextEntries)};
    };
    const SetFacts facts{options.pvr, processZoneName(), stateNow};
    serveUntilStopped(plugin, facts, std::move(socket), source, refresh, reminders, options, limits);
}

}  // namespace epgset
