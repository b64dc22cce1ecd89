#include "set/web/PluginExchange.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "host/Logger.h"

namespace epgset {
namespace {

/// The header that a CGI-style variable stands for: "HTTP_ACCEPT" for "accept". Empty for a variable that
/// is no header.
std::string headerOfVariable(std::string_view variable) {
    constexpr std::string_view prefix = "HTTP_";
    if (variable == "CONTENT_TYPE" || variable == "CONTENT_LENGTH") {
        // The two headers that such variables name without the prefix.
    } else if (variable.starts_with(prefix)) {
        variable.remove_prefix(prefix.size());
    } else {
        return {};
    }
    std::string header(variable);
    std::replace(header.begin(), header.end(), '_', '-');
    return header;
}

}  // namespace

PluginRequest::PluginRequest(const WebRequest& request, std::string path)
    : request_(request), path_(std::move(path)), body_(request.body) {}

void PluginRequest::getMethod(std::string& method) const {
    method = request_.method;
}

void PluginRequest::getHeader(const std::string& name, std::string& value) const {
    const std::string header = headerOfVariable(name);
    value = header.empty() ? std::string() : headerValue(request_.headers, header);
}

const Container::Uri& PluginRequest::getUri() const {
    return *this;
}

std::istream& PluginRequest::getInputStream() {
    return body_;
}

int PluginRequest::getContentLength() const {
    return static_cast<int>(std::min<std::int64_t>(request_.bodyLength, std::numeric_limits<int>::max()));
}

void PluginRequest::getPath(std::string& path) const {
    path = path_;
}

void PluginRequest::getFile(std::string& file) const {
    file = request_.path;
}

void PluginRequest::getQuery(std::string& query) const {
    query = request_.query;
}

std::streamsize TextCollector::xsputn(const char* text, std::streamsize length) {
    text_.append(text, static_cast<std::size_t>(length));
    return length;
}

TextCollector::int_type TextCollector::overflow(int_type character) {
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        text_.push_back(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

void PluginResponse::setHeader(const std::string& name, const std::string& value) {
    touched_ = true;
    epgset::setHeader(response_.headers, name, value);
}

void PluginResponse::setStatus(int status) {
    touched_ = true;
    response_.status = status;
}

std::ostream& PluginResponse::getOutputStream() {
    return stream_;
}

void PluginResponse::commitHeaders() {
    touched_ = true;
}

bool PluginResponse::untouched() const {
    return !touched_ && body_.isEmpty();
}

WebResponse PluginResponse::finish() {
    if (untouched()) response_.status = 404;
    // 100 to 199 cannot end a request: the client would wait for the final answer.
    if (response_.status < 200 || response_.status > 599) {
        Container::Logger::logger("set/web").warning("the plug-in set the status %d, which is sent as 500",
                                                     response_.status);
        response_.status = 500;
    }
    // A stream keeps to itself that it had no memory for what was written, or could not write it.
    const bool whole = !stream_.fail();
    response_.body = body_.take();
    if (!whole) response_ = textResponse(500, "the answer could not be written");
    touched_ = false;
    stream_.clear();
    return std::exchange(response_, WebResponse());
}

}  // namespace epgset
