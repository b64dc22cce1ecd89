#include "fuzz/Service.h"

#include <sqlite3.h>

#include <algorithm>
#include <ctime>
#include <vector>

#include "fuzz/Parsing.h"
#include "fuzz/Require.h"
#include "host/CRemindInfo.h"
#include "host/Plugin.h"
#include "set/database/DatabaseRequest.h"
#include "set/log/LogControl.h"
#include "set/middleware/StateRevision.h"
#include "set/web/RequestPath.h"
#include "tests/support/OpenPlugin.h"
#include "tests/support/TestGuide.h"

extern "C" int pluginMainEntry(std::uintptr_t hostContext, const PluginDescriptor** descriptorOut);

namespace epgfuzz {
namespace {

using epgtest::OpenPlugin;

constexpr std::int64_t now = 1'787'443'200;
constexpr int allEntries = 2;

const PluginDescriptor& plainDescriptor() {
    static const PluginDescriptor* const descriptor = [] {
        const PluginDescriptor* handedOut = nullptr;
        pluginMainEntry(0, &handedOut);
        return handedOut;
    }();
    return *descriptor;
}

/// The plug-in's own, but statements of a request have less time, so that the end of it is met often.
const PluginDescriptor& hurriedDescriptor() {
    static const PluginDescriptor descriptor = [] {
        PluginDescriptor hurried = plainDescriptor();
        hurried.handleRequest = [](Container::HttpRequest& request, Container::HttpResponse& response) {
            const epgset::DatabaseRequest bound(Service::statementLimit);
            return plainDescriptor().handleRequest(request, response);
        };
        hurried.onTimer = [] {
            const epgset::DatabaseRequest bound(Service::statementLimit,
                                                epgset::DatabaseRequest::Bound::EachStatement);
            plainDescriptor().onTimer();
        };
        return hurried;
    }();
    return descriptor;
}

/// Processor time of this thread, which other programs of the machine do not add to.
std::chrono::nanoseconds processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Asserts, when it goes, that not much more was worked meanwhile than the statements' limit.
class TimeLimit {
public:
    explicit TimeLimit(std::string_view what) : what_(what) {}
    ~TimeLimit() {
        // Beside the statements: the fill of the table, and what sanitizers cost.
        constexpr std::chrono::seconds rest{2};
        require(processorTime() - began_ < Service::statementLimit + rest, "it does not take long", what_);
    }
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;

private:
    std::string_view what_;
    std::chrono::nanoseconds began_ = processorTime();
};

int schemaVersion(sqlite3* database) {
    sqlite3_stmt* statement = nullptr;
    int version = -1;
    if (sqlite3_prepare_v2(database, "PRAGMA schema_version", -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        version = sqlite3_column_int(statement, 0);
    sqlite3_finalize(statement);
    return version;
}

/// All rows of the table, as one text; empty where there is no such table.
std::string contentOf(sqlite3* database) {
    std::string content;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, "SELECT rowid, * FROM myView ORDER BY rowid", -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* const text = sqlite3_column_text(statement, i);
            content += text == nullptr ? "(none)" : reinterpret_cast<const char*>(text);
            content += '\x1F';
        }
    }
    sqlite3_finalize(statement);
    return content;
}

/// Takes out of the table what bookings leave in it.
void clearBookings(sqlite3* database) {
    sqlite3_exec(database,
                 "DELETE FROM myView WHERE ProgramName='scheduled_event';"
                 "UPDATE myView SET ScheduleId='', ScheduleType='', Repeat='' WHERE ScheduleId IS NOT ''",
                 nullptr, nullptr, nullptr);
}

void useSmallGuide() {
    epgtest::TestGuide guide;
    const std::vector<epgtest::TestGuide::Channel> channels = {
        guide.channel(epgtest::Air, 7, 2, "News 24"), guide.channel(epgtest::Air, 8, 0, "O'Neil & Friends"),
        guide.channel(epgtest::Satellite, 7, 2, "Café Télé"), guide.channel(epgtest::Bs, 101, 0, "映画")};
    for (const auto channel : channels) {
        guide.programme(channel, now - 7200, now - 3600, "Past", 1, "What was on");
        guide.programme(channel, now - 600, now + 600, "Present", 2);
        for (int i = 3; i <= 6; ++i) {
            const auto start = static_cast<std::uint32_t>(now + 3600 * i);
            guide.programme(channel, start, start + 1800, "Film: The Captain's Table", i, "A film", "Films");
        }
    }
    guide.use();
}

bool isPrintable(const std::string& text) {
    return std::ranges::all_of(text,
                               [](char c) { return static_cast<unsigned char>(c) >= ' ' && c != 0x7F; });
}

void checkAnswer(const epgset::WebResponse& response) {
    require(response.status >= 200 && response.status <= 599, "an answer has a final status");
    for (const auto& [name, value] : response.headers)
        require(isPrintable(name) && isPrintable(value), "a header is one line", value);
    const std::string& body = epgset::bodyOf(response);
    if (body.empty() || response.stream) return;
    const std::string type = epgset::headerValue(response.headers, "Content-Type");
    if (type.starts_with("application/json")) require(isJson(body), "the answer is JSON", body);
    if (type.starts_with("application/xml")) require(isXml(body), "the answer is XML", body);
}

}  // namespace

Service& Service::instance() {
    static Service service;
    return service;
}

Service::Service()
    : clock_(now),
      store_(folder_.path() / epgset::ReminderStore::fileName),
      plugin_(hurriedDescriptor()),
      routes_(plugin_, {}, {}, 64 * 1024) {
    // Everything is formatted and nothing is written.
    epgset::LogControl::setLevel(Container::Logger::Trace);
    epgset::LogControl::capture([](const epgset::LogRecord&) {});
    epgset::useClock(&clock_);
    epgset::useReminder(&store_);
    fill();
}

Service::~Service() {
    OpenPlugin::forget();
    epgset::useReminder(nullptr);
    epgset::useClock(nullptr);
}

void Service::fill() {
    useSmallGuide();
    OpenPlugin::forget();
    answer("GET", "/ws/epg2/antennas");  // the first request fills the table once more
    changesAtFirst_ = sqlite3_total_changes64(database());
    schemaAtFirst_ = schemaVersion(database());
    contentAtFirst_ = contentOf(database());
}

sqlite3* Service::database() {
    return OpenPlugin::epgDBConnection->handle();
}

epgset::WebResponse Service::answer(const epgset::WebRequest& request) {
    const TimeLimit limit(request.query);
    std::optional<epgset::WebResponse> response = routes_.answerAtOnce(request);
    if (!response) response = routes_.answerInTurn(request);
    checkAnswer(*response);
    return std::move(*response);
}

epgset::WebResponse Service::answer(std::string_view method, std::string_view target, std::string_view body) {
    const epgset::RequestTarget split = epgset::splitTarget(target);
    epgset::WebRequest request;
    request.method = method;
    request.path = split.path;
    request.query = split.query;
    request.body = body;
    request.bodyLength = static_cast<std::int64_t>(body.size());
    return answer(request);
}

void Service::maintain() {
    const TimeLimit limit("maintenance");
    plugin_.maintain();
}

bool Service::isAsAtFirst() const {
    return sqlite3_total_changes64(database()) == changesAtFirst_ &&
           schemaVersion(database()) == schemaAtFirst_;
}

void Service::restore() {
    int count = 0;
    std::vector<CRemindInfo> entries;
    store_.GetRemindItemByType(count, entries, allEntries);
    for (const CRemindInfo& entry : entries)
        store_.DeleteRemindItemByUid(entry.UID());
    if (entries.empty() && isAsAtFirst()) return;
    if (schemaVersion(database()) == schemaAtFirst_) {
        clearBookings(database());
        changesAtFirst_ = sqlite3_total_changes64(database());
        epgset::countChange(epgset::StatePart::Table);
        if (contentOf(database()) == contentAtFirst_) return;
    }
    fill();
}

}  // namespace epgfuzz
