// Query parameters as one SELECT statement: "channels?...", "programs?..." or, for the programmes of a
// channel, "CHANNEL-ID?...".
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/Input.h"
#include "fuzz/Parsing.h"
#include "fuzz/Require.h"
#include "fuzz/Service.h"
#include "fuzz/Target.h"
#include "host/ResponseDocument.h"
#include "set/database/DatabaseRequest.h"
#include "tests/support/OpenPlugin.h"

namespace epgfuzz {
namespace {

using epgtest::OpenPlugin;

struct DeleteQuery {
    void operator()(TARNO_rstr_uri_query_st* query) const { TARNO_rstr_uri_delete_query(query); }
};
using Query = std::unique_ptr<TARNO_rstr_uri_query_st, DeleteQuery>;

struct DestroyDocument {
    void operator()(void* document) const { TARNO_rdoc_destroy(document); }
};

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// While it lives, every statement that begins to run must be a SELECT.
class SelectsAlone {
public:
    SelectsAlone() {
        sqlite3_trace_v2(
            Service::database(), SQLITE_TRACE_STMT,
            [](unsigned, void* self, void* statement, void*) {
                return static_cast<SelectsAlone*>(self)->see(static_cast<sqlite3_stmt*>(statement));
            },
            this);
    }
    ~SelectsAlone() { sqlite3_trace_v2(Service::database(), 0, nullptr, nullptr); }
    SelectsAlone(const SelectsAlone&) = delete;
    SelectsAlone& operator=(const SelectsAlone&) = delete;

