#include "set/web/SetRoutes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "set/web/EntityTag.h"
#include "set/web/FrontPage.h"
#include "set/web/RequestPath.h"

namespace epgset {
namespace {

/// The first path segment of what the plug-in answers.
constexpr std::string_view pluginMount = "ws";

/// The path of the set's events, which alone has no end.
constexpr std::string_view eventsPath = "set/events";

WebResponse status(const SetFacts& facts) {
    WebResponse response;
    setHeader(response.headers, "Content-Type", "application/json;charset=utf-8");
    setHeader(response.headers, "Cache-Control", "no-cache");
    response.body = statusDocument(facts);
    return response;
}

WebResponse front(const SetFacts&) {
    WebResponse response;
    setHeader(response.headers, "Content-Type", "text/html;charset=utf-8");
    response.body = frontPage();
    return response;
}

/// A resource of the set itself, which is read with GET or HEAD.
struct Resource {
    std::string_view path;  ///< its segments, without a leading "/"
    WebResponse (*answer)(const SetFacts& facts);
};

constexpr Resource resources[] = {
    {"", front},
    {"set/status", status},
};

const Resource* findResource(const std::vector<std::string>& segments) {
    const auto* found = std::ranges::find_if(
        resources, [&](const Resource& resource) { return pathSegments(resource.path) == segments; });
    return found == std::end(resources) ? nullptr : found;
}

bool isRead(const WebRequest& request) {
    return request.method == "GET" || request.method == "HEAD";
}

WebResponse onlyRead() {
    WebResponse response = textResponse(405, "this resource can only be read");
    setHeader(response.headers, "Allow", "GET, HEAD");
    return response;
}

/// The answer to a request that is not let through to anything; nothing for one that is.
std::optional<WebResponse> refusal(const WebRequest& request) {
    if (holdsEncodedNul(request.path) || holdsEncodedNul(request.query)) {
        return textResponse(400, "a request holds no NUL");
    }
    return std::nullopt;
}

}  // namespace

SetRoutes::SetRoutes(PluginHost& plugin, SetFacts facts, PageFiles page)
    : plugin_(plugin), facts_(std::move(facts)), page_(std::move(page)) {}

std::optional<WebResponse> SetRoutes::answerAtOnce(const WebRequest& request) {
    if (auto refused = refusal(request)) return refused;
    if (pathBelow(request.path, pluginMount)) return std::nullopt;

    const bool isPath = request.path.starts_with('/') || request.path.empty();
    const std::vector<std::string> segments = pathSegments(isPath ? request.path : "*");
    const bool isEvents = segments == pathSegments(eventsPath);
    const std::optional<WebResponse> file = page_.answer(request, segments);
    const Resource* resource = findResource(segments);
    if (!isEvents && !file && resource == nullptr) {
        return textResponse(404, "there is nothing at this path");
    }
    if (!isRead(request)) return onlyRead();
    if (isEvents) return eventStream(request);
    return file ? *file : resource->answer(facts_);
}

WebResponse SetRoutes::eventStream(const WebRequest& request) {
    WebResponse response;
    if (request.method == "GET") {
        response.stream = feed_.open(headerValue(request.headers, "Last-Event-ID"));
        if (!response.stream) {
            response = textResponse(503, "too many clients listen for events");
            setHeader(response.headers, "Retry-After", "60");
            return response;
        }
    }
    setHeader(response.headers, "Content-Type", "text/event-stream");
    setHeader(response.headers, "Cache-Control", "no-store");
    return response;
}

WebResponse SetRoutes::answerInTurn(const WebRequest& request) {
    WebResponse response = plugin_.answer(request, pathBelow(request.path, pluginMount).value_or(""));
    applyEntityTag(request, response);
    return response;
}

}  // namespace epgset
