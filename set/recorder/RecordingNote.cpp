#include "set/recorder/RecordingNote.h"


#include <string_view>

#include "set/middleware/ChannelTexts.h"
#include "set/recorder/LocalTimeText.h"
#include "set/text/JsonWriter.h"
#include "set/text/Utf8.h"

namespace epgset {
namespace {

using Json = PrettyJsonWriter;

void member(Json& json, const char* key, std::string_view text) {
    const std::string clean = repairedUtf8(text);
    json.Key(key);
    json.String(clean.data(), static_cast<rapidjson::SizeType>(clean.size()));
}

void memberOrNull(Json& json, const char* key, std::string_view text) {
    if (!text.empty()) {
        member(json, key, text);
    } else {
        json.Key(key);
        json.Null();
    }
}

void timeMember(Json& json, const char* key, std::optional<std::int64_t> time) {
    memberOrNull(json, key, time ? localIsoTime(*time) : "");
}

}  // namespace

std::string noteText(const RecordingNote& note) {
    JsonBuffer text;
    Json json(text);
    json.SetIndent(' ', 2);
    json.StartObject();
    member(json, "state", note.state);
    memberOrNull(json, "reason", note.reason);
    memberOrNull(json, "file", note.file);
    json.Key("bytes");
    json.Uint64(note.bytes);
    json.Key("channel");
    json.StartObject();
    member(json, "id", note.channelId);
    member(json, "num", note.channelNumber);
    member(json, "name", note.channelName);
    json.EndObject();
    member(json, "schedule_id", scheduleIdText(note.scheduleUid));
    member(json, "title", note.title);
    member(json, "synopsis", note.synopsis);
    timeMember(json, "planned_start", note.plannedStart);
    timeMember(json, "planned_end", note.plannedEnd);
    timeMember(json, "start", note.start);
    timeMember(json, "end", note.end);
    json.Key("breaks");
    json.Uint(note.breaks);
    memberOrNull(json, "latest_trouble", note.latestTrouble);
    json.EndObject();
    return std::string(text.GetString(), text.GetSize()) + "\n";
}

}  // namespace epgset
