// The service in process on a small guide, as the set serves it: requests as they come from clients, the
// set's routes, the plug-in, its table and a reminder store. No network.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "set/web/PluginHost.h"
#include "set/web/SetRoutes.h"
#include "tests/support/TemporaryFolder.h"

namespace epgfuzz {

/// One a process, made on first use; the clock stands, at 2026-08-23T00:00:00Z.
///
/// Channels: cid-000-7-2, cid-000-8, cid-003-7-2 and more, with a programme that is over, one that is on and
/// some to come each: pid-000-7-2-1 to pid-000-7-2-6.
class Service {
public:
    static Service& instance();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Answers a request as the set does, and asserts what holds of every answer: it is one that HTTP can
    /// carry, its body is of the type that it says, and it did not take longer than clients may hold the
    /// set's turn.
    epgset::WebResponse answer(const epgset::WebRequest& request);

    /// The same for one made of its parts. `target` is the path, with the query behind "?".
    epgset::WebResponse answer(std::string_view method, std::string_view target, std::string_view body = "");

    /// The set's maintenance, with the same assertion of its time.
    void maintain();

    /// Whether nothing was written to the database.
    bool isAsAtFirst() const;

    /// Brings table and bookings back to how they were at first, where they are not.
    void restore();

    /// The connection of the plug-in's table.
    static sqlite3* database();

    /// How long the statements of a request may work here, in place of the ten seconds of a set.
    static constexpr std::chrono::milliseconds statementLimit{50};

private:
    Service();
    ~Service();

    void fill();

    epgset::test::TemporaryFolder folder_;
    epgset::ManualClock clock_;
    epgset::ReminderStore store_;
    epgset::PluginHost plugin_;
    epgset::SetRoutes routes_;
    std::int64_t changesAtFirst_ = 0;
    int schemaAtFirst_ = 0;
    std::string contentAtFirst_;
};

/// Restores the service when it goes.
class RestoredService {
public:
    RestoredService() : service_(Service::instance()) {}
    ~RestoredService() { service_.restore(); }
    RestoredService(const RestoredService&) = delete;
    RestoredService& operator=(const RestoredService&) = delete;

    Service* operator->() const { return &service_; }

private:
    Service& service_;
};

}  // namespace epgfuzz
