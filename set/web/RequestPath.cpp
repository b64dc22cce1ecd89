#include "set/web/RequestPath.h"

#include <strings.h>

#include <algorithm>

#include "set/uri/UriText.h"

namespace epgset {
namespace {

std::string decoded(std::string_view segment) {
    std::string text(segment.size(), '\0');
    text.resize(decodeUriText(segment, PlusSign::Itself, text.data()).value_or(0));
    return text;
}

/// Takes the next segment off `path`, with the slashes before it; empty at the end.
std::string_view takeSegment(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view segment = path.substr(0, path.find('/'));
    path.remove_prefix(segment.size());
    return segment;
}

}  // namespace

bool holdsEncodedNul(std::string_view text) {
    return text.find("%00") != std::string_view::npos;
}

RequestTarget splitTarget(std::string_view target) {
    for (const std::string_view scheme : {"http://", "https://"}) {
        if (target.size() < scheme.size()) continue;
        if (strncasecmp(target.data(), scheme.data(), scheme.size()) != 0) continue;
        target.remove_prefix(scheme.size());
        target.remove_prefix(std::min(target.find_first_of("/?"), target.size()));
        break;
    }
    const std::size_t mark = target.find('?');
    if (mark == std::string_view::npos) return {target, {}};
    return {target.substr(0, mark), target.substr(mark + 1)};
}

std::vector<std::string> pathSegments(std::string_view path) {
    std::vector<std::string> segments;
    for (auto segment = takeSegment(path); !segment.empty(); segment = takeSegment(path)) {
        segments.push_back(decoded(segment));
    }
    return segments;
}

std::optional<std::string> pathBelow(std::string_view path, std::string_view mount) {
    if (decoded(takeSegment(path)) != mount) return std::nullopt;
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    return std::string(path);
}

}  // namespace epgset
