// The least that a set can do, measured with the bare libraries on the same guide and rows: for each request
// SQLite stepping its statement and the kernel taking its answer, for the start reading the guide and
// filling the table twice.
//
//   floor GUIDE START
//
// Prints a line of JSON for the start, and one for each line that it reads: "book PROGRAMME", "preparation"
// for what precedes every request, or "get FORM PATH [QUERY]", where FORM is json or xml and the path begins
// at "epg2". All times are milliseconds of processor time. SQLite takes its memory here as in the set.
#include <libxml/xmlreader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/BareDatabase.h"
#include "bench/GuideService.h"
#include "bench/LoopbackSocket.h"
#include "bench/ProcessorTime.h"
#include "set/epghost/TimeOption.h"
#include "set/guide/GuideLoader.h"
#include "tests/support/OpenPlugin.h"
#include "tests/support/SqlTrace.h"

namespace {

using epgbench::BareDatabase;
using epgbench::GuideService;
using epgbench::medianMilliseconds;
using epgtest::OpenPlugin;
using Json = rapidjson::Writer<rapidjson::StringBuffer>;

struct Get {
    bool xml = false;
    std::string path;
    std::string query;
};

/// Reads all nodes of a guide with the library alone.
void readXml(const std::string& path) {
    const std::unique_ptr<xmlTextReader, decltype(&xmlFreeTextReader)> reader(
        xmlReaderForFile(path.c_str(), nullptr, XML_PARSE_NONET), &xmlFreeTextReader);
    if (!reader) throw std::runtime_error("cannot read " + path);
    int result = 1;
    while (result == 1)
        result = xmlTextReaderRead(reader.get());
    if (result != 0) throw std::runtime_error(path + " is no XML");
}

/// The statements of one fill that make the table and its rows, without what is for its indexes.
std::vector<std::string> fillStatements() {
    const epgtest::SqlTrace trace(*OpenPlugin::epgDBConnection);
    EpgSQLPluginVexmoor::Instance()->rebuildDB(true);
    std::vector<std::string> statements = trace.statements;
    std::erase_if(statements, [](const std::string& text) {
        return text.rfind("INSERT INTO myView", 0) != 0 && text.rfind("CREATE TABLE myView", 0) != 0;
    });
    return statements;
}

/// The statement that finds the rows of a request: the last one that it runs.
std::string statementOf(const Get& request) {
    const epgtest::SqlTrace trace(*OpenPlugin::epgDBConnection);
    GuideService::send("GET", request.path, request.query);
    for (auto text = trace.statements.rbegin(); text != trace.statements.rend(); ++text) {
        if (text->rfind("SELECT", 0) == 0) return *text;
    }
    throw std::runtime_error(request.path + ": runs no statement");
}

/// The statement as bare SQLite knows it: a search by score becomes one by LIKE.
std::string bareStatement(const std::string& sql) {
    static const std::regex score(R"(SEARCH_SCORE\((\w+),'([^']*)'\)>0)");
    return std::regex_replace(sql, score, "$1 LIKE '%$2%'");
}

void add(Json& json, const char* key, double milliseconds) {
    json.Key(key);
    json.Double(milliseconds);
}

class Floor {
public:
    Floor() {
        indexed_.copyFrom(OpenPlugin::epgDBConnection->handle());
        plain_.copyFrom(OpenPlugin::epgDBConnection->handle());
        plain_.dropIndexes();
    }

    void measure(const Get& request, Json& json) const {
        const std::string sql = bareStatement(statementOf(request));
        const auto send = [&] {
            return GuideService::send("GET", request.path, request.query, "", request.xml);
        };
        const epgbench::Answer answer = send();
        const std::string bytes = std::string(headerBytes, ' ') + answer.body;
        json.Key("statement");
        json.String(sql.c_str());
        json.Key("rows");
        json.Int64(indexed_.run(sql));
        json.Key("bytes");
        json.Uint64(answer.body.size());
        add(json, "sqlite_ms", medianMilliseconds([&] { indexed_.run(sql); }));
        add(json, "sqlite_without_indexes_ms", medianMilliseconds([&] { plain_.run(sql); }));
        add(json, "socket_ms", medianMilliseconds([&] { socket_.write(bytes); }));
        add(json, "service_ms", medianMilliseconds(send));
    }

private:
    static constexpr std::size_t headerBytes = 200;  // about what the set's own take