    bool listed = false;  ///< whether the statement of a list ran

private:
    int see(sqlite3_stmt* statement) {
        const std::string_view sql = sqlite3_sql(statement);
        require(sql.starts_with("SELECT "), "a SELECT runs", sql);
        require(sqlite3_stmt_readonly(statement) != 0, "it only reads", sql);
        listed = listed || sql.find(" FROM myView") != std::string_view::npos;
        return 0;
    }
};

enum class List { Channels, Programmes, ProgrammesOfChannel };

/// What a parameter is compared with, told independently of the service.
struct Condition {
    std::string_view parameter;
    const char* ofChannels;    ///< null: makes no condition
    const char* ofProgrammes;  ///< as above
};

constexpr std::array conditions = {
    Condition{"name", "SEARCH_SCORE(ChannelName, ?) > 0", "SEARCH_SCORE(ProgramName, ?) > 0"},
    Condition{"program_name", "SEARCH_SCORE(ProgramName, ?) > 0", nullptr},
    Condition{"channel_name", nullptr, "SEARCH_SCORE(ChannelName, ?) > 0"},
    Condition{"channel_num", "ChannelNumber = ?", "ChannelNumber = ?"},
    Condition{"antenna", "AntennaType = ?", "AntennaType = ?"},
    Condition{"scrambled", "ScrambledFlag = ?", "ScrambledFlag = ?"},
    Condition{"service_type", "ServiceType = ?", "ServiceType = ?"},
    Condition{"start", "ProgramStartTime >= ?", "ProgramStartTime >= ?"},
    Condition{"end", "ProgramEndTime <= ?", "ProgramEndTime <= ?"},
};

/// How many rows a list should have: the values are bound, so that no text can be anything but a value.
int expectedRows(List list, const std::string& channelId,
                 const std::map<std::string, std::string>& parameters) {
    std::string sql = list == List::Channels
                          ? "SELECT ChannelId FROM myView WHERE ScheduleId = '' AND NOT ServiceType = '' AND "
                            "NOT AntennaType = ''"
                          : "SELECT ChannelId FROM myView WHERE NOT ProgramName = 'channel_stub'";
    std::vector<std::string> values;
    if (list == List::ProgrammesOfChannel) {
        sql += " AND ChannelId = ?";
        values.push_back(channelId);
    }
    for (const Condition& condition : conditions) {
        const char* const term = list == List::Channels ? condition.ofChannels : condition.ofProgrammes;
        const auto found = parameters.find(std::string(condition.parameter));
        if (term == nullptr || found == parameters.end()) continue;
        sql += std::string(" AND ") + term;
        const bool isTime = condition.parameter == "start" || condition.parameter == "end";
        values.push_back(isTime ? std::to_string(t_get_UNIX_from_ISO8601(found->second.c_str()))
                                : found->second);
    }
    if (list == List::Channels) sql += " GROUP BY ChannelId";
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(Service::database(), sql.c_str(), -1, &prepared, nullptr);
    require(prepared != nullptr, "the statement of the comparison compiles", sql);
    const std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement(prepared);
    for (std::size_t i = 0; i < values.size(); ++i)
        sqlite3_bind_text(prepared, static_cast<int>(i) + 1, values[i].data(),
                          static_cast<int>(values[i].size()), SQLITE_STATIC);
    int rows = 0;
    while (sqlite3_step(prepared) == SQLITE_ROW)
        ++rows;
    return rows;
}

int totalOf(void* document, std::string_view input) {
    char* text = nullptr;
    int length = 0;
    require(TARNO_rdoc_print_opt(document, TARNO_RDOC_JSON, &text, &length, 1) == 0, "the answer is printed");
    const std::unique_ptr<char, void (*)(void*)> owned(text, &std::free);
    const auto json = parsedJson({text, static_cast<std::size_t>(length)});
    require(json && json->IsObject(), "the answer is a JSON object", input);
    const auto total = json->FindMember("items_total");
    return total == json->MemberEnd() ? 0 : total->value.GetInt();
}

int runList(List list, const std::string& channelId, TARNO_rstr_uri_query_st* query, void* document) {
    const auto& connection = OpenPlugin::epgDBConnection;
    if (list == List::Channels) return OpenPlugin::m_execChnlListSqlQuery(query, document, "GET", connection);
    if (list == List::Programmes)
        return OpenPlugin::m_execPrgmListSqlQuery(query, document, "GET", connection);
    return OpenPlugin::m_execPrgmListForChnlSqlQuery(channelId.c_str(), query, document, "GET", connection);
}

}  // namespace

void fuzzQueryParameters(std::string_view input) {
    const RestoredService service;
    const std::string channelId(upToNul(takeUpTo(input, "?")));
    const List list = channelId == "channels"   ? List::Channels
                      : channelId == "programs" ? List::Programmes
                                                : List::ProgrammesOfChannel;
    const Query query(TARNO_rstr_uri_parse_query(input.data(), static_cast<int>(input.size())));
    if (!query || OpenPlugin::m_validateQueryParams(query.get()) != 0) return;

    const auto changes = sqlite3_total_changes64(Service::database());
    const std::unique_ptr<void, DestroyDocument> document(TARNO_rdoc_create_root());
    int status = 0;
    bool listed = false;
    {
        const epgset::DatabaseRequest bound(Service::statementLimit);
        const SelectsAlone trace;
        status = runList(list, channelId, query.get(), document.get());
        listed = trace.listed;
    }
    require(status == 200 || status == 204 || status == 400 || status == 404, "the status is one of a list");
    require(sqlite3_total_changes64(Service::database()) == changes, "nothing is written", input);

    // Values between quotes are put in as they come, on purpose; those without a quote stay inside theirs.
    const auto parameters = OpenPlugin::m_copyQueryParams(query.get());
    bool quoted = channelId.find('\'') != std::string::npos;
    for (const auto& [name, value] : parameters)
        quoted = quoted || value.find('\'') != std::string::npos;
    if (quoted || status == 400 || status == 404) return;
    if (epgset::lastDatabaseError() == sqlite3_errstr(SQLITE_INTERRUPT)) return;  // its time was up
    const bool mayNotCompile = parameters.contains("select") || parameters.contains("sort_order");
    require(listed || mayNotCompile, "the statement compiles", input);
    const int total = totalOf(document.get(), input);
    if (!listed) {
        require(status == 204 && total == 0, "a statement that does not compile lists nothing", input);
        return;
    }
    require(total == expectedRows(list, channelId, parameters), "the list is what was asked for", input);
}

}  // namespace epgfuzz
