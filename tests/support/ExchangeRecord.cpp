#include "tests/support/ExchangeRecord.h"

#include <fcntl.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace epgset::test {
namespace {

using Json = rapidjson::Writer<rapidjson::StringBuffer>;

void text(Json& json, const std::string& value) {
    json.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

void member(Json& json, const char* key, const std::string& value) {
    json.Key(key);
    text(json, value);
}

std::string lineOf(const std::string& method, const std::string& target, const HttpAnswer& answer) {
    rapidjson::StringBuffer line;
    Json json(line);
    json.StartObject();
    member(json, "method", method);
    member(json, "target", target);
    json.Key("status");
    json.Int(answer.status);
    json.Key("headers");
    json.StartObject();
    for (const auto& [name, value] : answer.headers)
        member(json, name.c_str(), value);
    json.EndObject();
    member(json, "body", answer.body);
    json.EndObject();
    return std::string(line.GetString(), line.GetSize()) + '\n';
}

}  // namespace

void recordExchange(const std::string& method, const std::string& target, const HttpAnswer& answer) {
    const char* path = std::getenv("EPG_RECORD_EXCHANGES");
    if (path == nullptr || *path == '\0') return;
    const std::string line = lineOf(method, target, answer);
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) throw std::runtime_error(std::string("cannot record to ") + path);
    // One write a line, so that the lines of several writers do not mix.
    const ssize_t written = write(file, line.data(), line.size());
    close(file);
    if (written != static_cast<ssize_t>(line.size())) {
        throw std::runtime_error(std::string("cannot record to ") + path);
    }
}

}  // namespace epgset::test
