#include "set/web/EntityTag.h"

#define XXH_INLINE_ALL
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#include <xxhash.h>
#pragma GCC diagnostic pop

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace epgset {
namespace {

using HashState = std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)>;

void skip(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

}  // namespace

std::string entityTag(std::string_view contentType, std::string_view body) {
    const HashState state(XXH3_createState(), &XXH3_freeState);
    if (!state) throw std::bad_alloc();
    XXH3_128bits_reset(state.get());
    // The NUL, which no header holds, keeps type and body apart.
    XXH3_128bits_update(state.get(), contentType.data(), contentType.size());
    XXH3_128bits_update(state.get(), "", 1);
    XXH3_128bits_update(state.get(), body.data(), body.size());
    const XXH128_hash_t hash = XXH3_128bits_digest(state.get());
    return fmt::format("\"{:016x}{:016x}\"", hash.high64, hash.low64);
}

bool namesTag(std::string_view ifNoneMatch, std::string_view tag) {
    skip(ifNoneMatch, " \t");
    if (ifNoneMatch.starts_with('*')) return true;
    for (;;) {
        skip(ifNoneMatch, " \t,");
        if (ifNoneMatch.starts_with("W/")) ifNoneMatch.remove_prefix(2);
        if (!ifNoneMatch.starts_with('"')) return false;
        const std::size_t close = ifNoneMatch.find('"', 1);
        if (close == std::string_view::npos) return false;
        if (ifNoneMatch.substr(0, close + 1) == tag) return true;
        ifNoneMatch.remove_prefix(close + 1);
    }
}

void tagEntity(const WebRequest& request, WebResponse& response) {
    if (request.method != "GET" || response.status != 200) return;
    const std::string tag = entityTag(headerValue(response.headers, "Content-Type"), response.body);
    setHeader(response.headers, "ETag", tag);
}

void answerConditionally(const WebRequest& request, WebResponse& response) {
    const std::string tag = headerValue(response.headers, "ETag");
    if (!tag.empty() && namesTag(headerValue(request.headers, "If-None-Match"), tag)) response.status = 304;
}

}  // namespace epgset
