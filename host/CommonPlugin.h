// What the host does for every plug-in.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/Export.h"
#include "host/HttpResponse.h"

namespace CommonPlugin {

/// Writes a complete error response: `status`, `extraHeaders` (none when null) and `message` as a
/// "text/plain" body.
HOST_API void writeError(Container::HttpResponse& response, int status, const std::string& message,
                         const std::vector<std::pair<std::string, std::string>>* extraHeaders);

}  // namespace CommonPlugin