    BareDatabase indexed_;
    BareDatabase plain_;
    epgbench::LoopbackSocket socket_;
};

void measureStart(const std::string& guide, Json& json) {
    const std::vector<std::string> statements = fillStatements();
    const double read = medianMilliseconds([&] { readXml(guide); });
    const double insert = medianMilliseconds([&] { BareDatabase().runAll(statements); });
    add(json, "read_ms", read);
    add(json, "insert_ms", insert);
    add(json, "start_ms", read + 2 * insert);
}

/// What every request does before its own statement; the mirror as it is when nothing has changed, and when
/// it is written.
void measurePreparation(Json& json) {
    add(json, "update_check_ms",
        medianMilliseconds([] { EpgSQLPluginVexmoor::Instance()->checkDB_UpdateNeeded(); }));
    OpenPlugin::m_mirrorSchedules(OpenPlugin::epgDBConnection);
    add(json, "mirror_ms",
        medianMilliseconds([] { OpenPlugin::m_mirrorSchedules(OpenPlugin::epgDBConnection); }));
    add(json, "mirror_written_ms", medianMilliseconds([] {
            OpenPlugin::m_removeDBSchedData(OpenPlugin::epgDBConnection);
            OpenPlugin::m_updateDBSchedData(OpenPlugin::epgDBConnection);
        }));
}

std::int64_t databaseBytes() {
    std::int64_t bytes = 0;
    const auto keep = [](void* kept, int, char** values, char**) {
        *static_cast<std::int64_t*>(kept) = std::stoll(values[0]);
        return 0;
    };
    sqlite3_exec(OpenPlugin::epgDBConnection->handle(),
                 "SELECT page_count*page_size FROM pragma_page_count, pragma_page_size", keep, &bytes,
                 nullptr);
    return bytes;
}

/// Prints what `work` adds to an object, in one line.
template <typename Work>
void print(const Work& work) {
    rapidjson::StringBuffer text;
    Json json(text);
    json.StartObject();
    work(json);
    json.EndObject();
    std::puts(text.GetString());
    std::fflush(stdout);
}

/// `floor` is made for the first request, so that its tables hold what was booked before.
void answer(const std::string& line, std::optional<Floor>& floor) {
    std::istringstream words(line);
    std::string verb;
    std::string first;
    Get get;
    words >> verb >> first >> get.path >> get.query;
    get.xml = first == "xml";
    if (verb == "book") {
        GuideService::book(first);
        print([](Json&) {});
    } else if (verb == "preparation") {
        print(measurePreparation);
    } else if (verb == "get" && !get.path.empty()) {
        if (!floor) floor.emplace();
        print([&](Json& json) { floor->measure(get, json); });
    } else {
        throw std::runtime_error("no request: " + line);
    }
}

void measure(const std::string& guidePath, const std::string& start) {
    const auto now = epgset::parseTimeOption(start);
    if (!now) throw std::runtime_error("no time: " + start);
    epgset::EventIds ids;
    epgset::GuideSources sources;
    sources.guides.emplace_back(guidePath);
    sources.now = *now;
    const GuideService service(epgset::loadGuide(sources, ids).guide, *now);

    print([&](Json& json) {
        json.Key("sqlite");
        json.String(sqlite3_libversion());
        measureStart(guidePath, json);
        json.Key("database_bytes");
        json.Int64(databaseBytes());
    });
    std::optional<Floor> floor;
    for (std::string line; std::getline(std::cin, line);)
        answer(line, floor);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: floor GUIDE START\n");
        return 2;
    }
    try {
        measure(argv[1], argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "floor: %s\n", error.what());
        return 1;
    }
}
