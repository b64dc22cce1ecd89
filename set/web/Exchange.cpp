#include "set/web/Exchange.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "set/web/RequestPath.h"

namespace epgset {
namespace {

constexpr std::uint64_t tooLong = maximumRequestBody + 1;

/// The value of a Content-Length header; one that is beyond every number counts as the largest.
std::optional<std::uint64_t> lengthOf(const std::string& text) {
    std::uint64_t length = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), length);
    if (result.ec == std::errc::result_out_of_range) return std::numeric_limits<std::uint64_t>::max();
    if (result.ec != std::errc()) return std::nullopt;
    return length;
}

}  // namespace

Exchange::Exchange(std::string_view target) {
    const RequestTarget parts = splitTarget(target);
    request_.path = parts.path;
    request_.query = parts.query;
}

void Exchange::begin(std::string_view method, WebHeaders headers) {
    begun_ = true;
    request_.method = method;
    request_.headers = std::move(headers);
    // A transfer coding overrides a stated length.
    if (headerValue(request_.headers, "Transfer-Encoding").empty()) {
        stated_ = lengthOf(headerValue(request_.headers, "Content-Length"));
    }
}

std::size_t Exchange::mostKept() const {
    const bool chunked = !headerValue(request_.headers, "Transfer-Encoding").empty();
    const std::uint64_t most = chunked ? maximumRequestBody : stated_.value_or(0);
    return most <= maximumRequestBody ? static_cast<std::size_t>(most) : 0;
}

void Exchange::expectBody() {
    if (stated_ && *stated_ <= maximumRequestBody) request_.body.reserve(static_cast<std::size_t>(*stated_));
}

bool Exchange::clientWaits() const {
    return strcasecmp(headerValue(request_.headers, "Expect").c_str(), "100-continue") == 0;
}

bool Exchange::codingIsUnknown() const {
    const std::string coding = headerValue(request_.headers, "Transfer-Encoding");
    return !coding.empty() && strcasecmp(coding.c_str(), "chunked") != 0;
}

void Exchange::receive(std::string_view bytes) {
    received_ += bytes.size();
    if (received_ <= maximumRequestBody) request_.body.append(bytes);
}

const WebRequest& Exchange::finish() {
    const std::uint64_t length = std::max(received_, stated_.value_or(0));
    if (length > maximumRequestBody) request_.body = std::string();
    // How long a body was that stated no length is not told: it was not read to learn that.
    const std::uint64_t told = stated_ ? length : std::min(length, tooLong);
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    request_.bodyLength = static_cast<std::int64_t>(std::min(told, most));
    request_.whole = Clock::now();
    return request_;
}

}  // namespace epgset
