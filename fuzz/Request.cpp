// Requests of clients, one after the other: method, target and headers in lines, then the body. Several are
// parted by a line of "====".
#include "fuzz/Input.h"
#include "fuzz/Service.h"
#include "fuzz/Target.h"
#include "set/web/RequestPath.h"

namespace epgfuzz {
namespace {

constexpr std::size_t mostRequests = 8;

/// A request as the HTTP server would hand it over: no NUL but in the body.
epgset::WebRequest requestOf(std::string_view text) {
    std::string_view head = takeUpTo(text, "\n\n");
    std::string_view line = upToNul(takeUpTo(head, "\n"));
    epgset::WebRequest request;
    request.method = takeUpTo(line, " ");
    const epgset::RequestTarget target = epgset::splitTarget(line);
    request.path = target.path;
    request.query = target.query;
    while (!head.empty()) {
        std::string_view value = upToNul(takeUpTo(head, "\n"));
        const std::string_view name = takeUpTo(value, ": ");
        request.headers.emplace_back(name, value);
    }
    request.bodyLength = static_cast<std::int64_t>(text.size());
    if (text.size() <= epgset::maximumRequestBody) request.body = text;
    return request;
}

}  // namespace

void fuzzRequest(std::string_view input) {
    const RestoredService service;
    for (const std::string_view piece : pieces(input, mostRequests))
        service->answer(requestOf(piece));
}

}  // namespace epgfuzz
