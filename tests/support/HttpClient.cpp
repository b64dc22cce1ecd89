#include "tests/support/HttpClient.h"

#include <curl/curl.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tests/support/ExchangeRecord.h"

namespace epgset::test {
namespace {

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

std::size_t takeHeader(char* data, std::size_t size, std::size_t count, void* answer) {
    auto& headers = static_cast<HttpAnswer*>(answer)->headers;
    const std::string_view line(data, size * count);
    if (line.starts_with("HTTP/")) headers.clear();  // of an interim answer
    if (const auto colon = line.find(':'); colon != std::string_view::npos) {
        std::string name(line.substr(0, colon));
        std::ranges::transform(name, name.begin(),
                               [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
        headers[name] = trimmed(line.substr(colon + 1));
    }
    return size * count;
}

/// Where a body goes, and what it has to hold before the rest is left; nothing: its end.
struct BodyTarget {
    std::string& body;
    const std::string* until;
    bool left = false;
};

std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* target) {
    auto& body = *static_cast<BodyTarget*>(target);
    body.body.append(data, size * count);
    body.left = body.until != nullptr && body.body.find(*body.until) != std::string::npos;
    return body.left ? 0 : size * count;  // anything but the size ends the transfer
}

struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using List = std::unique_ptr<curl_slist, FreeList>;

List listOf(const HttpClient::Headers& lines) {
    List list;
    for (const std::string& line : lines) {
        curl_slist* longer = curl_slist_append(list.get(), line.c_str());
        if (longer == nullptr) throw std::bad_alloc();
        static_cast<void>(list.release());
        list.reset(longer);
    }
    return list;
}

}  // namespace

struct HttpClient::Handle {
    Handle() : curl(curl_easy_init()) {
        if (curl == nullptr) throw std::runtime_error("no HTTP client");
    }
    ~Handle() { curl_easy_cleanup(curl); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    CURL* curl;
};

std::string HttpAnswer::header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? std::string() : found->second;
}

HttpClient::HttpClient(std::string base, std::string from)
    : base_(std::move(base)), from_(std::move(from)), handle_(std::make_unique<Handle>()) {
    while (base_.ends_with('/')) {
        base_.pop_back();
    }
}

HttpClient::~HttpClient() = default;

HttpAnswer HttpClient::request(const std::string& method, const std::string& target, const Headers& headers) {
    return perform(method, target, headers, nullptr, nullptr);
}

HttpAnswer HttpClient::send(const std::string& method, const std::string& target, const std::string& body,
                            const Headers& headers) {
    return perform(method, target, headers, &body, nullptr);
}

HttpAnswer HttpClient::listen(const std::string& target, const std::string& until, const Headers& headers) {
    return perform("GET", target, headers, nullptr, &until);
}

HttpAnswer HttpClient::perform(const std::string& method, const std::string& target, const Headers& headers,
                               const std::string* body, const std::string* until) {
    CURL* curl = handle_->curl;
    HttpAnswer answer;
    BodyTarget received{answer.body, until};
    const List list = listOf(headers);
    curl_easy_reset(curl);
    curl_easy_setopt(curl, CURLOPT_URL, (base_ + target).c_str());
    if (!from_.empty()) curl_easy_setopt(curl, CURLOPT_INTERFACE, ("host!" + from_).c_str());
    if (!certificateFile_.empty()) curl_easy_setopt(curl, CURLOPT_CAINFO, certificateFile_.c_str());
    curl_easy_setopt(curl, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(curl, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, 60L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, list.get());
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, &takeHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &answer);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &takeBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &received);
    if (body != nullptr) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body->c_str());
    }
    curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, method.c_str());
    if (method == "HEAD") curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);

    const CURLcode code = curl_easy_perform(curl);
    if (code != CURLE_OK && !received.left) {
        throw std::runtime_error(method + " " + target + ": " + curl_easy_strerror(code));
    }
    long status = 0;
    long connections = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(curl, CURLINFO_NUM_CONNECTS, &connections);
    answer.status = static_cast<int>(status);
    connectionsMade_ += connections;
    recordExchange(method, target, answer);
    return answer;
}

}  // namespace epgset::test
