// Requests as the web server hands them on.
#pragma once

#include <cstdint>
#include <string>

#include "set/web/WebMessage.h"

namespace epgset::test {

inline WebRequest webRequest(const std::string& method, const std::string& path,
                             const std::string& query = "", const std::string& body = "",
                             const WebHeaders& headers = {}) {
    WebRequest request;
    request.method = method;
    request.path = path;
    request.query = query;
    request.body = body;
    request.bodyLength = static_cast<std::int64_t>(body.size());
    request.headers = headers;
    return request;
}

}  // namespace epgset::test
