// One HTTP request and one HTTP response as plain data.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace epgset {

class BodyStream;

/// Largest request body that is kept, in bytes, itself included.
constexpr std::size_t maximumRequestBody = 2097152;

/// Header lines in their order, name and value.
using WebHeaders = std::vector<std::pair<std::string, std::string>>;

/// The values of every header line of that name, whatever its letter case, joined with ", "; empty when
/// there is none.
std::string headerValue(const WebHeaders& headers, std::string_view name);

/// Sets a header, in place of all lines of that name.
void setHeader(WebHeaders& headers, std::string_view name, std::string_view value);

/// One request, read to its end.
struct WebRequest {
    std::string method;
    std::string path;  ///< as it was sent, percent escapes included; begins with "/" but for "*" and its like
    std::string query;  ///< as it was sent, without "?"
    WebHeaders headers;
    std::string body;  ///< empty when the body is longer than maximumRequestBody

    /// Length of the body in bytes. Above maximumRequestBody: the length that the client stated, or a
    /// length that is just too long when it stated none.
    std::int64_t bodyLength = 0;

    std::chrono::steady_clock::time_point whole = {};  ///< when the last of it had come
};

/// One response.
struct WebResponse {
    int status = 200;
    WebHeaders headers;
    std::string body;                                    ///< of a 304: what the 200 would have sent
    std::shared_ptr<const std::string> sharedBody = {};  ///< in place of `body`: one that others send too
    std::shared_ptr<BodyStream> stream = {};             ///< in place of `body`: one that grows; null: none
};

/// The body, whoever owns it.
const std::string& bodyOf(const WebResponse& response);

/// A response whose body is one line of plain text.
WebResponse textResponse(int status, std::string_view line);

}  // namespace epgset
