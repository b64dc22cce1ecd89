#include "bench/GuideService.h"

#include <stdexcept>
#include <utility>

#include "plugin/EpgSQLPlugin.h"
#include "set/middleware/Television.h"
#include "tests/support/FakeExchange.h"
#include "tests/support/OpenPlugin.h"

namespace epgbench {

GuideService::GuideService(std::shared_ptr<const epgset::Guide> guide, std::int64_t now)
    : clock_(now), store_(folder_.path() / epgset::ReminderStore::fileName) {
    epgset::useClock(&clock_);
    epgset::useGuide(std::move(guide));
    epgset::useReminder(&store_);
    epgtest::OpenPlugin::forget();
    send("GET", "epg2/antennas");  // the first request fills the table once more
}

GuideService::~GuideService() {
    epgtest::OpenPlugin::forget();
    epgset::useReminder(nullptr);
    epgset::useClock(nullptr);
}

Answer GuideService::send(const std::string& method, const std::string& path, const std::string& query,
                          const std::string& body, bool xml) {
    epgtest::FakeRequest request(method, path, query);
    request.withVariable("HTTP_ACCEPT", xml ? "application/xml" : "application/json").withBody(body);
    epgtest::RecordingResponse response;
    BridgeToWebConvIF(request, response);
    // The server sends no body with 204.
    return {response.status, response.status == 204 ? std::string() : response.body()};
}

void GuideService::book(const std::string& programme) {
    constexpr int created = 201;
    const int status =
        send("POST", "epg2/programs/" + programme + "/schedule", "", R"({"status":"RECORD"})").status;
    if (status != created)
        throw std::runtime_error("booking " + programme + " was answered " + std::to_string(status));
}

}  // namespace epgbench
