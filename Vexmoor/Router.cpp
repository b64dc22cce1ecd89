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

constinit const EpgSQLPluginVexmoor::Route EpgSQLPluginVexmoor::m_routes[] = {
    {"channels", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execChnlListSqlQuery(r.query, r.document, r.method, r.connection); },
     "Channels query against EpgSQLPlug-in\n"},
    {"channels", 3, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execChnlInfoSqlQuery(r.id, r.document, r.method, r.connection); }},
    {"channels", 4, "programs", Methods::Any,
     [](const RestRequest& r) {
         return m_execPrgmListForChnlSqlQuery(r.id, r.query, r.document, r.method, r.connection);
     }},
    {"programs", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execPrgmListSqlQuery(r.query, r.document, r.method, r.connection); },
     "Programs query against EpgSQLPlug-in\n"},
    {"programs", 3, nullptr, Methods::Any,
     [](const RestRequest& r) { return m_execPrgmInfoSqlQuery(r.id, r.document, r.method, r.connection); }},
    {"programs", 4, "detail", Methods::Any,
     [](const RestRequest& r) { return m_getPrgmDetailQuery(r.id, r.document, r.method, r.connection); }},
    {"programs", 4, "schedule", Methods::Change,
     [](const RestRequest& r) {
         return m_modifyPrgmSchedule(r.document, r.method, r.id, r.body, r.bodyLength, nullptr);
     },
     nullptr, "Schedule method being invoked!!\n"},
    {"programs", 4, "schedule", Methods::Any,
     [](const RestRequest& r) {
         return m_execPrgmSchedInfoSqlQuery(r.id, r.document, r.method, r.connection);
     },
     nullptr, "Schedule method being invoked!!\n"},
    {"schedules", 2, nullptr, Methods::Get,
     [](const RestRequest& r) { return m_execSchedulesSqlQuery(r.document, r.method, r.connection); },
     "Schedule query against EpgSQLPlug-in\n"},
    {"schedules", 2, nullptr, Methods::Change,
     [](const RestRequest& r) {
         return m_addSchedule(r.document, r.method, r.query, r.body, r.bodyLength, nullptr);
     },
     "Schedule query against EpgSQLPlug-in\n"},
    {"schedules", 3, nullptr, Methods::Get,
     [](const RestRequest& r) { return m_execSchedInfoSqlQuery(r.id, r.document, r.method, r.connection); }},
    {"schedules", 3, nullptr, Methods::Change,
     [](const RestRequest& r) { return m_modifySchedule(r.document, r.method, r.id, r.body, r.bodyLength); }},
    {"recordingAvailable", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return t_recordingAvailable(r.document, r.method); }, nullptr, nullptr, true},
    {"recordingSpec", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return t_recordingSpec(r.document, r.method); }, nullptr, nullptr, true},
    {"antennas", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return t_antennas(r.document, r.method); }, nullptr, nullptr, true},
    {"stopRecording", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return t_recordStop(r.document, r.method, r.query); }, nullptr, nullptr,
     true},
    {"UPnP_Info", 2, nullptr, Methods::Any,
     [](const RestRequest& r) { return t_UPnP_Info(r.document, r.method); }, nullptr, nullptr, true},
};

int EpgSQLPluginVexmoor::ExecuteClientQuery(void* document, const char* method,
                                            TARNO_rstr_uri_path_st* pathRecord,
                                            TARNO_rstr_uri_query_st* queryRecord, char* body, int bodyLength,
                                            char* /*location*/) {
    m_mirrorSchedules(epgDBConnection);
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
    const int status = m_SendSQLCmd(queryRecord, epgDBConnection, document);
    pluginLogger.trace("A standard SQL statement has been entered\n");
    return status;
}

// The location that the next two are handed is a copy, which cannot take a text back to the client: the
// services get none.

int EpgSQLPluginVexmoor::m_addSchedule(void* document, const char* method,
                                       TARNO_rstr_uri_query_st* queryRecord, char* body, int bodyLength,
                                       char* /*location*/) {
    pluginLogger.trace("Pre call to t_schedules\n");
    return t_schedules(document, method, queryRecord, body, bodyLength, nullptr);
}

int EpgSQLPluginVexmoor::m_modifyPrgmSchedule(void* document, const char* method, const char* programId,
                                              char* body, int bodyLength, char* /*location*/) {
    pluginLogger.trace("Pre call to t_programs_id_schedule\n");
    const int status = t_programs_id_schedule(document, method, programId, body, bodyLength, nullptr);
    pluginLogger.trace("Return values from t_programs_id_schedule: %d\n", status);
    pluginLogger.trace("Post call to t_programs_id_schedule\n");
    pluginLogger.trace("return val from t_programs_id_schedule: %d \n", status);
    return status;
}

int EpgSQLPluginVexmoor::m_modifySchedule(void* document, const char* method, const char* scheduleId,
                                          char* body, int bodyLength) {
    pluginLogger.trace("Pre call to t_schedules_id\n");
    const int status = t_schedules_id(document, method, scheduleId, body, bodyLength);
    pluginLogger.trace("Post call to t_schedules_id\n");
    pluginLogger.trace("return val from t_schedules_id: %d \n", status);
    return status;
}

int EpgSQLPluginVexmoor::m_ParseClientCommand(TARNO_rstr_uri_query_st* queryRecord, void* /*document*/) {
    pluginLogger.debug("SQL QUERY VALUE: %s, %s \n", queryRecord->names[0], queryRecord->values[0]);
    return isText(queryRecord->names[0], "sql") ? 0 : -1;
}
