#include "set/web/StatusDocument.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "set/middleware/Clock.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

using Json = rapidjson::Writer<rapidjson::StringBuffer>;

void member(Json& json, const char* key, std::string_view text) {
    json.Key(key);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void member(Json& json, const char* key, std::size_t number) {
    json.Key(key);
    json.Uint64(number);
}

/// The clock's time in ISO 8601, in the zone in which the middleware counts.
std::string clockText(const Clock& clock) {
    const int offset = clock.zoneMinutes() + (clock.daylightSaving() ? 60 : 0);
    const std::time_t local = clock.now() + std::int64_t{offset} * 60;
    const int distance = std::abs(offset);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}{}{:02}:{:02}", fmt::gmtime(local), offset < 0 ? '-' : '+',
                       distance / 60, distance % 60);
}

}  // namespace

std::string statusDocument(const SetFacts& facts) {
    const auto guide = currentGuide();
    rapidjson::StringBuffer text;
    Json json(text);
    json.StartObject();
    member(json, "clock", clockText(clock()));
    json.Key("channel");
    json.Null();
    json.Key("recordings");
    json.StartArray();
    json.EndArray();
    member(json, "pvr", facts.pvr);
    member(json, "zone", facts.zone);
    member(json, "channels", guide->channels().size());
    member(json, "programs", guide->programmes().size());
    member(json, "programs_dropped", guide->programmesDropped());
    json.EndObject();
    return {text.GetString(), text.GetSize()};
}

}  // namespace epgset
