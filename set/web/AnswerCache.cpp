#include "set/web/AnswerCache.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "set/web/RequestPath.h"

namespace epgset {
namespace {

/// What an entry takes beside its texts, roughly.
constexpr std::size_t bytesOfEntry = 512;

/// Longer requests are not worth it, and would push out what is.
constexpr std::size_t longestKey = 4096;

constexpr std::array<std::string_view, 3> keptResources{"channels", "programs", "schedules"};

constexpr std::string_view errorHeader = "EPG-SQL-Error";

std::size_t bytesOf(std::string_view key, const WebResponse& response) {
    std::size_t bytes = bytesOfEntry + key.size() + response.body.size();
    for (const auto& [name, value] : response.headers)
        bytes += name.size() + value.size();
    return bytes;
}

}  // namespace

std::optional<std::string> answerKey(const WebRequest& request) {
    if (request.method != "GET" || request.bodyLength != 0) return std::nullopt;
    const std::vector<std::string> segments = pathSegments(request.path);
    if (segments.size() < 3 || segments[0] != "ws" || segments[1] != "epg2") return std::nullopt;
    if (std::ranges::find(keptResources, segments[2]) == keptResources.end()) return std::nullopt;
    const std::string accept = headerValue(request.headers, "Accept");
    std::string key;
    key.reserve(request.path.size() + request.query.size() + accept.size() + 2);
    key.append(request.path).append("?").append(request.query).append("\n").append(accept);
    if (key.size() > longestKey) return std::nullopt;
    return key;
}

// A client's SQL comes with any method, in the query of a path that has no resource.
bool changesNothing(const WebRequest& request) {
    return (request.method == "GET" || request.method == "HEAD") && pathSegments(request.path).size() > 2;
}

std::optional<WebResponse> AnswerCache::find(const std::string& key, const StateRevision& revision) {
    const std::lock_guard lock(mutex_);
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) return std::nullopt;
    const Entries::iterator entry = found->second;
    if (entry->revision != revision) {
        drop(entry);
        return std::nullopt;
    }
    entries_.splice(entries_.begin(), entries_, entry);
    return entry->response;
}

void AnswerCache::keep(const std::string& key, const StateRevision& revision, WebResponse& response) {
    if (response.status != 200 || response.stream) return;
    // What SQLite says of a statement that failed may have to do with time or memory.
    if (!headerValue(response.headers, errorHeader).empty()) return;
    const std::size_t bytes = bytesOf(key, response);
    if (bytes > capacity_) return;
    response.sharedBody = std::make_shared<const std::string>(std::move(response.body));
    response.body.clear();
    const std::lock_guard lock(mutex_);
    if (const auto old = byKey_.find(key); old != byKey_.end()) drop(old->second);
    while (bytes_ + bytes > capacity_)
        drop(std::prev(entries_.end()));
    entries_.push_front({key, revision, response, bytes});
    byKey_.emplace(entries_.front().key, entries_.begin());
    bytes_ += bytes;
}

std::size_t AnswerCache::size() const {
    const std::lock_guard lock(mutex_);
    return bytes_;
}

void AnswerCache::drop(Entries::iterator entry) {
    bytes_ -= entry->bytes;
    byKey_.erase(entry->key);
    entries_.erase(entry);
}

}  // namespace epgset
