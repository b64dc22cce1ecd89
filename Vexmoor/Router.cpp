// The router: path, method and query of a request to one handler.
#include <cstring>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/TextCompare.h"

namespace {

enum class Methods { Any, Get, Change };  // Change: PUT, POST and DELETE

bool matches(Methods methods, const char* method) {
    switch (methods) {
        case Methods::Get:
            return isText(method, "GET");
        case Methods::Change:
            return isText(method, "PUT") || isText(method, "POST") || isText(method, "DELETE");
        default:
            return true;
    }
}

}  // namespace

/// One routed request, as the handlers of the table take it.
struct EpgSQLPluginVexmoor::RestRequest {
    void* document;
    const char* method;
    const char* id;  ///< the path's third part; null when there is none
    TARNO_rstr_uri_query_st* query;
    char* body;
    int bodyLength;
    ConnectionPtr connection;
};

/// One row of the routing table. The first row that fits a request answers it.
struct EpgSQLPluginVexmoor::Route {
    const char* resource;
    int count;         ///< path parts, "epg2" included
    const char* last;  ///< the fourth part; null: not looked at
    Methods methods;
    int (*handler)(const RestRequest& request);
    const char* debugLog = nullptr;
    const char* traceLog = nullptr;
    bool alwaysOk = false;  ///< the handler's own result is not heard: the status is 200
};

/// Stands where a resource's handler is not built yet.
int EpgSQLPluginVexmoor::m_answerUnbuilt(const RestRequest& request) {
    pluginLogger.warning("No handler yet for this %s request\n", request.method);
    return 404;
}

constinit const EpgSQLPluginVexmoor::Route EpgSQLPluginVexmoor::m_routes[] = {
    {"channels", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execChnlListSqlQuery(r.query, r.document, r.method, r.connection); },
     "Channels query against EpgSQLPlug-in\n"},
    {"channels", 3, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execChnlInfoSqlQuery(r.id, r.document, r.method, r.connection); }},
    {"channels", 4, "programs", Methods::Any, m_answerUnbuilt},
    {"programs", 2, nullptr, Methods::Any, m_answerUnbuilt, "Programs query against EpgSQLPlug-in\n"},
    {"programs", 3, nullptr, Methods::Any, m_answerUnbuilt},
    {"programs", 4, "detail", Methods::Any, m_answerUnbuilt},
    {"programs", 4, "schedule", Methods::Any, m_answerUnbuilt, nullptr, "Schedule method being invoked!!\n"},
    {"schedules", 2, nullptr, Methods::Get, m_answerUnbuilt, "Schedule query against EpgSQLPlug-in\n"},
    {"schedules", 2, nullptr, Methods::Change, m_answerUnbuilt, "Schedule query against EpgSQLPlug-in\n"},
    {"schedules", 3, nullptr, Methods::Get, m_answerUnbuilt},
    {"schedules", 3, nullptr, Methods::Change, m_answerUnbuilt},
    {"recordingAvailable", 2, nullptr, Methods::Any, m_answerUnbuilt, nullptr, nullptr, true},
    {"recordingSpec", 2, nullptr, Methods::Any, m_answerUnbuilt, nullptr, nullptr, true},
    {"antennas", 2, nullptr, Methods::Any, m_answerUnbuilt, nullptr, nullptr, true},
    {"stopRecording", 2, nullptr, Methods::Any, m_answerUnbuilt, nullptr, nullptr, true},
    {"UPnP_Info", 2, nullptr, Methods::Any, m_answerUnbuilt, nullptr, nullptr, true},
};

int EpgSQLPluginVexmoor::ExecuteClientQuery(void* document, const char* method,
                                            TARNO_rstr_uri_path_st* pathRecord,
                                            TARNO_rstr_uri_query_st* queryRecord, char* body, int bodyLength,
                                            char* /*location*/) {
    if (pathRecord == nullptr || method == nullptr) {
        pluginLogger.trace("Null parameters supplied to m_ExecuteClientQuery\n");
        return 404;
    }
    if (m_validateQueryParams(queryRecord) == -1) return 400;
    pluginLogger.trace("REQUEST DATA - Exec Query: %s\n\n", body);

    const auto part = [pathRecord](int index) -> const char* {
        return index < pathRecord->count ? pathRecord->parts[index] : nullptr;
    };
    for (const Route& route : m_routes) {
        if (!isText(part(1), route.resource) || pathRecord->count != route.count) continue;
        if (route.last != nullptr && !isText(part(3), route.last)) continue;
        if (!matches(route.methods, method)) continue;
        if (route.debugLog != nullptr) pluginLogger.debug(route.debugLog);
        if (route.traceLog != nullptr) pluginLogger.trace(route.traceLog);
        const int status =
            route.handler({document, method, part(2), queryRecord, body, bodyLength, epgDBConnection});
        return route.alwaysOk ? 200 : status;
    }
    return 400;
}

int EpgSQLPluginVexmoor::ExecuteClientCommand(TARNO_rstr_uri_query_st* queryRecord, void* document) {
    if (queryRecord == nullptr || document == nullptr || queryRecord->count < 1 ||
        queryRecord->values[0] == nullptr)
        return 404;
    if (std::strstr(queryRecord->values[0], "CREATE VIEW") != nullptr) {
        pluginLogger.trace("A CREATE VIEW statement has been entered\n");
        return 404;
    }
    pluginLogger.warning("No handler yet for a client's SQL\n");
    return 404;
}

int EpgSQLPluginVexmoor::m_ParseClientCommand(TARNO_rstr_uri_query_st* queryRecord, void* /*document*/) {
    pluginLogger.debug("SQL QUERY VALUE: %s, %s \n", queryRecord->names[0], queryRecord->values[0]);
    return isText(queryRecord->names[0], "sql") ? 0 : -1;
}
