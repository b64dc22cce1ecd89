// A whole set in the test's own process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/PluginHost.h"
#include "set/web/PluginLibrary.h"
#include "set/web/SetRoutes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestGuide.h"
#include "tests/support/WebRequests.h"

namespace epgset::test {

/// The real plug-in behind the set's routes, with a reminder store of its own, a clock that stands and a
/// small guide: two channels with three half-hour programmes each, the first at 13:00. No answers are kept.
class SetInProcess {
public:
    static constexpr std::int64_t noon = 1787486400;  // 2026-08-23T12:00:00Z

    explicit SetInProcess(std::string plugin) : pluginFile_(std::move(plugin)) {
        useClock(&clock);
        useReminder(&store);
        // No power is cut here, and many bookings are made.
        store.file().database().run("PRAGMA synchronous = OFF");
        loadGuide();
        load();
    }

    ~SetInProcess() {
        unload();
        useReminder(nullptr);
        useClock(nullptr);
    }

    SetInProcess(const SetInProcess&) = delete;
    SetInProcess& operator=(const SetInProcess&) = delete;

    /// Unloads the plug-in and loads it afresh, without a table.
    void reload() {
        unload();
        load();
    }

    static void loadGuide() {
        epgtest::TestGuide guide;
        for (int number = 1; number <= 2; ++number) {
            const auto channel = guide.channel(epgtest::Air, number, 0, "Channel " + std::to_string(number));
            for (int i = 0; i < 3; ++i) {
                const auto start = static_cast<std::uint32_t>(noon + 3600 + i * 1800);
                guide.programme(channel, start, start + 1800, "It's programme " + std::to_string(i),
                                10 * number + i, "What happens in it, at length", "A series");
            }
        }
        guide.use();
    }

    WebResponse ask(const WebRequest& request) { return routes_->answerInTurn(request); }

    PluginHost& host() { return *host_; }
    SetRoutes& routes() { return *routes_; }
    std::filesystem::path storeFile() const { return folder_.path() / ReminderStore::fileName; }

    ManualClock clock{noon};

private:
    const TemporaryFolder folder_;

public:
    ReminderStore store{storeFile()};

private:
    void load() {
        library_.emplace(pluginFile_);
        host_.emplace(library_->descriptor());
        routes_.emplace(*host_, SetFacts{"on", "UTC", [] { return SetState(); }});
    }

    void unload() {
        routes_.reset();
        host_.reset();
        library_.reset();
    }

    const std::string pluginFile_;
    std::optional<PluginLibrary> library_;
    std::optional<PluginHost> host_;
    std::optional<SetRoutes> routes_;
};

}  // namespace epgset::test
