#include "set/web/SetRoutes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "set/metrics/Metrics.h"
#include "set/metrics/RequestResource.h"
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

WebResponse metricsText(const SetFacts&) {
    WebResponse response;
    setHeader(response.headers, "Content-Type", "text/plain; version=0.0.4; charset=utf-8");
    setHeader(response.headers, "Cache-Control", "no-store");
    response.body = metrics().text();
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
    {"set/metrics", metricsText},
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

void count(const WebRequest& request, const WebResponse& response) {
    const bool hasPath = request.path.starts_with('/') && !holdsEncodedNul(request.path);
    const std::string resource = resourceOf(pathSegments(hasPath ? request.path : "*"));
    const bool sent = response.status != 304 && request.method != "HEAD";
    metrics().countAnswer(resource, methodOf(request.method), response.status,
                          sent ? bodyOf(response).size() : 0);
}

/// The answer to a request that is not let through to anything; nothing for one that is.
std::optional<WebResponse> refusal(const WebRequest& request) {
    if (holdsEncodedNul(request.path) || holdsEncodedNul(request.query)) {
        return textResponse(400, "a request holds no NUL");
    }
    return std::nullopt;
}

}  // namespace

SetRoutes::SetRoutes(PluginHost& plugin, SetFacts facts, PageFiles page, std::size_t answerCache)
    : plugin_(plugin), facts_(std::move(facts)), page_(std::move(page)), answers_(answerCache) {}

std::optional<WebResponse> SetRoutes::answerAtOnce(const WebRequest& request) {
    std::optional<WebResponse> response = route(request);
    if (response) count(request, *response);
    return response;
}

std::optional<WebResponse> SetRoutes::route(const WebRequest& request) {
    if (auto refused = refusal(request)) return refused;
    if (pathBelow(request.path, pluginMount)) return keptAnswer(request);

    const bool isPath = request.path.starts_with('/') || request.path.empty();
    const std::vector<std::string> segments = pathSegments(isPath ? request.path : "*");
    const bool isEvents = segments == pathSegments(eventsPath);
    std::optional<WebResponse> file = page_.answer(request, segments);
    const Resource* resource = findResource(segments);
    if (!isEvents && !file && resource == nullptr) {
        return textResponse(404, "there is nothing at this path");
    }
    if (!isRead(request)) return onlyRead();
    if (isEvents) return eventStream(request);
    return file ? std::move(*file) : resource->answer(facts_);
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

std::optional<WebResponse> SetRoutes::keptAnswer(const WebRequest& request) {
    const auto key = answerKey(request);
    if (!key) return std::nullopt;
    std::optional<WebResponse> response = answers_.find(*key, stateRevision());
    if (response) answerConditionally(request, *response);
    return response;
}

WebResponse SetRoutes::answerInTurn(const WebRequest& request) {
    const auto begun = std::chrono::steady_clock::now();
    const StateRevision before = stateRevision();
    WebResponse response = plugin_.answer(request, pathBelow(request.path, pluginMount).value_or(""));
    if (!changesNothing(request)) countChange(StatePart::Clients);
    const auto answered = std::chrono::steady_clock::now();
    tagEntity(request, response);
    if (const auto key = answerKey(request); key && stateRevision() == before) {
        answers_.keep(*key, before, response);
    }
    answerConditionally(request, response);
    metrics().countTime(RequestStage::Wait, begun - request.whole);
    metrics().countTime(RequestStage::Plugin, answered - begun);
    metrics().countTime(RequestStage::Tag, std::chrono::steady_clock::now() - answered);
    count(request, response);
    return response;
}

}  // namespace epgset
