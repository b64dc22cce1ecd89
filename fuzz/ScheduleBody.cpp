// The body of a booking: read alone, then as clients send it.
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "fuzz/Input.h"
#include "fuzz/Parsing.h"
#include "fuzz/Require.h"
#include "fuzz/Service.h"
#include "fuzz/Target.h"

namespace epgfuzz {
namespace {

constexpr std::array statuses = {200, 201, 204, 400, 403, 404, 409};

/// Every text of a record stands in the body that it was read from.
void readAlone(const std::string& body) {
    t_validateSchedData(body.c_str());
    t_validateSchedDataRecord(body.c_str());
    // Exactly as long as the text and its NUL, so that reading on is seen.
    std::vector<char> cut(body.begin(), body.end());
    cut.push_back('\0');
    const ScheduleRecord record(t_prase_schedule_data(cut.data(), static_cast<int>(body.size())));
    if (!record) return;
    for (const char* text :
         {record->id, record->name, record->status, record->channel_num, record->channel_name,
          record->antenna, record->synopsis, record->start, record->end, record->repeat, record->source_path,
          record->storage_path, record->recent_record_path})
        if (text != nullptr)
            require(body.find(text) != std::string::npos, "a value stands in the body", text);
    require(record->method == nullptr && record->program_id == nullptr, "a body fills its own fields");
    require(record->force >= 0 && record->force <= 2, "force is one of its values");
}

/// Whether clients are shown a booking. On a busy machine the time of the statements may be up before they
/// are listed: then they are taken as shown.
bool showsBookings(const RestoredService& service) {
    const epgset::WebResponse response = service->answer("GET", "/ws/epg2/schedules");
    const auto document = parsedJson(epgset::bodyOf(response));
    require(document && document->IsObject() && document->HasMember("items"), "bookings are listed",
            epgset::bodyOf(response));
    const bool timeWasUp = !epgset::headerValue(response.headers, "EPG-SQL-Error").empty();
    return timeWasUp || (*document)["items"].Size() > 0;
}

}  // namespace

void fuzzScheduleBody(std::string_view input) {
    const std::string body(upToNul(input));
    const RestoredService service;
    readAlone(body);
    for (const char* target :
         {"/ws/epg2/programs/pid-000-7-2-3/schedule", "/ws/epg2/schedules", "/ws/epg2/schedules/sch_id_1"}) {
        for (const char* method : {"POST", "PUT"}) {
            const int status = service->answer(method, target, body).status;
            require(std::ranges::find(statuses, status) != statuses.end(), "the status is one of a booking",
                    std::to_string(status));
            require(status != 201 || showsBookings(service), "what was booked is shown", body);
        }
    }
    service->answer("DELETE", "/ws/epg2/programs/pid-000-7-2-3/schedule", body);
    showsBookings(service);
}

}  // namespace epgfuzz
