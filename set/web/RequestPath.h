// The path of a request, split and decoded for the set's own routing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace epgset {

/// Whether a path or query holds an encoded NUL.
bool holdsEncodedNul(std::string_view text);

/// A request target split at the first "?".
struct RequestTarget {
    std::string_view path;
    std::string_view query;
};

/// Splits what stands in the request line. A target in absolute form ("http://host/path") counts from
/// its path on. The views point into `target`.
RequestTarget splitTarget(std::string_view target);

/// The percent-decoded segments of a path; empty ones do not count. The path holds no encoded NUL.
std::vector<std::string> pathSegments(std::string_view path);

/// What follows the first segment of `path` when that segment decodes to `mount`: as it was sent, without
/// leading slashes. Nothing when the path is not below the mount point.
std::optional<std::string> pathBelow(std::string_view path, std::string_view mount);

}  // namespace epgset
