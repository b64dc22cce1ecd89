#include "set/web/WebMessage.h"

#include <strings.h>

#include <algorithm>

namespace epgset {
namespace {

bool sameName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

std::string headerValue(const WebHeaders& headers, std::string_view name) {
    std::string joined;
    for (const auto& [key, value] : headers) {
        if (!sameName(key, name)) continue;
        if (!joined.empty()) joined += ", ";
        joined += value;
    }
    return joined;
}

void setHeader(WebHeaders& headers, std::string_view name, std::string_view value) {
    std::erase_if(headers, [name](const auto& header) { return sameName(header.first, name); });
    headers.emplace_back(name, value);
}

const std::string& bodyOf(const WebResponse& response) {
    return response.sharedBody ? *response.sharedBody : response.body;
}

WebResponse textResponse(int status, std::string_view line) {
    WebResponse response;
    response.status = status;
    response.headers.emplace_back("Content-Type", "text/plain;charset=utf-8");
    response.body.append(line).append("\n");
    return response;
}

}  // namespace epgset
