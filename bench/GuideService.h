// The service in process on a guide, with a reminder store: what a set is to its clients, without the
// network.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "set/guide/Guide.h"
#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "tests/support/TemporaryFolder.h"

namespace epgbench {

/// One answer of the service.
struct Answer {
    int status = 0;
    std::string body;
};

/// While it lives, the plug-in's table holds the guide, on a clock that stands, and bookings go to a store of
/// its own. One at a time.
class GuideService {
public:
    GuideService(std::shared_ptr<const epgset::Guide> guide, std::int64_t now);
    ~GuideService();
    GuideService(const GuideService&) = delete;
    GuideService& operator=(const GuideService&) = delete;

    /// Sends one request below /ws; `path` begins with "epg2".
    static Answer send(const std::string& method, const std::string& path, const std::string& query = "",
                       const std::string& body = "", bool xml = false);

    /// Books a programme, by its identifier. Throws std::runtime_error when it is not taken.
    static void book(const std::string& programme);

private:
    epgset::test::TemporaryFolder folder_;
    epgset::ManualClock clock_;
    epgset::ReminderStore store_;
};

}  // namespace epgbench
