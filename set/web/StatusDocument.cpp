#include "set/web/StatusDocument.h"

#include <fmt/chrono.h>

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "set/middleware/ChannelTexts.h"
#include "set/middleware/Clock.h"
#include "set/middleware/GuideWindow.h"
#include "set/middleware/Television.h"
#include "set/recorder/Recordings.h"
#include "set/text/IsoTime.h"
#include "set/text/JsonWriter.h"
#include "set/text/Utf8.h"

namespace epgset {
namespace {

using Json = JsonWriter<>;

void member(Json& json, const char* key, std::string_view text) {
    json.Key(key);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void member(Json& json, const char* key, std::uint64_t number) {
    json.Key(key);
    json.Uint64(number);
}

/// A UNIX time in ISO 8601, in the zone in which the middleware counts now.
std::string timeText(std::int64_t unixSeconds) {
    const int offset = clock().localOffset();
    return isoTime(fmt::gmtime(static_cast<std::time_t>(unixSeconds + offset)), offset);
}

std::string idOf(const Channel& channel) {
    return channelIdText(channel.tvMode, channel.major, channel.minor);
}

void writeChannel(Json& json, const Channel* channel) {
    if (!channel) {
        json.Null();
        return;
    }
    json.StartObject();
    member(json, "id", idOf(*channel));
    member(json, "num", channelNumberText(channel->major, channel->minor));
    member(json, "name", channel->name);
    json.EndObject();
}

/// Size of what has been recorded so far; 0 while there is no file.
std::uint64_t bytesOf(const std::filesystem::path& file) {
    std::error_code error;
    const std::uintmax_t bytes = std::filesystem::file_size(file, error);
    return error ? 0 : bytes;
}

void writeRecording(Json& json, const Recording& recording) {
    json.StartObject();
    member(json, "channel", idOf(*recording.channel));
    member(json, "schedule_id", scheduleIdText(recording.scheduleUid));
    member(json, "file", repairedUtf8(recording.file.string()));
    member(json, "start", timeText(recording.start));
    member(json, "bytes", bytesOf(recording.file));
    json.EndObject();
}

/// A text that may be missing.
void optionalMember(Json& json, const char* key, const std::string& text) {
    if (text.empty()) {
        json.Key(key);
        json.Null();
    } else {
        member(json, key, text);
    }
}

void writeGuide(Json& json, const GuideReport& report) {
    json.StartObject();
    member(json, "guide", repairedUtf8(report.name));
    optionalMember(json, "time", report.time == 0 ? std::string() : timeText(report.time));
    member(json, "channels", report.channels);
    member(json, "programs", report.programmes);
    member(json, "skipped", report.skipped);
    optionalMember(json, "error", repairedUtf8(report.error));
    json.EndObject();
}

const char* kindName(CReminder::RESERVE_TYPE kind) {
    if (kind == CReminder::RESERVE_VIEW) return "VIEW";
    return kind == CReminder::RESERVE_SERIES ? "SERIES" : "RECORD";
}

void writeDue(Json& json, const DueEntry& entry) {
    json.StartObject();
    member(json, "schedule_id", scheduleIdText(entry.uid));
    member(json, "channel", channelIdText(entry.tvMode, entry.major, entry.minor));
    member(json, "start", timeText(entry.start));
    member(json, "title", entry.title);
    member(json, "type", kindName(entry.kind));
    json.EndObject();
}

void writeState(Json& json, const SetState& state) {
    json.Key("guides");
    json.StartArray();
    for (const GuideReport& report : state.guides)
        writeGuide(json, report);
    json.EndArray();
    json.Key("tuners");
    json.StartObject();
    member(json, "total", static_cast<std::size_t>(state.tuners));
    member(json, "in_use", static_cast<std::size_t>(state.tunersInUse));
    json.EndObject();
    json.Key("storage");
    json.StartObject();
    optionalMember(json, "folder", repairedUtf8(state.recordingsFolder));
    json.Key("free");
    if (state.freeBytes) {
        json.Uint64(*state.freeBytes);
    } else {
        json.Null();
    }
    json.EndObject();
    json.Key("next");
    json.StartArray();
    for (const DueEntry& entry : state.next)
        writeDue(json, entry);
    json.EndArray();
}

}  // namespace

std::string statusDocument(const SetFacts& facts) {
    const auto guide = currentGuide();
    JsonBuffer text;
    Json json(text);
    json.StartObject();
    member(json, "clock", timeText(clock().now()));
    json.Key("channel");
    writeChannel(json, guideWindow().channel().get());
    json.Key("recordings");
    json.StartArray();
    for (const Recording& recording : recordings().running())
        writeRecording(json, recording);
    json.EndArray();
    member(json, "pvr", facts.pvr);
    member(json, "zone", facts.zone);
    member(json, "channels", guide->channels().size());
    member(json, "programs", guide->programmes().size());
    member(json, "programs_dropped", guide->programmesDropped());
    writeState(json, facts.state());
    json.EndObject();
    return {text.GetString(), text.GetSize()};
}

}  // namespace epgset
