// From an HTTP request to the service and back: format, body, records, status, headers, document.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/TextCompare.h"
#include "host/ResponseDocument.h"
#include "host/Uri.h"
#include "plugin/EpgSQLPlugin.h"

namespace {

/// What one request owns. The destructor gives it back in a fixed order, also when an exception
/// passes; the host's functions are called with null as well.
struct RequestResources {
    TARNO_rstr_uri_path_st* pathRecord = nullptr;
    TARNO_rstr_uri_query_st* queryRecord = nullptr;
    void* document = nullptr;
    char* body = nullptr;

    RequestResources() = default;
    RequestResources(const RequestResources&) = delete;
    RequestResources& operator=(const RequestResources&) = delete;

    ~RequestResources() {
        TARNO_rstr_uri_delete_path(pathRecord);
        TARNO_rstr_uri_delete_query(queryRecord);
        TARNO_rdoc_destroy(document);
        if (body != nullptr) std::free(body);
    }
};

/// XML only when the client accepts it and does not accept JSON.
int formatFor(const Container::HttpRequest& request) {
    std::string accept;
    request.getHeader("HTTP_ACCEPT", accept);
    if (accept.find("xml") == std::string::npos || accept.find("json") != std::string::npos)
        return TARNO_RDOC_JSON;
    frameLogger.debug("[EPG callback] XML format");
    return TARNO_RDOC_XML;
}

/// Runs a request below "epg2" and answers its HTTP status, 0 counting as 200.
int runServiceRequest(const std::string& method, const RequestResources& resources, int bodyLength,
                      char* location) {
    const TARNO_rstr_uri_path_st& path = *resources.pathRecord;
    frameLogger.debug(" URL path parts: %s\n", path.parts[0]);
    const Container::SharedPtr<EpgSQLPluginVexmoor> plugin = EpgSQLPluginVexmoor::Instance();
    frameLogger.debug("EPG DB plugin instance created by EPG 2 plugin\n");
    if (plugin->checkDB_UpdateNeeded()) plugin->rebuildDB(true);

    if (path.count == 1) {
        const TARNO_rstr_uri_query_st* query = resources.queryRecord;
        if (query == nullptr || query->count < 1 || !isText(query->names[0], "sql")) return 404;
        frameLogger.debug("Executing Client SQL Command\n");
        return plugin->ExecuteClientCommand(resources.queryRecord, resources.document);
    }

    frameLogger.debug(" URL path parts: %s, %s\n", path.parts[0], path.parts[1]);
    if (path.parts[1] == nullptr) return 404;
    frameLogger.trace("REQUEST DATA: %s\n\n", resources.body);
    frameLogger.debug("Executing Client Rest Query\n");
    return plugin->ExecuteClientQuery(resources.document, method.c_str(), resources.pathRecord,
                                      resources.queryRecord, resources.body, bodyLength, location);
}

void writeDocument(void* document, int format, Container::HttpResponse& response, std::int32_t& status) {
    char* printed = nullptr;
    int length = 0;
    const int result = TARNO_rdoc_print_opt(document, format, &printed, &length, 1);
    const HeapText text(printed);
    if (result == 0 && text)
        response.getOutputStream().write(text.get(), length);
    else
        status = 404;  // without effect: the status line is sent, and an empty answer results
}

}  // namespace

int readRequestBody(Container::HttpRequest& request, char** bodyOut) {
    const int length = request.getContentLength();
    if (length < 0 || length > maximumBodyLength) return -1;
    if (length == 0) return 0;
    // Zeroed, because the result of the read is not examined: a short body ends early.
    HeapText body(static_cast<char*>(std::calloc(static_cast<std::size_t>(length) + 1, 1)));
    if (!body) return -1;
    request.getInputStream().read(body.get(), length);
    body.get()[length] = '\0';
    *bodyOut = body.release();
    return length;
}

int BridgeToWebConvIF(Container::HttpRequest& request, Container::HttpResponse& response) {
    std::string method;
    std::string path;
    std::string query;
    request.getMethod(method);
    request.getPath(path);
    request.getUri().getQuery(query);
    std::int32_t status = 404;
    char* location = nullptr;

    RequestResources resources;
    resources.pathRecord = TARNO_rstr_uri_parse_path(path.c_str(), -1);
    resources.queryRecord = TARNO_rstr_uri_parse_query(query.c_str(), -1);
    const TARNO_rstr_uri_path_st* pathRecord = resources.pathRecord;
    if (method.empty() || pathRecord == nullptr || pathRecord->count < 1 || pathRecord->parts == nullptr) {
        frameLogger.error("[EPG callback] Invalid param");
        return 0;
    }
    // The client's text is the format itself, on purpose; the host's logger makes it harmless.
    frameLogger.debug(pathRecord->parts[0]);

    const int format = formatFor(request);
    const int bodyLength = readRequestBody(request, &resources.body);
    if (bodyLength == -1) {
        frameLogger.error("[EPG callback] Request body read error");
        return 0;
    }
    resources.document = TARNO_rdoc_create_root();
    if (resources.document == nullptr) {
        frameLogger.error("[EPG callback] Cannot craete rdoc_root");  // spelled so
        return 0;
    }

    frameLogger.debug("URL path part num: %d\n", pathRecord->count);
    frameLogger.debug("Call to EPG 2 plugin\n");
    const bool isService = isText(pathRecord->parts[0], "epg2");
    if (pathRecord->count == 1 && !isService) {
        frameLogger.trace("URL not recognised!\n");
        return 1;  // answered with nothing at all, on purpose
    }
    if (isService) status = runServiceRequest(method, resources, bodyLength, location);
    if (status == 0) status = 200;

    response.setStatus(status);
    response.setHeader("Content-Type", format == TARNO_RDOC_XML ? "application/xml;charset=utf-8"
                                                                : "application/json;charset=utf-8");
    response.setHeader("Cache-Control", "no-cache");
    if (location != nullptr) {  // dormant on purpose: the router gets the null pointer by value
        response.setHeader("Location", location);
        std::free(location);
    }
    response.commitHeaders();
    if (status >= 200 && status <= 299) writeDocument(resources.document, format, response, status);
    return 1;
}
